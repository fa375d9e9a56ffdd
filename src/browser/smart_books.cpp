#include "browser/smart_books.h"

#include "browser/browser_keys.h"
#include "browser/later_sources.h"
#include "foundation/path_string.h"
#include "platform/settings.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/location_settings.h"

#include <QFileInfo>

namespace tl::browser {

namespace S = keys::setting;

namespace {

struct SmartBookKind
{
    int type;
    const char *title;
    const char *icon;
};

// Type 9 has a title but is never shown, so it has no icon.
constexpr SmartBookKind kKinds[] = {
    {Context, "Context", "icon-book-contexts"},
    {SearchResults, "Search Results", "icon-book-smart"},
    {DueTasks, "Due Tasks", "icon-book-tasks-overdue"},
    {Favorites, "Favorites", "icon-book-star"},
    {Inbox, "Inbox", "icon-book-inbox"},
    {AllTaskLists, "All Task Lists", "icon-book-tasks-alllists"},
    {RecentItems, "Recent Items", "icon-book-recent-items"},
    {RecentlyModified, "Recently Modified", "icon-book-recently-modified"},
    {HiddenItems, "Hidden Items", ""},
    {Contexts, "Contexts", "icon-book-contexts"},
    {ICloudConflicts, "iCloud Conflicts", "icon-book-conflict"},
};

const SmartBookKind *kindOf(int type)
{
    for (const SmartBookKind &kind : kKinds)
        if (kind.type == type)
            return &kind;
    return nullptr;
}

bool settingHasEntries(const char *key)
{
    return !platform::settings().array(QLatin1String(key)).isEmpty();
}

} // namespace

QString titleForSmartBookOfType(int type)
{
    if (type == OrdinaryBook)
        return {};
    const SmartBookKind *kind = kindOf(type);
    return kind ? QString::fromLatin1(kind->title) : QStringLiteral("UNTITLED SMART BOOK");
}

QString iconForSmartBookOfType(int type, bool isEmpty)
{
    if (type == Inbox && isEmpty)
        return QStringLiteral("icon-book-inbox-empty");
    const SmartBookKind *kind = kindOf(type);
    return kind ? QString::fromLatin1(kind->icon) : QString();
}

QString defaultInboxPath()
{
    const QString inbox = platform::settings().string(QLatin1String(S::DefaultInbox));
    return inbox.isEmpty() ? QString() : path::appendingComponent(store::libraryRoot(), inbox);
}

bool smartBookShouldExist(int type)
{
    switch (type) {
    case DueTasks:
        return !tl_arrayOfDueTasks().isEmpty();
    case Favorites:
        return !tl_listOfAllItemsForTag(QLatin1String(keys::property::FavoriteTag)).isEmpty();
    case Inbox: {
        const QString inbox = defaultInboxPath();
        return platform::settings().boolValue(QLatin1String(S::ShowInboxAsSmartBook)) &&
               !inbox.isEmpty() && QFileInfo(inbox).isDir();
    }
    case AllTaskLists:
        return platform::settings().boolValue(QLatin1String(S::SmartBookAllTaskLists)) &&
               settingHasEntries(S::AllTaskLists);
    case RecentItems:
    case RecentlyModified:
        return true;
    case Contexts:
        return platform::settings().boolValue(QLatin1String(S::ContextsEnabled));
    case ICloudConflicts:
        return settingHasEntries(S::ICloudArrayOfUnresolvedConflicts);
    default:
        return false;
    }
}

} // namespace tl::browser
