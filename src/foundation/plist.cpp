#include "foundation/plist.h"

#include <QDateTime>
#include <QStringList>
#include <QVariantHash>
#include <QVariantList>
#include <QVariantMap>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <plist/plist.h>
#include <spdlog/spdlog.h>

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

// --- Reading -----------------------------------------------------------------

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
    QByteArray input = bytes;
    // A byte-order mark is legal XML but trips libplist's format sniffing.
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
    plist_from_memory(input.constData(), static_cast<uint32_t>(input.size()), &root);
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
