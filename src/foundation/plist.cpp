#include "foundation/plist.h"

#include "foundation/plist_codecs.h"

#include <cstdio>

namespace tl::plist {

namespace detail {

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

} // namespace detail

std::optional<QVariant> parse(const QByteArray &bytes)
{
    return bytes.startsWith("bplist") ? detail::parseBinary(bytes) : detail::parseXml(bytes);
}

} // namespace tl::plist
