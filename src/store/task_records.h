#pragma once

#include <QString>
#include <QVariantMap>
#include <optional>

// The task records of a task list: one dictionary per file name in the
// book's TLTasklistDetails.plist.
namespace tl::store {

// The whole details dictionary of a book; empty when it is no task list.
QVariantMap readTaskDetails(const QString &bookPath);

// The key of the record for a name: equal by locale-aware comparison, so a
// decomposed name finds its composed twin. The first match wins.
std::optional<QString> taskRecordKeyForName(const QVariantMap &details, const QString &name);

// The record of the item in its parent's details; empty when there is none.
QVariantMap taskRecordForItem(const QString &itemPath);

// Icon names by state: "no_task" none, "done" and "canceled" whatever the
// date, "started" and anything else (also "open") with "-due" when due.
QString tl_taskIconForStateIsDue(const QString &state, bool due);
// Whether an icon name or a state names a finished task.
bool tl_taskIsDoneOrCanceled(const QString &iconOrState);
// The icon of an item in a task list: empty for a book and outside task
// lists, "task-open" without a record.
QString tl_iconForTask(const QString &itemPath);
bool tl_itemIsTask(const QString &itemPath);

} // namespace tl::store
