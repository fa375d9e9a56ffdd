#include "foundation/dates.h"

#include <cmath>

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

} // namespace tl
