#include "browser/outline_badges.h"

#include "store/item_path.h"
#include "tasks/due_tasks.h"
#include "tasks/task_lists.h"

#include <QVariantMap>

namespace tl::browser {

namespace {

std::optional<TaskBadge> shown(const TaskBadge &badge)
{
    if (badge.count + badge.overdue == 0)
        return std::nullopt;
    return badge;
}

} // namespace

std::optional<TaskBadge> taskBadgeForBook(const QString &book)
{
    if (!store::tl_bookIsTasklist(book))
        return std::nullopt;
    const QVariantMap counts = tasks::tl_allOpenTasksCountingDescendants(book, false);
    const qint64 total = counts.value(QStringLiteral("totalTasks")).toLongLong();
    const qint64 done = counts.value(QStringLiteral("doneTasks")).toLongLong();
    return shown({total - done, counts.value(QStringLiteral("dueTasks")).toLongLong()});
}

std::optional<TaskBadge> dueTasksBadge()
{
    const tasks::DueTasks due = tasks::tl_arrayOfDueTasks();
    return shown({due.rows.size(), due.overdue});
}

} // namespace tl::browser
