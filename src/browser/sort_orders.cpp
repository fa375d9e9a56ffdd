// Where the list's sort key and direction are kept, and how the sort menu
// and a drag change them.
#include "browser/browser_keys.h"
#include "browser/document_list.h"
#include "browser/smart_books.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "platform/settings.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_folders.h"
#include "store/library_root.h"
#include "store/plist_file.h"
#include "store/properties.h"

namespace tl::browser {

namespace S = keys::setting;
namespace P = keys::property;

namespace {

// Smart books whose order lives in the settings store.
struct SortSettings
{
    int type;
    const char *keySetting;
    const char *descendingSetting;
    const char *fallback;
};

constexpr SortSettings kSmartSortSettings[] = {
    {DueTasks, S::DueTasksSortOrder, S::DueTasksSortDescending, "DueDate"},
    {Contexts, S::ContextsSortOrder, S::ContextsSortDescending, "title"},
    {Context, S::ContextTagSortOrder, S::ContextTagSortDescending, "title"},
    {Favorites, S::FavoritesSortOrder, S::FavoritesSortDescending, "title"},
};

const SortSettings *sortSettingsOf(int type)
{
    for (const SortSettings &s : kSmartSortSettings)
        if (s.type == type)
            return &s;
    return nullptr;
}

// The sort menu's first four entries.
constexpr const char *kMenuKeys[] = {"title", "creationDate", "modDate", "custom"};
constexpr int kAscendingIndex = 5;

struct Label
{
    const char *key;
    const char *label;
};
constexpr Label kLabels[] = {{"title", "Title"},
                             {"creationDate", "Created"},
                             {"modDate", "Modified"},
                             {"DueDate", "State"},
                             {"custom", "Custom"}};

QString bookPropertiesOf(const QString &book)
{
    return path::appendingComponent(book, QLatin1String(names::BookProperties));
}

QStringList pathsOf(const QList<store::ListRow> &rows, bool titles)
{
    QStringList result;
    for (const store::ListRow &row : rows)
        result << (titles ? row.title : row.path);
    return result;
}

} // namespace

void TLKSDocumentListViewController::loadDisplayParameters()
{
    platform::Settings &settings = platform::settings();
    if (const SortSettings *s = sortSettingsOf(smartBookType)) {
        sortOrder = settings.string(QLatin1String(s->keySetting));
        if (sortOrder.isEmpty())
            sortOrder = QLatin1String(s->fallback);
        sortAscending = !settings.boolValue(QLatin1String(s->descendingSetting));
    } else if (isPlainBook()) {
        const QVariantMap properties = store::readPlistDictionary(bookPropertiesOf(path));
        sortOrder = properties.value(P::SortOrderForNotes).toString();
        if (sortOrder.isEmpty())
            sortOrder = QStringLiteral("title");
        sortAscending = properties.value(P::SortNotesDescending).toString() != u"YES";
    } else {
        sortOrder = QStringLiteral("title");
        sortAscending = true;
    }
    if (isTaskList() && sortOrder == u"modDate")
        sortOrder = QStringLiteral("DueDate");
}

void TLKSDocumentListViewController::selectSortOrder(int index)
{
    if (index < 0 || index > 6)
        return;
    const SortSettings *smart = sortSettingsOf(smartBookType);
    if (!isPlainBook() && !smart)
        return;
    std::optional<QString> key;
    if (index < 4) {
        key = QLatin1String(kMenuKeys[index]);
        if (index == 2 && (isPlainBook() ? isTaskList() : smartBookType == DueTasks))
            key = QStringLiteral("DueDate");
    }
    const bool descending = index != kAscendingIndex;

    if (isPlainBook()) {
        if (index == 0)
            store::tl_removePropertyForKey(path, P::SortOrderForNotes);
        else if (key)
            store::tl_setProperty(path, *key, P::SortOrderForNotes);
        else if (descending)
            store::tl_setProperty(path, QStringLiteral("YES"), P::SortNotesDescending);
        else
            store::tl_removePropertyForKey(path, P::SortNotesDescending);
    } else {
        if (key)
            platform::settings().set(QLatin1String(smart->keySetting), *key);
        else
            platform::settings().set(QLatin1String(smart->descendingSetting), descending);
        if (smartBookType == Favorites)
            NotificationCenter::defaultCenter().post(events::BookViewShouldUpdateFavorites);
        else if (smartBookType == Contexts)
            NotificationCenter::defaultCenter().post(events::ReorderContextSmartBook);
    }
    loadDisplayParameters();
    sortDocuments();
    changed();
    if (isPlainBook())
        NotificationCenter::defaultCenter().post(events::HandleFileModificationInstantly,
                                                 {{"path", bookPropertiesOf(path)}});
}

void TLKSDocumentListViewController::saveCustomSortOrder()
{
    const QString root = store::libraryRoot();
    if (smartBookType == Contexts) {
        const QString tagsFile =
            path::appendingComponent(root, QStringLiteral("TLResources/Misc/AvailableTags.txt"));
        store::writePlistFile(tagsFile, pathsOf(smartBooksList, false), false);
        NotificationCenter::defaultCenter().post(events::ReorderContextSmartBook);
    } else if (smartBookType == Favorites) {
        QStringList relative;
        for (const QString &item : pathsOf(booksList, false) + pathsOf(documentsList, false))
            relative << store::tl_normalizedPath(item);
        const QString tagDB =
            path::appendingComponent(store::applicationSupportRootFolder(), "TagDB.plist");
        QVariantMap tags = store::readPlistDictionary(tagDB);
        tags.insert(QLatin1String(P::FavoriteTag), relative);
        store::writePlistFile(tagDB, tags, true);
    } else if (isPlainBook()) {
        const QString file = bookPropertiesOf(path);
        QVariantMap properties = store::readPlistDictionary(file);
        properties.insert(P::Books, pathsOf(booksList, true));
        properties.insert(P::Notes, pathsOf(documentsList, true));
        store::writePlistFile(file, properties, false);
        // The rows stand in the order just saved.
        for (QList<store::ListRow> *list : {&booksList, &documentsList})
            for (qsizetype i = 0; i < list->size(); ++i)
                (*list)[i].custom = QString::asprintf("%.4ld", long(i));
    }
}

bool TLKSDocumentListViewController::sortControlIsVisible() const
{
    return isPlainBook() || sortSettingsOf(smartBookType) != nullptr;
}

QString TLKSDocumentListViewController::sortButtonLabel() const
{
    for (const Label &l : kLabels)
        if (sortOrder == QLatin1String(l.key))
            return QLatin1String(l.label);
    return QStringLiteral("Title");
}

} // namespace tl::browser
