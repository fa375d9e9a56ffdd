#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

// The task lists of the whole library, kept as "allTaskLists" between
// collections, and the counts the outline's badges show.
namespace tl::tasks {

// Walks the library for task lists (skipping trashes and packages), stores
// them in "allTaskLists" ("/" for the root, else "/" plus the relative
// path) and answers their absolute paths.
QStringList tl_listOfTasklists();
// The regular collection: the walk, then a recount of every list found.
// Skipped when the last one is less than 2 seconds old.
void updateListOfTasklists();

// The books of the task lists as absolute paths, the root once whether it
// was stored as "" or "/"; a walk while a collection is being rebuilt.
QStringList allTaskListBooks();
// Keeps "allTaskLists" current between collections: either argument may
// name the plist or the book; the list is written only when it changed.
void updateListOfTasklistRemovingAdding(const QString &removal, const QString &addition);

// "totalTasks", "dueTasks", "doneTasks" of the book, and with descendants
// of the task lists below it, as decimal strings.
QVariantMap tl_allOpenTasksCountingDescendants(const QString &book, bool descendants);

} // namespace tl::tasks
