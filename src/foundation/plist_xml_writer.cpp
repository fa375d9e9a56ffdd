#include "foundation/plist.h"
#include "foundation/plist_codecs.h"

#include <QStringList>
#include <QVariantHash>
#include <QVariantList>
#include <QVariantMap>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <spdlog/spdlog.h>

namespace tl::plist {

using namespace detail;

namespace {

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

// XML cannot hold control characters other than tab and line ends, not even
// as references; written raw they would leave the whole file unreadable, so
// they are left out.
bool isWritableInXml(char c)
{
    return static_cast<unsigned char>(c) >= 0x20 || c == '\t' || c == '\n' || c == '\r';
}

void appendEscaped(QByteArray &out, const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    for (const char c : utf8) {
        if (!isWritableInXml(c))
            continue;
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

} // namespace

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

} // namespace tl::plist
