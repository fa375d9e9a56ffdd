#include "tasks/reminder_rebuild.h"

#include "foundation/clock.h"
#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "foundation/scheduler.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "tasks/calendar_steps.h"
#include "tasks/due_dates.h"
#include "tasks/task_details.h"
#include "tasks/task_keys.h"
#include "tasks/task_list.h"
#include "tasks/task_lists.h"

#include <QFileInfo>
#include <algorithm>

namespace tl::tasks {

namespace {

// The books to visit: the task lists, and the root when it is one though
// the list does not say so.
QStringList reminderBooks()
{
    QStringList books = allTaskListBooks();
    const QString root = store::libraryRoot();
    if (!books.contains(root) &&
        QFileInfo::exists(path::appendingComponent(root, QLatin1String(names::TasklistDetails))))
        books << root;
    return books;
}

ReminderRow rowFor(const QString &item, const QVariantMap &record, const QDateTime &due,
                   const QDateTime &now)
{
    ReminderRow row{item,
                    due,
                    due,
                    QStringLiteral("1"),
                    QStringLiteral("0"),
                    store::tl_normalizedPath(item),
                    record.value(QLatin1String(keys::State)).toString()};
    if (record.value(QLatin1String(keys::RepeatType)).toString() != u"when due")
        return row;
    const QString unit = record.value(QLatin1String(keys::RepeatUnit)).toString();
    const qint64 factor = record.value(QLatin1String(keys::RepeatFactor)).toString().toLongLong();
    if (due <= now)
        row.fireDate = firstStepAfter(due, RepeatStep::of(unit, factor), now).value_or(due);
    if (due < now)
        row.counterIncrement = QStringLiteral("0");
    if (factor == 1)
        row.repeatInterval = QString::number(repeatIntervalCode(unit));
    return row;
}

} // namespace

QList<ReminderRow> reminderRows(const QDateTime &now)
{
    QList<ReminderRow> rows;
    for (const QString &book : reminderBooks()) {
        const TaskDetails details = TaskDetails::ofBook(book);
        for (auto it = details.map.cbegin(); it != details.map.cend(); ++it) {
            if (isCounterKey(it.key()))
                continue;
            const QVariantMap record = it.value().toMap();
            const std::optional<QDateTime> due = dueDateOf(record);
            if (!due || isFinishedState(record.value(QLatin1String(keys::State)).toString()))
                continue;
            const QString item = path::appendingComponent(book, it.key());
            if (QFileInfo::exists(item))
                rows << rowFor(item, record, *due, now);
        }
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto &a, const auto &b) { return a.modDate < b.modDate; });
    return rows;
}

platform::Reminder tl_notificationForDate(const QString &itemPath, const QDateTime &date, unsigned)
{
    return {itemPath,
            QStringLiteral("Due Task"),
            path::deletingExtension(path::lastComponent(itemPath)),
            QStringLiteral("Open"),
            itemPath,
            date,
            tl_dueDateHasAlertTime(date)};
}

QList<ReminderRow> rebuildReminders(platform::ReminderCentre &centre)
{
    logLine(QStringLiteral("reposting notifications"));
    centre.setScheduled({});
    const QDateTime now = clock().now();
    const QList<ReminderRow> rows = reminderRows(now);
    const QList<platform::Reminder> delivered = centre.delivered();
    QList<platform::Reminder> reminders;
    for (const ReminderRow &row : rows) {
        if (row.modDate <= now)
            continue;
        reminders << tl_notificationForDate(row.path, row.fireDate, row.repeatInterval.toUInt());
        for (const platform::Reminder &shown : delivered)
            if (localizedCompare(shown.identifier, row.path) == 0)
                centre.removeDelivered(shown.identifier);
    }
    centre.setScheduled(reminders);
    logLine(QStringLiteral("reposting done, %1 are due, %2 have notifications")
                .arg(rows.size() - reminders.size())
                .arg(reminders.size()));
    return rows;
}

void useReminderCentre(std::shared_ptr<platform::ReminderCentre> centre)
{
    centre->didDeliver = [](const platform::Reminder &reminder) {
        logLine(QStringLiteral("did deliver notification"));
        tl_correctTaskCountAtPath(path::deletingLastComponent(reminder.taskPath));
    };
    reminderRebuild() = [centre] { rebuildReminders(*centre); };
}

std::function<void()> &reminderRebuild()
{
    static std::function<void()> rebuild;
    return rebuild;
}

void tl_repostAllNotifications()
{
    if (reminderRebuild())
        reminderRebuild()();
}

void scheduleReminderRebuild()
{
    Scheduler::main().schedule(QStringLiteral("tl_repostAllNotifications"), 0.5,
                               [] { tl_repostAllNotifications(); });
}

} // namespace tl::tasks
