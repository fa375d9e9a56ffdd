#pragma once

#include <QString>
#include <optional>

// The numbers an outline row carries beside its title: on a task list the
// open tasks next to the overdue ones, on the Due Tasks smart book the due
// tasks next to the overdue ones.
namespace tl::browser {

struct TaskBadge
{
    qint64 count = 0;
    qint64 overdue = 0;
    bool operator==(const TaskBadge &) const = default;
};

// A task list's badge, counting the book alone; nothing for a book that is
// no task list or when both numbers are 0.
std::optional<TaskBadge> taskBadgeForBook(const QString &book);
// The Due Tasks smart book's badge; nothing when no task is due.
std::optional<TaskBadge> dueTasksBadge();

} // namespace tl::browser
