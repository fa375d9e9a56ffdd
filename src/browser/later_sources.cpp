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

} // namespace tl::browser
