#pragma once

#include "store/list_row.h"

#include <QList>
#include <QString>
#include <QStringList>

// What the smart books list from subsystems that have not landed yet: due
// tasks, the tag database and the query results. Each finds nothing until
// its subsystem fills it in.
namespace tl::browser {

// Rows of the tasks due within the look-ahead, below the root.
QList<store::ListRow> tl_arrayOfDueTasks();
// Every tag of the library, purged against the disk.
QStringList tl_listOfAllAvailableTags();
// Absolute paths of the existing items bearing the tag.
QStringList tl_listOfAllItemsForTag(const QString &tag);
// The tags an item bears.
QStringList tl_verifiedTagList(const QString &path);
// Task-list bookkeeping: the list of all task lists and the clean-up of a
// book's records after its documents went away.
void updateListOfTasklists();
void updateListOfTasklistsQuick();
void updateListOfTasklistRemovingAdding(const QString &removal, const QString &addition);
void tl_taskPlistChangedAtPath(const QString &book);
// The tags written into properties files join the tag database.
void tl_collectTagsInPlists(const QStringList &plistPaths);
// A properties file copied from elsewhere gets its backlinks set right.
void tl_repairBrokenBacklink(const QString &itemPath);
// Asks the cloud service for the real file behind a placeholder.
void requestPlaceholderDownload(const QString &path);

} // namespace tl::browser
