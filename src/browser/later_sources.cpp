#include "browser/later_sources.h"

#include "contexts/tag_database.h"
#include "links/backlink_upkeep.h"
#include "tasks/due_tasks.h"
#include "tasks/task_list.h"
#include "tasks/task_lists.h"

namespace tl::browser {

QList<store::ListRow> tl_arrayOfDueTasks()
{
    return tasks::tl_arrayOfDueTasks().rows;
}

QStringList tl_listOfAllAvailableTags()
{
    return contexts::tl_listOfAllAvailableTags();
}

QStringList tl_listOfAllItemsForTag(const QString &tag)
{
    return contexts::tl_listOfAllItemsForTag(tag);
}

QStringList tl_verifiedTagList(const QString &path)
{
    return contexts::tl_verifiedTagList(path);
}

void requestPlaceholderDownload(const QString &)
{
}

void updateListOfTasklists()
{
    tasks::updateListOfTasklists();
}

void updateListOfTasklistsQuick()
{
    tasks::tl_listOfTasklists();
}

void updateListOfTasklistRemovingAdding(const QString &removal, const QString &addition)
{
    tasks::updateListOfTasklistRemovingAdding(removal, addition);
}

void tl_taskPlistChangedAtPath(const QString &book)
{
    // A plist changed from outside keeps the records of files it does not
    // know yet: they may still be syncing in.
    tasks::tl_correctTaskCountAtPathWithCleanup(book, false);
}

void tl_collectTagsInPlists(const QStringList &plistPaths)
{
    contexts::tl_collectTagsInPlists(plistPaths);
}

void tl_repairBrokenBacklink(const QString &itemPath)
{
    links::repairAfterCollection(itemPath);
}

} // namespace tl::browser
