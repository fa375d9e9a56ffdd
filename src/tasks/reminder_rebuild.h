#pragma once

#include "platform/reminder_centre.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <functional>
#include <memory>

// Reminders have no store of their own: the whole set is thrown away and
// rebuilt from the task lists after each change.
namespace tl::tasks {

// One pending dated task.
struct ReminderRow
{
    QString path;
    // The due date; the rows sort by it.
    QDateTime modDate;
    QDateTime fireDate;
    // "1" when the due date is now or later, "0" when it has passed.
    QString counterIncrement;
    // The calendar-unit code of a "when due" repeat by one unit, else "0".
    QString repeatInterval;
    QString normPath;
    QString taskState;
};

// The pending dated tasks of all task lists, by due date.
QList<ReminderRow> reminderRows(const QDateTime &now);
// The reminder of an item at the date. A reminder never repeats by itself,
// so `repeat` is not used.
platform::Reminder tl_notificationForDate(const QString &itemPath, const QDateTime &date,
                                          unsigned repeat);
// Replaces the centre's scheduled reminders with one for each task due
// later than now; answers all the rows, the past ones without reminders.
QList<ReminderRow> rebuildReminders(platform::ReminderCentre &centre);
// Makes the centre the one rebuilds go to; a delivered reminder recounts its
// task's book so that badges rise at the moment of the alert.
void useReminderCentre(std::shared_ptr<platform::ReminderCentre> centre);

// What a rebuild does in this process; nothing until a host registers it.
std::function<void()> &reminderRebuild();

// Rebuilds at once.
void tl_repostAllNotifications();
// Cancels a pending rebuild and schedules one 0.5 seconds ahead, so a burst
// of recounts ends in one rebuild.
void scheduleReminderRebuild();

} // namespace tl::tasks
