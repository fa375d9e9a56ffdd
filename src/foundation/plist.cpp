#include "foundation/plist.h"

#include <QDateTime>
#include <QStringList>
#include <QVariantHash>
#include <QVariantList>
#include <QVariantMap>
#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <plist/plist.h>
#include <spdlog/spdlog.h>
#include <vector>

namespace tl::plist {

namespace {

// Seconds from 1970-01-01 to 2001-01-01, the epoch of property-list dates.
constexpr qint64 kReferenceDateOffset = 978307200;

// Deeper nesting than this is hostile input, not a property file; it would
// only exhaust the stack on the way through.
constexpr int kMaxDepth = 512;

struct NodeDeleter
{
    void operator()(void *node) const { plist_free(static_cast<plist_t>(node)); }
};
using Node = std::unique_ptr<void, NodeDeleter>;

// --- Reading the XML format, through libplist --------------------------------

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

// --- Reading the binary format -----------------------------------------------

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
        m_done.assign(count, std::nullopt);
        m_busy.assign(count, false);
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
        if (index >= m_count || depth > kMaxDepth || m_busy[index])
            return std::nullopt;
        if (m_done[index])
            return m_done[index];
        m_busy[index] = true;
        auto value = decode(uintAt(m_tableAt + index * m_offsetSize, m_offsetSize), depth);
        m_busy[index] = false;
        m_done[index] = value;
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
    std::vector<std::optional<QVariant>> m_done;
    std::vector<bool> m_busy;
};

// --- Writing -----------------------------------------------------------------

bool isSignedInteger(int type)
{
    switch (type) {
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
        return true;
    default:
        return false;
    }
}

bool isUnsignedInteger(int type)
{
    switch (type) {
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
        return true;
    default:
        return false;
    }
}

// Whole seconds, rounded down as the Mac does when it prints a date.
qint64 floorSeconds(qint64 msecs)
{
    return msecs >= 0 ? msecs / 1000 : -((-msecs + 999) / 1000);
}

QByteArray dateText(const QDateTime &date)
{
    const QDateTime utc =
        QDateTime::fromSecsSinceEpoch(floorSeconds(date.toMSecsSinceEpoch()), Qt::UTC);
    const QDate day = utc.date();
    const QTime time = utc.time();
    char buffer[64];
    const int n = std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02dT%02d:%02d:%02dZ", day.year(),
                                day.month(), day.day(), time.hour(), time.minute(), time.second());
    return QByteArray(buffer, n);
}

QByteArray realText(double value)
{
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value > 0 ? "+infinity" : "-infinity";
    if (value == 0.0)
        return "0.0";
    // Same digits as printf("%.17g"), without the locale's decimal point.
    char buffer[64];
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 17);
    return QByteArray(buffer, result.ptr - buffer);
}

void appendEscaped(QByteArray &out, const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    for (const char c : utf8) {
        switch (c) {
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '&':
            out += "&amp;";
            break;
        default:
            out += c;
        }
    }
}

void appendData(QByteArray &out, const QByteArray &bytes, int indent)
{
    // Indents count against a 76-column line, 8 columns a tab, at most 8 tabs.
    const int tabs = std::min(indent, 8);
    const qsizetype lineLength = 76 - 8 * tabs;
    const QByteArray base64 = bytes.toBase64();
    for (qsizetype at = 0; at < base64.size(); at += lineLength) {
        out.append(indent, '\t');
        out += base64.mid(at, lineLength);
        out += '\n';
    }
}

bool appendXml(QByteArray &out, const QVariant &value, int indent);

bool appendDict(QByteArray &out, const QList<QString> &keys, const auto &lookup, int indent)
{
    if (keys.isEmpty()) {
        out += "<dict/>\n";
        return true;
    }
    out += "<dict>\n";
    for (const QString &key : keys) {
        out.append(indent + 1, '\t');
        out += "<key>";
        appendEscaped(out, key);
        out += "</key>\n";
        if (!appendXml(out, lookup(key), indent + 1))
            return false;
    }
    out.append(indent, '\t');
    out += "</dict>\n";
    return true;
}

