#include "foundation/plist_codecs.h"

#include <QVariantList>
#include <QVariantMap>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <spdlog/spdlog.h>

// The XML format is read through libplist.
namespace tl::plist::detail {

namespace {

QDateTime dateFromText(const char *text)
{
    int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
    if (std::sscanf(text, "%d-%d-%dT%d:%d:%dZ", &y, &mo, &d, &h, &mi, &s) != 6)
        return {};
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s), Qt::UTC);
}

// libplist keeps dates as a double but hands them out as 32-bit seconds, so
// anything outside 1901..2038 comes back as a clamped value. Its own XML
// writer still sees the real value, so such dates are read from there.
QDateTime dateOutsideInt32(plist_t node)
{
    char *xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(node, &xml, &length);
    if (!xml)
        return {};
    QByteArray text(xml, static_cast<qsizetype>(length));
    plist_to_xml_free(xml);
    const qsizetype start = text.indexOf("<date>");
    const qsizetype end = text.indexOf("</date>");
    if (start < 0 || end < start)
        return {};
    return dateFromText(text.mid(start + 6, end - start - 6).constData());
}

QDateTime dateFromNode(plist_t node)
{
    int32_t sec = 0, usec = 0;
    plist_get_date_val(node, &sec, &usec);
    if (sec == std::numeric_limits<int32_t>::min() || sec == std::numeric_limits<int32_t>::max())
        return dateOutsideInt32(node);
    // The seconds are cut toward zero and the microseconds are given without
    // sign, so before the reference date the fraction counts backward.
    const qint64 fraction = std::lround(static_cast<double>(usec) / 1000.0);
    const qint64 msecs =
        (static_cast<qint64>(sec) + kReferenceDateOffset) * 1000 + (sec < 0 ? -fraction : fraction);
    return QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC);
}

std::optional<QVariant> fromNode(plist_t node, int depth)
{
    if (!node || depth > kMaxDepth)
        return std::nullopt;
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return QVariant(value != 0);
    }
    case PLIST_UINT: {
        // libplist keeps every integer in 64 unsigned bits; negative numbers
        // are their two's complement, so the cast gives them back.
        uint64_t value = 0;
        plist_get_uint_val(node, &value);
        return QVariant(static_cast<qint64>(value));
    }
    case PLIST_UID: {
        uint64_t value = 0;
        plist_get_uid_val(node, &value);
        return QVariant(static_cast<qint64>(value));
    }
    case PLIST_REAL: {
        double value = 0;
        plist_get_real_val(node, &value);
        return QVariant(value);
    }
    case PLIST_STRING:
    case PLIST_KEY: {
        uint64_t length = 0;
        const char *text = plist_get_string_ptr(node, &length);
        return QVariant(text ? QString::fromUtf8(text, static_cast<qsizetype>(length)) : QString());
    }
    case PLIST_DATA: {
        uint64_t length = 0;
        const char *bytes = plist_get_data_ptr(node, &length);
        return QVariant(bytes ? QByteArray(bytes, static_cast<qsizetype>(length)) : QByteArray());
    }
    case PLIST_DATE: {
        QDateTime date = dateFromNode(node);
        if (!date.isValid())
            return std::nullopt;
        return QVariant(date);
    }
    case PLIST_ARRAY: {
        QVariantList list;
        const uint32_t count = plist_array_get_size(node);
        list.reserve(count);
        for (uint32_t i = 0; i < count; ++i) {
            auto item = fromNode(plist_array_get_item(node, i), depth + 1);
            if (!item)
                return std::nullopt;
            list.append(std::move(*item));
        }
        return QVariant(list);
    }
    case PLIST_DICT: {
        QVariantMap map;
        plist_dict_iter iter = nullptr;
        plist_dict_new_iter(node, &iter);
        if (!iter)
            return std::nullopt;
        bool ok = true;
        for (;;) {
            char *key = nullptr;
            plist_t item = nullptr;
            plist_dict_next_item(node, iter, &key, &item);
            if (!item) {
                std::free(key);
                break;
            }
            auto value = fromNode(item, depth + 1);
            if (value)
                map.insert(QString::fromUtf8(key), std::move(*value));
            std::free(key);
            if (!value) {
                ok = false;
                break;
            }
        }
        std::free(iter);
        if (!ok)
            return std::nullopt;
        return QVariant(map);
    }
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<QVariant> parseXml(const QByteArray &bytes)
{
    QByteArray input = bytes;
    // A byte-order mark is legal XML but trips libplist's reader.
    if (input.startsWith("\xEF\xBB\xBF"))
        input.remove(0, 3);
    if (auto value = parseXmlDirectly(input))
        return value;
    if (input.isEmpty()) {
        spdlog::warn("plist: nothing to read");
        return std::nullopt;
    }
    if (input.size() > std::numeric_limits<uint32_t>::max()) {
        spdlog::warn("plist: {} bytes is too large for a property list", input.size());
        return std::nullopt;
    }
    plist_t root = nullptr;
    plist_from_xml(input.constData(), static_cast<uint32_t>(input.size()), &root);
    Node owner(root);
    if (!root) {
        spdlog::warn("plist: {} bytes are not a property list", input.size());
        return std::nullopt;
    }
    auto value = fromNode(root, 0);
    if (!value)
        spdlog::warn("plist: property list of {} bytes holds a value that cannot be read",
                     input.size());
    return value;
}

} // namespace tl::plist::detail
