#include "browser/document_list.h"

#include "browser/browser_keys.h"
#include "browser/later_sources.h"
#include "browser/library_search.h"
#include "browser/smart_books.h"
#include "foundation/clock.h"
#include "foundation/compare.h"
#include "foundation/dates.h"
#include "foundation/path_string.h"
#include "links/attachments.h"
#include "platform/settings.h"
#include "shell/shell_keys.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/plist_file.h"
#include "store/properties.h"
#include "store/recent_items.h"
#include "store/task_records.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QThreadPool>

namespace tl::browser {

using store::BookOrder;
using store::ListRow;
namespace S = keys::setting;

namespace {

bool setting(const char *key)
{
    return platform::settings().boolValue(QLatin1String(key));
}

bool isPackage(const QString &path)
{
    return store::packageExtensions().contains(store::lowerCasedExtension(path));
}

QString taskState(const QVariantMap &record)
{
    return record.value(QStringLiteral("State")).toString();
}

// A row of an item found by a smart book: shown as a task when it is one,
// with its book's task details read once for it.
ListRow rowAsFound(const QString &itemPath)
{
    const QString book = path::deletingLastComponent(itemPath);
    if (QFileInfo(itemPath).isDir() || !store::tl_bookIsTasklist(book))
        return store::tl_rowForItem(itemPath);
    const QVariantMap details = store::readTaskDetails(book);
    const auto key = store::taskRecordKeyForName(details, path::lastComponent(itemPath));
    const QVariantMap record = key ? details.value(*key).toMap() : QVariantMap();
    return store::tl_dictionaryForItemAsTask(itemPath, taskState(record) != u"no_task", record);
}

ListRow smartBookRow(int type, const QString &rowPath, const QString &title)
{
    ListRow row;
    row.title = title;
    row.path = rowPath;
    row.smartType = type;
    row.modDate = clock().now();
    row.dueDate = distantFuture();
    row.pinnedSequence = std::numeric_limits<qint64>::max();
    return row;
}

QStringList absolutePaths(const QStringList &rootRelative)
{
    const QString root = store::libraryRoot();
    QStringList result;
    for (const QString &entry : rootRelative)
        result << (entry == u"/" ? root : path::appendingComponent(root, entry));
    return result;
}

QStringList stringsOf(const QVariantList &list)
{
    QStringList result;
    for (const QVariant &v : list)
        result << v.toString();
    return result;
}

// Items of the first tag that bear every further tag, in the first tag's order.
QStringList itemsOfAllTags(const QString &tagLines)
{
    const QStringList tags = tagLines.split(u'\n');
    QStringList items = tl_listOfAllItemsForTag(tags.value(0));
    for (qsizetype i = 1; i < tags.size(); ++i) {
        if (tags[i].isEmpty())
            continue;
        const QStringList further = tl_listOfAllItemsForTag(tags[i]);
        items.removeIf([&](const QString &item) { return !further.contains(item); });
    }
    return items;
}

} // namespace

bool TLKSDocumentListViewController::isTaskList() const
{
    return isPlainBook() && store::tl_bookIsTasklist(path);
}

void TLKSDocumentListViewController::changed()
{
    rowsChanged();
}

void TLKSDocumentListViewController::getDocumentsInFolder()
{
    smartBooksList.clear();
    booksList.clear();
    documentsList.clear();
    numberOfHiddenDoneTasks = 0;
    if (!path.isEmpty()) {
        if (isPlainBook())
            fillPlainBook();
        else
            fillSmartBook();
    }
    changed();
}

void TLKSDocumentListViewController::fillPlainBook()
{
    const bool taskList = isTaskList();
    // One read of the details and of the book's properties serves every row.
    QVariantMap details = taskList ? store::readTaskDetails(path) : QVariantMap();
    const BookOrder order = BookOrder::ofBook(path);
    const bool collapsed = setting(S::OutlineIsCollapsed);
    const bool hideDone = setting(S::HideDoneTasks);
    const bool inCloud = store::rootIsInCloudContainer();

    QDirIterator it(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    while (it.hasNext()) {
        const QString entry = it.next();
        const QString name = it.fileName();
        if (inCloud && name.endsWith(u"icloud")) {
            requestPlaceholderDownload(entry);
            continue;
        }
        if (store::tl_pathIsExcludedFromDisplay(entry) || !matchesFilter(name))
            continue;
        if (it.fileInfo().isDir() && !isPackage(entry)) {
            if (collapsed)
                booksList << store::tl_rowForItem(entry, order);
            continue;
        }
        const auto key = store::taskRecordKeyForName(details, name);
        const QVariantMap record = key ? details.value(*key).toMap() : QVariantMap();
        if (hideDone && key && store::tl_taskIsDoneOrCanceled(taskState(record))) {
            ++numberOfHiddenDoneTasks;
            continue;
        }
        documentsList << store::tl_dictionaryForItemAsTask(entry, taskList, record, order);
        // Each later lookup searches a shorter dictionary.
        if (key)
            details.remove(*key);
    }
    if (collapsed && path.toLower() == store::libraryRoot().toLower())
        addSmartBookRows();
    sortDocuments();
}

bool TLKSDocumentListViewController::matchesFilter(const QString &name) const
{
    if (searchFilter.isEmpty())
        return true;
    // Filtering the last query's results compares as the query did, accents
    // and case aside; every other list is filtered with accents significant.
    if (smartBookType == SearchResults || smartBookType == RecentlyModified)
        return caseAndDiacriticInsensitiveContains(name, searchFilter);
    return caseInsensitiveContains(name, searchFilter);
}

void TLKSDocumentListViewController::addSmartBookRows()
{
    for (int type = kFirstListedSmartType; type <= kLastListedSmartType; ++type)
        if (smartBookShouldExist(type))
            smartBooksList << smartBookRow(type, titleForSmartBookOfType(type),
                                           titleForSmartBookOfType(type));
}

void TLKSDocumentListViewController::addRows(const QStringList &paths, bool asFound)
{
    const bool hideDone = setting(S::HideDoneTasks);
    for (const QString &item : paths) {
        if (!matchesFilter(path::lastComponent(item)))
            continue;
        if (QFileInfo(item).isDir() && !isPackage(item)) {
            booksList << store::tl_rowForItem(item);
            continue;
        }
        ListRow row = asFound ? rowAsFound(item) : store::tl_rowForItem(item);
        if (hideDone && store::tl_taskIsDoneOrCanceled(row.taskIcon)) {
            ++numberOfHiddenDoneTasks;
            continue;
        }
        documentsList << row;
    }
}

void TLKSDocumentListViewController::fillSmartBook()
{
    switch (smartBookType) {
    case RecentItems:
        addRows(absolutePaths(store::TLStaticFunctions::verifiedListOfRecentItems()), true);
        return;
    case ICloudConflicts:
        addRows(absolutePaths(
                    stringsOf(platform::settings().array(S::ICloudArrayOfUnresolvedConflicts))),
                true);
        return;
    case DueTasks:
        documentsList = tl_arrayOfDueTasks();
        break;
    case AllTaskLists:
        for (const QString &book :
             absolutePaths(stringsOf(platform::settings().array(S::AllTaskLists))))
            if (matchesFilter(path::lastComponent(book)) && store::tl_bookIsTasklist(book))
                booksList << store::tl_rowForItem(book);
        break;
    case Contexts:
        for (const QString &tag : tl_listOfAllAvailableTags())
            if (tag != QLatin1String(keys::property::FavoriteTag) && matchesFilter(tag))
                smartBooksList << smartBookRow(Context, tag, tag);
        break;
    case Context:
        addRows(itemsOfAllTags(path), true);
        break;
    case Favorites: {
        QStringList existing;
        for (const QString &item : tl_listOfAllItemsForTag(keys::property::FavoriteTag)) {
            if (QFileInfo::exists(item))
                existing << item;
            else
                logLine(QStringLiteral("skipping non existent: %1").arg(item));
        }
        addRows(existing, false);
        // The tag's order is the manual order.
        long sequence = 0;
        for (QList<ListRow> *list : {&booksList, &documentsList})
            for (ListRow &row : *list)
                row.custom = QString::asprintf("%.4ld", sequence++);
        break;
    }
    case SearchResults:
        addRows(lastSearchResults(), true);
        return;
    case RecentlyModified:
        addRows(searchFilter.isEmpty()
                    ? pathsOfRows(tl_recentlyModifiedItems(
                          platform::settings().integer(QLatin1String(S::RecentlyModifiedSince))))
                    : readResultFile(recentlyModifiedItemsFile()),
                true);
        store::tl_sortByParameter(documentsList, QStringLiteral("modDate"), true);
        return;
    default:
        return;
    }
    sortDocuments();
    store::tl_sortByParameter(smartBooksList, sortOrder, !sortAscending);
}

void TLKSDocumentListViewController::sortDocuments()
{
    store::tl_sortByParameter(documentsList, sortOrder, !sortAscending);
    if (!booksList.isEmpty())
        store::tl_sortByParameter(booksList, sortOrder, !sortAscending);
}

void TLKSDocumentListViewController::reloadBook()
{
    if (isPlainBook() && !store::tl_itemIsChildOfTavelle(path))
        path = store::libraryRoot();
    loadDisplayParameters();
    getDocumentsInFolder();
}

void TLKSDocumentListViewController::handleOpenBookNotification(const QString &bookPath,
                                                                int smartType)
{
    if (!takeOpenedBook(bookPath, smartType))
        return;
    reloadBook();
    // Attachments nothing in the book uses any more go, off the main thread.
    if (smartBookType == 0)
        QThreadPool::globalInstance()->start(
            [book = path] { links::tl_cleanupImagesFolder(book); });
}

bool TLKSDocumentListViewController::takeOpenedBook(const QString &bookPath, int smartType)
{
    const bool hadFilter = !searchFilter.isEmpty();
    searchFilter.clear();
    QString target = bookPath;
    if (smartType == 0 && !store::tl_pathIsBook(bookPath))
        target = path::deletingLastComponent(bookPath);
    if (smartType == 0 && smartBookType == 0 && target == path && !hadFilter)
        return false;
    smartBookType = smartType == Inbox ? 0 : smartType;
    path = smartType == Inbox ? defaultInboxPath() : target;
    return true;
}

QList<store::ListRow> *TLKSDocumentListViewController::listHoldingPath(const QString &itemPath,
                                                                       qsizetype *index)
{
    for (QList<ListRow> *list : {&smartBooksList, &booksList, &documentsList})
        for (qsizetype i = 0; i < list->size(); ++i)
            if ((*list)[i].path == itemPath) {
                *index = i;
                return list;
            }
    return nullptr;
}

} // namespace tl::browser
