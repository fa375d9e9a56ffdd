// The list follows single files: a change, a move, a deletion or a new file
// touches its one row, never the whole list.
#include "browser/browser_keys.h"
#include "browser/document_list.h"
#include "browser/later_sources.h"
#include "browser/smart_books.h"
#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "foundation/scheduler.h"
#include "platform/settings.h"
#include "shell/shell_keys.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/task_records.h"

#include <QFileInfo>
#include <algorithm>
#include <vector>

namespace tl::browser {

using store::ListRow;
namespace S = keys::setting;

struct TLKSDocumentListViewController::Observers
{
    std::vector<std::unique_ptr<ScopedObserver>> observers;
};

namespace {

bool isBookFolder(const QString &path)
{
    return QFileInfo(path).isDir() &&
           !store::packageExtensions().contains(store::lowerCasedExtension(path));
}

bool outlineIsCollapsed()
{
    return platform::settings().boolValue(QLatin1String(S::OutlineIsCollapsed));
}

// The row of a document in a task list, with its record read once.
ListRow rowInBook(const QString &itemPath, bool taskList)
{
    QVariantMap record;
    if (taskList) {
        const QVariantMap details = store::readTaskDetails(path::deletingLastComponent(itemPath));
        const auto key = store::taskRecordKeyForName(details, path::lastComponent(itemPath));
        if (key)
            record = details.value(*key).toMap();
    }
    return store::tl_dictionaryForItemAsTask(itemPath, taskList, record);
}

// Whether a row that changed may take another place in a list sorted by the
// key: a new modification date alone moves nothing in a list by title.
bool orderMayChange(const ListRow &before, const ListRow &after, const QString &key)
{
    if (before.title != after.title || before.creationDate != after.creationDate ||
        before.custom != after.custom || before.pinnedSequence != after.pinnedSequence)
        return true;
    if (key == u"modDate")
        return before.modDate != after.modDate;
    if (key == u"DueDate")
        return before.dueDate != after.dueDate;
    return false;
}

} // namespace

TLKSDocumentListViewController::TLKSDocumentListViewController() = default;

TLKSDocumentListViewController::~TLKSDocumentListViewController()
{
    Scheduler::main().cancel(QStringLiteral("reloadTaskList %1").arg(quintptr(this)));
}

std::optional<ListRow> TLKSDocumentListViewController::rowForPath(const QString &itemPath) const
{
    if (!QFileInfo::exists(itemPath))
        return std::nullopt;
    if (isPlainBook())
        return rowInBook(itemPath, isTaskList() && !isBookFolder(itemPath));
    const ListRow row = rowInBook(itemPath, store::tl_itemIsTask(itemPath));
    return row;
}

bool TLKSDocumentListViewController::rowBelongsHere(const QString &itemPath) const
{
    if (store::tl_pathIsExcludedFromDisplay(itemPath) || !QFileInfo::exists(itemPath))
        return false;
    const QString name = path::lastComponent(itemPath);
    if (!matchesFilter(name))
        return false;
    switch (smartBookType) {
    case OrdinaryBook:
        if (path::deletingLastComponent(itemPath) != path)
            return false;
        if (isBookFolder(itemPath))
            return outlineIsCollapsed();
        return !(platform::settings().boolValue(QLatin1String(S::HideDoneTasks)) &&
                 store::tl_taskIsDoneOrCanceled(store::tl_iconForTask(itemPath)));
    case Context:
        return tl_verifiedTagList(itemPath).contains(path);
    case RecentlyModified:
        return store::tl_pathIsRecentlyModified(itemPath);
    default:
        return false;
    }
}

// The row goes where sorting the whole list would put it, found by halving
// with the one sort asked about pairs: an import of thousands of notes
// would otherwise sort the list again for each of them.
void TLKSDocumentListViewController::insertRow(const ListRow &row)
{
    QList<ListRow> &list = isBookFolder(row.path) ? booksList : documentsList;
    const auto strictlyBefore = [this](const ListRow &a, const ListRow &b) {
        QList<ListRow> pair{b, a};
        store::tl_sortByParameter(pair, sortOrder, !sortAscending);
        return pair.first().path == a.path;
    };
    list.insert(std::upper_bound(list.begin(), list.end(), row, strictlyBefore), row);
    changed();
}

void TLKSDocumentListViewController::documentModifiedOnDisk(const QString &changedPath)
{
    const QString name = path::lastComponent(changedPath);
    const QString parent = path::deletingLastComponent(changedPath);
    const bool isDetails = name == QLatin1String(names::TasklistDetails);
    const bool isBookProperties = name == QLatin1String(names::BookProperties);

    // Sub-book rows show their own properties while the outline is collapsed.
    if (outlineIsCollapsed() && (isDetails || isBookProperties)) {
        bool any = false;
        for (ListRow &row : booksList)
            if (changedPath.startsWith(row.path + u'/') && QFileInfo::exists(row.path)) {
                row = store::tl_rowForItem(row.path);
                any = true;
            }
        if (any)
            changed();
    }
    if (store::tl_pathIsFinderIcon(changedPath))
        return;
    const bool relevant =
        parent == path || !isPlainBook() || (isBookProperties && path.startsWith(parent + u'/'));
    if (!relevant)
        return;

    if (isDetails) {
        if (isTaskList()) {
            // A burst of writes to the details ends in one reload.
            Scheduler::main().schedule(QStringLiteral("reloadTaskList %1").arg(quintptr(this)), 0.3,
                                       [this] { getDocumentsInFolder(); });
        } else if (!isPlainBook()) {
            for (ListRow &row : documentsList)
                if (row.parent == parent)
                    row = rowInBook(row.path, true);
            changed();
        }
        return;
    }
    if (isBookProperties) {
        reloadBook();
        return;
    }

    QString item = changedPath;
    if (item.endsWith(u".plist") && QFileInfo::exists(path::deletingExtension(item)))
        item = path::deletingExtension(item);
    if (store::tl_pathIsDotFile(item) || !QFileInfo::exists(item))
        return;
    qsizetype index = 0;
    if (QList<ListRow> *list = listHoldingPath(item, &index)) {
        const std::optional<ListRow> row = rowForPath(item);
        if (row && *row != (*list)[index]) {
            const bool resort = orderMayChange((*list)[index], *row, sortOrder);
            (*list)[index] = *row;
            if (resort)
                sortDocuments();
            changed();
        }
    } else if (rowBelongsHere(item)) {
        if (const std::optional<ListRow> row = rowForPath(item))
            insertRow(*row);
    }
}

void TLKSDocumentListViewController::documentMoved(const QString &originalPath,
                                                   const QString &newPath)
{
    // The shown book, or one of its books, moved: follow it.
    if (isPlainBook() && (path == originalPath || path.startsWith(originalPath + u'/'))) {
        path = newPath + path.mid(originalPath.size());
        getDocumentsInFolder();
        return;
    }
    qsizetype index = 0;
    QList<ListRow> *list = listHoldingPath(originalPath, &index);
    const bool stays = isPlainBook() ? rowBelongsHere(newPath) : QFileInfo::exists(newPath);
    if (list && stays) {
        if (const std::optional<ListRow> row = rowForPath(newPath)) {
            (*list)[index] = *row;
            sortDocuments();
            changed();
        }
    } else if (list) {
        documentDeletedFromDisk(originalPath);
    } else if (stays && isPlainBook()) {
        newFileCreated(newPath);
    }
}

void TLKSDocumentListViewController::documentDeletedFromDisk(const QString &deletedPath)
{
    if (isPlainBook() && (path == deletedPath || path.startsWith(deletedPath + u'/'))) {
        const QString root = store::libraryRoot();
        QString book = path::deletingLastComponent(deletedPath);
        while (!QFileInfo(book).isDir() && book.size() > root.size())
            book = path::deletingLastComponent(book);
        path = store::tl_itemIsChildOfTavelle(book) ? book : root;
        getDocumentsInFolder();
        return;
    }
    qsizetype index = 0;
    if (QList<ListRow> *list = listHoldingPath(deletedPath, &index)) {
        list->removeAt(index);
        changed();
    }
}

void TLKSDocumentListViewController::newFileCreated(const QString &createdPath)
{
    qsizetype index = 0;
    if (listHoldingPath(createdPath, &index) || !rowBelongsHere(createdPath))
        return;
    if (const std::optional<ListRow> row = rowForPath(createdPath))
        insertRow(*row);
}

void TLKSDocumentListViewController::taskIconChanged(const QString &changedPath)
{
    if (isPlainBook() && changedPath == path) {
        getDocumentsInFolder();
        return;
    }
    qsizetype index = 0;
    if (listHoldingPath(changedPath, &index))
        documentModifiedOnDisk(changedPath);
}

void TLKSDocumentListViewController::startObserving()
{
    m_observers = std::make_unique<Observers>();
    const auto observe = [this](const char *name, auto handler) {
        m_observers->observers.push_back(std::make_unique<ScopedObserver>(
            QLatin1String(name),
            [handler](const QString &, const QVariantMap &payload) { handler(payload); }));
    };
    const auto pathOf = [](const QVariantMap &payload) {
        return payload.value(QStringLiteral("path")).toString();
    };
    observe(events::FileModifiedOnDisk,
            [this, pathOf](const QVariantMap &p) { documentModifiedOnDisk(pathOf(p)); });
    observe(events::UpdateTaskIcon, [this](const QVariantMap &p) {
        taskIconChanged(p.value(QStringLiteral("object")).toString());
    });
    observe(events::FileDeletedFromDisk,
            [this, pathOf](const QVariantMap &p) { documentDeletedFromDisk(pathOf(p)); });
    observe(events::NewFileCreated,
            [this, pathOf](const QVariantMap &p) { newFileCreated(pathOf(p)); });
    observe(events::FileMoved, [this](const QVariantMap &p) {
        documentMoved(p.value(QStringLiteral("originalPath")).toString(),
                      p.value(QStringLiteral("newPath")).toString());
    });
    observe(events::NewBookSelected, [this, pathOf](const QVariantMap &p) {
        handleOpenBookNotification(pathOf(p), p.value(QStringLiteral("smartType")).toInt());
    });
}

} // namespace tl::browser
