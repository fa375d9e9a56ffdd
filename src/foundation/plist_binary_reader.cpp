#include "foundation/plist_codecs.h"

#include <QVariantList>
#include <QVariantMap>
#include <bit>
#include <cmath>
#include <cstring>
#include <spdlog/spdlog.h>
#include <unordered_map>
#include <unordered_set>

namespace tl::plist::detail {

namespace {

// The binary format is read here rather than by libplist 2.2, which aborts on
// a dictionary key that is not a string and cuts dates to 32-bit seconds.
// Objects are decoded once each, so shared references cannot blow up, and a
// reference back to an object still being decoded is a cycle and refused.
class BinaryReader
{
public:
    explicit BinaryReader(const QByteArray &bytes)
        : m_data(reinterpret_cast<const uchar *>(bytes.constData())),
          m_size(static_cast<quint64>(bytes.size()))
    {
    }

    std::optional<QVariant> read()
    {
        constexpr quint64 kHeader = 8;
        constexpr quint64 kTrailer = 32;
        if (m_size < kHeader + kTrailer + 1 || std::memcmp(m_data, "bplist00", 8) != 0)
            return std::nullopt;
        const quint64 trailer = m_size - kTrailer;
        m_offsetSize = m_data[trailer + 6];
        m_refSize = m_data[trailer + 7];
        const quint64 count = uintAt(trailer + 8, 8);
        const quint64 top = uintAt(trailer + 16, 8);
        m_tableAt = uintAt(trailer + 24, 8);
        if (m_offsetSize < 1 || m_offsetSize > 8 || m_refSize < 1 || m_refSize > 8)
            return std::nullopt;
        if (count == 0 || top >= count || m_tableAt < kHeader || m_tableAt >= trailer ||
            count > (trailer - m_tableAt) / m_offsetSize)
            return std::nullopt;
        m_count = count;
        return object(top, 0);
    }

private:
    quint64 uintAt(quint64 at, int width) const
    {
        quint64 value = 0;
        for (int i = 0; i < width; ++i)
            value = (value << 8) | m_data[at + i];
        return value;
    }

    // Bytes [at, at + length) lie before the offset table.
    bool fits(quint64 at, quint64 length) const
    {
        return at <= m_tableAt && length <= m_tableAt - at;
    }

    // The count in a marker's low nibble, or the integer object after it.
    std::optional<quint64> length(quint64 &at, uchar info) const
    {
        if (info != 0x0F)
            return info;
        if (!fits(at, 1) || (m_data[at] & 0xF0) != 0x10)
            return std::nullopt;
        const int width = 1 << (m_data[at] & 0x0F);
        if (width > 8 || !fits(at + 1, width))
            return std::nullopt;
        const quint64 value = uintAt(at + 1, width);
        at += 1 + width;
        return value;
    }

    std::optional<QVariant> object(quint64 index, int depth)
    {
        if (index >= m_count || depth > kMaxDepth || m_busy.contains(index))
            return std::nullopt;
        if (const auto done = m_done.find(index); done != m_done.end())
            return done->second;
        m_busy.insert(index);
        auto value = decode(uintAt(m_tableAt + index * m_offsetSize, m_offsetSize), depth);
        m_busy.erase(index);
        m_done.emplace(index, value);
        return value;
    }

