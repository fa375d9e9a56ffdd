#include "browser/later_sources.h"

namespace tl::browser {

QList<store::ListRow> tl_arrayOfDueTasks()
{
    return {};
}

QStringList tl_listOfAllAvailableTags()
{
    return {};
}

QStringList tl_listOfAllItemsForTag(const QString &)
{
    return {};
}

QStringList tl_verifiedTagList(const QString &)
{
    return {};
}

QStringList lastSearchResults()
{
    return {};
}

void requestPlaceholderDownload(const QString &)
{
}

void updateListOfTasklists()
{
}

void updateListOfTasklistsQuick()
{
}

void updateListOfTasklistRemovingAdding(const QString &, const QString &)
{
}

void tl_taskPlistChangedAtPath(const QString &)
{
}

void tl_collectTagsInPlist(const QString &)
{
}

void tl_repairBrokenBacklink(const QString &)
{
}

} // namespace tl::browser
