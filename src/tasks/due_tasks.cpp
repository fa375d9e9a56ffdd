#include "tasks/due_tasks.h"

#include "foundation/clock.h"
#include "foundation/path_string.h"
#include "platform/settings.h"
#include "store/log.h"
#include "tasks/task_details.h"
#include "tasks/task_keys.h"
#include "tasks/task_lists.h"

#include <QFileInfo>

namespace tl::tasks {

QDateTime dueTasksHorizon(qint64 lookAhead, const QDateTime &now)
{
    if (lookAhead == 0)
        return now;
    const QTime time = now.toLocalTime().time();
    const qint64 sinceMidnight = time.hour() * 3600 + time.minute() * 60 + time.second();
    const QDateTime endOfToday = now.addSecs(86399 - sinceMidnight);
    static constexpr qint64 kDays[] = {0, 0, 1, 3, 5, 7};
    const qint64 days = lookAhead > 0 && lookAhead <= 5 ? kDays[lookAhead] : lookAhead;
    return endOfToday.addSecs(days * 86400);
}

DueTasks tl_arrayOfDueTasks(std::optional<qint64> lookAhead)
{
    logLine(QStringLiteral("getting due tasks"));
    const QStringList books =
        platform::settings().boolValue(QLatin1String(keys::RebuildingAllTasklistsFlag))
            ? tl_listOfTasklists()
            : allTaskListBooks();
    const QDateTime now = clock().now();
    const QDateTime horizon = dueTasksHorizon(
        lookAhead.value_or(platform::settings().integer(QLatin1String(keys::DueTasksLookAhead))),
        now);
    DueTasks due;
    for (const QString &book : books) {
        TaskDetails details = TaskDetails::ofBook(book);
        qint64 overdue = 0;
        for (auto it = details.map.cbegin(); it != details.map.cend(); ++it) {
            if (isCounterKey(it.key()))
                continue;
            const QVariantMap record = it.value().toMap();
            const auto date = dueDateOf(record);
            if (!date || isFinishedState(record.value(QLatin1String(keys::State)).toString()))
                continue;
            const QString item = path::appendingComponent(book, it.key());
            if (!QFileInfo::exists(item))
                continue;
            if (*date < now)
                ++overdue;
            else if (*date >= horizon)
                continue;
            due.rows << store::tl_dictionaryForItemAsTask(item, true, record, store::BookOrder());
        }
        if (details.exists && overdue != details.counter(keys::DueItemCount)) {
            details.setCounter(keys::DueItemCount, overdue);
            details.save(true);
        }
        due.overdue += overdue;
    }
    return due;
}

} // namespace tl::tasks
