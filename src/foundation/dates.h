#pragma once

#include <QDateTime>

namespace tl {

// Dates stored as numbers count seconds from 1 January 2001 UTC.
inline constexpr qint64 kReferenceDateUnixSeconds = 978307200;

QDateTime referenceDate();
double secondsSinceReferenceDate(const QDateTime &date);
QDateTime dateFromSecondsSinceReferenceDate(double seconds);

// The far ends of the calendar that stand for "no date" in stored values.
QDateTime distantPast();
QDateTime distantFuture();
bool isDistantPast(const QDateTime &date);

// ISO 8601 in UTC to the second ("2024-05-06T07:08:09Z") for every date,
// those before year 1 included: their years count astronomically, so 1 BC is
// 0000 and the distant past prints as 0000-12-30T00:00:00Z.
QString isoDateString(const QDateTime &date);

} // namespace tl