bool appendXml(QByteArray &out, const QVariant &value, int indent)
{
    out.append(indent, '\t');
    const int type = value.typeId();
    switch (type) {
    case QMetaType::QString:
        out += "<string>";
        appendEscaped(out, value.toString());
        out += "</string>\n";
        return true;
    case QMetaType::Bool:
        out += value.toBool() ? "<true/>\n" : "<false/>\n";
        return true;
    case QMetaType::Double:
    case QMetaType::Float:
        out += "<real>" + realText(value.toDouble()) + "</real>\n";
        return true;
    case QMetaType::QDateTime: {
        const QDateTime date = value.toDateTime();
        if (!date.isValid())
            return false;
        out += "<date>" + dateText(date) + "</date>\n";
        return true;
    }
    case QMetaType::QByteArray:
        out += "<data>\n";
        appendData(out, value.toByteArray(), indent);
        out.append(indent, '\t');
        out += "</data>\n";
        return true;
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        const QVariantList list = value.toList();
        if (list.isEmpty()) {
            out += "<array/>\n";
            return true;
        }
        out += "<array>\n";
        for (const QVariant &item : list) {
            if (!appendXml(out, item, indent + 1))
                return false;
        }
        out.append(indent, '\t');
        out += "</array>\n";
        return true;
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        return appendDict(
            out, map.keys(), [&map](const QString &key) { return map.value(key); }, indent);
    }
    case QMetaType::QVariantHash: {
        const QVariantHash hash = value.toHash();
        QList<QString> keys = hash.keys();
        std::sort(keys.begin(), keys.end());
        return appendDict(
            out, keys, [&hash](const QString &key) { return hash.value(key); }, indent);
    }
    default:
        if (isSignedInteger(type)) {
            out += "<integer>" + QByteArray::number(value.toLongLong()) + "</integer>\n";
            return true;
        }
        if (isUnsignedInteger(type)) {
            out += "<integer>" + QByteArray::number(value.toULongLong()) + "</integer>\n";
            return true;
        }
        spdlog::warn("plist: a value of type {} has no property-list form",
                     value.metaType().name() ? value.metaType().name() : "(invalid)");
        return false;
    }
}

// A date node for any date: libplist takes 32-bit seconds, so dates beyond
// 1901..2038 go in through its XML reader, which keeps the full range.
plist_t dateNode(const QDateTime &date)
{
    const qint64 msecs = date.toMSecsSinceEpoch();
    const qint64 seconds = floorSeconds(msecs) - kReferenceDateOffset;
    if (seconds > std::numeric_limits<int32_t>::min() &&
        seconds < std::numeric_limits<int32_t>::max()) {
        const qint64 usec = (msecs - floorSeconds(msecs) * 1000) * 1000;
        return plist_new_date(static_cast<int32_t>(seconds), static_cast<int32_t>(usec));
    }
    const QByteArray xml = "<plist><date>" + dateText(date) + "</date></plist>";
    plist_t node = nullptr;
    plist_from_xml(xml.constData(), static_cast<uint32_t>(xml.size()), &node);
    return node;
}

plist_t toNode(const QVariant &value)
{
    const int type = value.typeId();
    switch (type) {
    case QMetaType::QString:
        return plist_new_string(value.toString().toUtf8().constData());
    case QMetaType::Bool:
        return plist_new_bool(value.toBool() ? 1 : 0);
    case QMetaType::Double:
    case QMetaType::Float:
        return plist_new_real(value.toDouble());
    case QMetaType::QDateTime: {
        const QDateTime date = value.toDateTime();
        return date.isValid() ? dateNode(date) : nullptr;
    }
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        return plist_new_data(bytes.constData(), static_cast<uint64_t>(bytes.size()));
    }
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        Node array(plist_new_array());
        for (const QVariant &item : value.toList()) {
            plist_t child = toNode(item);
            if (!child)
                return nullptr;
            plist_array_append_item(array.get(), child);
        }
        return array.release();
    }
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash: {
        Node dict(plist_new_dict());
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            plist_t child = toNode(it.value());
            if (!child)
                return nullptr;
            plist_dict_set_item(dict.get(), it.key().toUtf8().constData(), child);
        }
        return dict.release();
    }
    default:
        if (isSignedInteger(type))
            return plist_new_uint(static_cast<uint64_t>(value.toLongLong()));
        if (isUnsignedInteger(type))
            return plist_new_uint(value.toULongLong());
        spdlog::warn("plist: a value of type {} has no property-list form",
                     value.metaType().name() ? value.metaType().name() : "(invalid)");
        return nullptr;
    }
}

} // namespace

std::optional<QVariant> parse(const QByteArray &bytes)
{
    if (bytes.startsWith("bplist")) {
        auto value = BinaryReader(bytes).read();
        if (!value)
            spdlog::warn("plist: {} bytes are not a binary property list", bytes.size());
        return value;
    }
    QByteArray input = bytes;
    // A byte-order mark is legal XML but trips libplist's reader.
    if (input.startsWith("\xEF\xBB\xBF"))
        input.remove(0, 3);
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

QByteArray toXml(const QVariant &value)
{
    QByteArray out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                     "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                     "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                     "<plist version=\"1.0\">\n";
    if (!appendXml(out, value, 0))
        return {};
    out += "</plist>\n";
    return out;
}

QByteArray toBinary(const QVariant &value)
{
    Node root(toNode(value));
    if (!root)
        return {};
    char *bytes = nullptr;
    uint32_t length = 0;
    plist_to_bin(root.get(), &bytes, &length);
    if (!bytes) {
        spdlog::warn("plist: the binary writer gave nothing");
        return {};
    }
    QByteArray out(bytes, static_cast<qsizetype>(length));
    plist_to_bin_free(bytes);
    return out;
}

} // namespace tl::plist
