#pragma once

#include "store/list_row.h"

#include <QDateTime>
#include <QList>
#include <optional>

// The tasks that are due: overdue ones and those due before the look-ahead
// horizon, over all task lists of the library.
namespace tl::tasks {

// The horizon of "dueTasksLookAhead" n from now: 0 now, 1 the end of today,
// 2 to 5 one, three, five and seven days later, any other n that many days.
QDateTime dueTasksHorizon(qint64 lookAhead, const QDateTime &now);

struct DueTasks
{
    QList<store::ListRow> rows;
    qint64 overdue = 0;
};

// Rows of the due tasks, book by book, within the look-ahead given or else
// the one of "dueTasksLookAhead". Each book's overdue counter is set right on
// the way.
DueTasks tl_arrayOfDueTasks(std::optional<qint64> lookAhead = std::nullopt);

} // namespace tl::tasks