    std::optional<QVariant> decode(quint64 at, int depth)
    {
        if (at < 8 || !fits(at, 1))
            return std::nullopt;
        const uchar marker = m_data[at++];
        const uchar info = marker & 0x0F;
        switch (marker >> 4) {
        case 0x0:
            if (info == 0x08 || info == 0x09)
                return QVariant(info == 0x09);
            return std::nullopt;
        case 0x1: {
            // 1, 2 and 4 bytes are unsigned, 8 bytes two's complement; of
            // 16 bytes the low 8 carry any value that fits in 64 bits.
            if (info > 4)
                return std::nullopt;
            const int width = 1 << info;
            if (!fits(at, width))
                return std::nullopt;
            const int skip = width > 8 ? width - 8 : 0;
            return QVariant(static_cast<qint64>(uintAt(at + skip, width - skip)));
        }
        case 0x2: {
            if ((info != 2 && info != 3) || !fits(at, 1 << info))
                return std::nullopt;
            if (info == 2)
                return QVariant(
                    static_cast<double>(std::bit_cast<float>(static_cast<quint32>(uintAt(at, 4)))));
            return QVariant(std::bit_cast<double>(uintAt(at, 8)));
        }
        case 0x3: {
            if (info != 3 || !fits(at, 8))
                return std::nullopt;
            const double seconds = std::bit_cast<double>(uintAt(at, 8));
            // Past a few hundred thousand years it is noise, not a date.
            if (!std::isfinite(seconds) || std::fabs(seconds) > 1e13)
                return std::nullopt;
            const qint64 msecs = std::llround(seconds * 1000.0) + kReferenceDateOffset * 1000;
            return QVariant(QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC));
        }
        case 0x4: {
            const auto n = length(at, info);
            if (!n || !fits(at, *n))
                return std::nullopt;
            return QVariant(QByteArray(reinterpret_cast<const char *>(m_data + at),
                                       static_cast<qsizetype>(*n)));
        }
        case 0x5: {
            const auto n = length(at, info);
            if (!n || !fits(at, *n))
                return std::nullopt;
            return QVariant(QString::fromLatin1(reinterpret_cast<const char *>(m_data + at),
                                                static_cast<qsizetype>(*n)));
        }
        case 0x6: {
            const auto n = length(at, info);
            if (!n || *n > m_size / 2 || !fits(at, *n * 2))
                return std::nullopt;
            QString text(static_cast<qsizetype>(*n), Qt::Uninitialized);
            for (quint64 i = 0; i < *n; ++i)
                text[static_cast<qsizetype>(i)] =
                    QChar(static_cast<char16_t>(uintAt(at + 2 * i, 2)));
            return QVariant(text);
        }
        case 0x8:
            if (!fits(at, info + 1))
                return std::nullopt;
            return QVariant(static_cast<qint64>(uintAt(at, info + 1)));
        case 0xA: {
            const auto n = length(at, info);
            if (!n || *n > m_size || !fits(at, *n * m_refSize))
                return std::nullopt;
            QVariantList list;
            list.reserve(static_cast<qsizetype>(*n));
            for (quint64 i = 0; i < *n; ++i) {
                auto item = object(uintAt(at + i * m_refSize, m_refSize), depth + 1);
                if (!item)
                    return std::nullopt;
                list.append(std::move(*item));
            }
            return QVariant(list);
        }
        case 0xD: {
            const auto n = length(at, info);
            if (!n || *n > m_size || !fits(at, *n * 2 * m_refSize))
                return std::nullopt;
            QVariantMap map;
            for (quint64 i = 0; i < *n; ++i) {
                auto key = object(uintAt(at + i * m_refSize, m_refSize), depth + 1);
                auto item = object(uintAt(at + (*n + i) * m_refSize, m_refSize), depth + 1);
                if (!key || key->typeId() != QMetaType::QString || !item)
                    return std::nullopt;
                map.insert(key->toString(), std::move(*item));
            }
            return QVariant(map);
        }
        default:
            // Null, sets and the UTF-8 strings of later versions never appear
            // in the files this reads.
            return std::nullopt;
        }
    }

    const uchar *m_data;
    quint64 m_size;
    int m_offsetSize = 0;
    int m_refSize = 0;
    quint64 m_tableAt = 0;
    quint64 m_count = 0;
    // Kept for the objects reached only: a trailer may claim an object count
    // near the file's size, and a slot for each would be forty times that.
    std::unordered_map<quint64, std::optional<QVariant>> m_done;
    std::unordered_set<quint64> m_busy;
};

} // namespace

std::optional<QVariant> parseBinary(const QByteArray &bytes)
{
    std::optional<QVariant> value = BinaryReader(bytes).read();
    if (!value)
        spdlog::warn("plist: {} bytes are not a binary property list", bytes.size());
    return value;
}

} // namespace tl::plist::detail
