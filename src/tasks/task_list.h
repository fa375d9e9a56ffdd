#pragma once

#include <QDateTime>
#include <QString>
#include <QVariantMap>
#include <optional>

// A book with a TLTasklistDetails.plist is a task list and every document in
// it a task. These operations read the book's details, change them and
// write them back whole; nothing is cached between calls.
namespace tl::tasks {

// Switches a task list on or off. Keeping details parks them in the
// inactive twin, from which switching on restores them.
void tl_toggleTasklistKeepingDetails(const QString &book, bool keep);
// Clears all task states, due dates and repeats of the book.
void tl_resetTasklist(const QString &book);
// Excludes an item from its task list, or readmits an excluded one; either
// way it forgets its due date and repeat.
void tl_toggleItemIsTask(const QString &itemPath);

// One step forward in the cycle open, started, done, canceled, open; the
// answer is the new icon name.
QString tl_toggleTaskWithDate(const QString &itemPath, const QDateTime &date);
QString tl_toggleTask(const QString &itemPath);

std::optional<QVariantMap> tl_getAllTaskDetails(const QString &itemPath);
// Stores a whole record under the item's name, when its book is a task list.
void tl_setTaskDetails(const QString &itemPath, const QVariantMap &record);
// The record follows a moved item into its new book; an empty target only
// removes it.
void tl_moveTaskToPath(const QString &oldPath, const QString &newPath);
// A copy takes its source's record along into a task list.
void tl_copyTaskDetailsToPath(const QString &source, const QString &target);

// Recounts the cached counters, dropping the records of files that are gone
// when cleanup is on; answers the number of overdue tasks.
qint64 tl_correctTaskCountAtPathWithCleanup(const QString &book, bool cleanup);
qint64 tl_correctTaskCountAtPath(const QString &book);

} // namespace tl::tasks
