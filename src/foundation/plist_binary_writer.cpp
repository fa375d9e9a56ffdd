#include "foundation/plist.h"
#include "foundation/plist_codecs.h"

#include <QVariantList>
#include <QVariantMap>
#include <cstdint>
#include <limits>
#include <spdlog/spdlog.h>

// The binary format is written through libplist.
namespace tl::plist {

using namespace detail;

namespace {

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
