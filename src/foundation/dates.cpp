#include "foundation/dates.h"

#include <cmath>
#include <cstdlib>

namespace tl {

namespace {
// Offsets of the distant dates from the reference date, in seconds.
constexpr qint64 kDistantPastOffset = -63114076800;
constexpr qint64 kDistantFutureOffset = 63113904000;
} // namespace

QDateTime referenceDate()
{
    return QDateTime::fromSecsSinceEpoch(kReferenceDateUnixSeconds, Qt::UTC);
}

double secondsSinceReferenceDate(const QDateTime &date)
{
    return double(date.toMSecsSinceEpoch() - kReferenceDateUnixSeconds * 1000) / 1000.0;
}

QDateTime dateFromSecondsSinceReferenceDate(double seconds)
{
    const qint64 ms = qint64(std::llround(seconds * 1000.0)) + kReferenceDateUnixSeconds * 1000;
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC);
}

QDateTime distantPast()
{
    return QDateTime::fromSecsSinceEpoch(kReferenceDateUnixSeconds + kDistantPastOffset, Qt::UTC);
}

QDateTime distantFuture()
{
    return QDateTime::fromSecsSinceEpoch(kReferenceDateUnixSeconds + kDistantFutureOffset, Qt::UTC);
}

bool isDistantPast(const QDateTime &date)
{
    return date.isValid() && date == distantPast();
}

QString isoDateString(const QDateTime &date)
{
    const QDateTime utc = date.toUTC();
    const QDate day = utc.date();
    // The calendar has no year 0: the year before 1 is -1.
    const int year = day.year() < 0 ? day.year() + 1 : day.year();
    const QString sign = year < 0      ? QStringLiteral("-")
                         : year > 9999 ? QStringLiteral("+")
                                       : QString();
    return QStringLiteral("%1%2-%3-%4T%5Z")
        .arg(sign)
        .arg(std::abs(year), 4, 10, QLatin1Char('0'))
        .arg(day.month(), 2, 10, QLatin1Char('0'))
        .arg(day.day(), 2, 10, QLatin1Char('0'))
        .arg(utc.time().toString(QStringLiteral("HH:mm:ss")));
}

} // namespace tl
