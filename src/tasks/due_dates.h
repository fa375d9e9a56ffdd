#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <optional>

// Due moments and repeat details of tasks. A due moment is stored to the
// whole minute; a local time of 00:01 means "this date, no alert time".
namespace tl::tasks {

void tl_setDueDate(const QString &itemPath, const QDateTime &date);
// Removes the due date and the repeat with it.
void tl_clearDueDate(const QString &itemPath);
// Distant future without a date, distant past for an excluded item.
QDateTime tl_dueDateForTask(const QString &itemPath);
// The record's "Changed", or distant future.
QDateTime tl_doneDateForTask(const QString &itemPath);

// Type ("when due" or "when done"), unit and factor, or nothing.
std::optional<QStringList> tl_repeatDetails(const QString &itemPath);
// An empty list removes the repeat.
void tl_setRepeatDetails(const QString &itemPath, const QStringList &details);

bool tl_dueDateHasAlertTime(const QDateTime &date);
QDateTime tl_thatDayMidnight(const QDateTime &date);
// The moment the user picks in the date-only form: that day at 00:01.
QDateTime dateWithoutAlertTime(const QDate &day);

} // namespace tl::tasks
