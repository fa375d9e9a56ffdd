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

} // namespace tl
