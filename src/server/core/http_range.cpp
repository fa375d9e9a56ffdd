#include "server/core/http_range.h"

#include <QList>

#include <algorithm>

namespace server {

std::optional<uint64_t> parseUInt64(QStringView text)
{
    if (text.isEmpty())
        return std::nullopt;
    uint64_t value = 0;
    for (QChar c : text) {
        const ushort u = c.unicode();
        if (u < '0' || u > '9')
            return std::nullopt;
        const uint64_t digit = u - '0';
        if (value > (UINT64_MAX - digit) / 10)
            return std::nullopt;
        value = value * 10 + digit;
    }
    return value;
}

std::optional<uint64_t> parseHex64(QStringView text)
{
    if (text.isEmpty() || text.size() > 16)
        return std::nullopt;
    uint64_t value = 0;
    for (QChar c : text) {
        const ushort u = c.unicode();
        int digit;
        if (u >= '0' && u <= '9')
            digit = u - '0';
        else if (u >= 'a' && u <= 'f')
            digit = u - 'a' + 10;
        else if (u >= 'A' && u <= 'F')
            digit = u - 'A' + 10;
        else
            return std::nullopt;
        value = value * 16 + uint64_t(digit);
    }
    return value;
}

std::optional<std::vector<ByteRange>> parseRangeRequest(const QString &header, uint64_t contentLength)
{
    const qsizetype equals = header.indexOf(QLatin1Char('='));
    if (equals < 0)
        return std::nullopt;
    const QString unit = header.left(equals).trimmed();
    const QString value = header.mid(equals + 1).trimmed();
    if (unit.compare(QLatin1String("bytes"), Qt::CaseInsensitive) != 0)
        return std::nullopt;

    std::vector<ByteRange> ranges;
    for (QStringView element : QStringView(value).split(QLatin1Char(','))) {
        element = element.trimmed();
        const qsizetype dash = element.indexOf(QLatin1Char('-'));
        if (dash < 0) {
            // One byte at that offset.
            const auto offset = parseUInt64(element);
            if (!offset || *offset >= contentLength)
                return std::nullopt;
            ranges.push_back({*offset, 1});
            continue;
        }
        const QStringView left = element.left(dash);
        const QStringView right = element.mid(dash + 1);
        if (left.isEmpty()) {
            // The last n bytes.
            const auto n = parseUInt64(right);
            if (!n || *n == 0 || *n > contentLength)
                return std::nullopt;
            ranges.push_back({contentLength - *n, *n});
            continue;
        }
        const auto first = parseUInt64(left);
        if (!first || *first >= contentLength)
            return std::nullopt;
        if (right.isEmpty()) {
            ranges.push_back({*first, contentLength - *first});
            continue;
        }
        const auto last = parseUInt64(right);
        if (!last || *last < *first || *last >= contentLength)
            return std::nullopt;
        ranges.push_back({*first, *last - *first + 1});
    }
    if (ranges.empty())
        return std::nullopt;
    std::sort(ranges.begin(), ranges.end(),
              [](const ByteRange &a, const ByteRange &b) { return a.location < b.location; });
    // Sorted, two ranges overlap only if neighbours do.
    for (size_t i = 1; i < ranges.size(); ++i)
        if (ranges[i].location <= ranges[i - 1].last())
            return std::nullopt;
    return ranges;
}

} // namespace server
