#include "browser/document_list_model.h"

#include "browser/coalescing_worker.h"
#include "browser/event_bridge.h"
#include "browser/item_drops.h"
#include "browser/list_previews.h"
#include "browser/smart_books.h"
#include "foundation/path_string.h"
#include "platform/settings.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/library_root.h"
#include "tasks/date_texts.h"

#include <QFileInfo>
#include <QMimeData>
#include <QMutex>
#include <QUrl>

namespace tl::browser {

using store::ListRow;

struct DocumentListModel::Entry
{
    // Stable across changes: the section of a header, the item of a row.
    QString key;
    QString header;
    std::optional<ListRow> row;

    bool sameContent(const Entry &other) const
    {
        return header == other.header && row == other.row;
    }
};

// The paths whose previews are wanted, shared with the job that makes them:
// a job takes all that are waiting when it starts.
struct DocumentListModel::PreviewQueue
{
    QMutex mutex;
    QStringList paths;

    void add(const QString &path)
    {
        QMutexLocker lock(&mutex);
        paths << path;
    }
    QStringList takeAll()
    {
        QMutexLocker lock(&mutex);
        return std::exchange(paths, {});
    }
};

namespace {

// What a scan off the main thread hands back.
struct ScanResult
{
    QString path;
    int smartBookType = 0;
    QList<ListRow> smartBooks;
    QList<ListRow> books;
    QList<ListRow> documents;
    qsizetype hiddenDoneTasks = 0;
};

// Smart book rows hold titles where other rows hold absolute paths.
QString rowKey(const ListRow &row)
{
    return row.smartType == 0 ? row.path : QStringLiteral("%1:%2").arg(row.smartType).arg(row.path);
}

bool isBookRow(const ListRow &row)
{
    return row.smartType == 0 && QFileInfo(row.path).isDir() &&
           !store::packageExtensions().contains(store::lowerCasedExtension(row.path));
}

// Manual order is kept for plain books, Favorites and Contexts.
bool keepsManualOrder(int smartType)
{
    return smartType == OrdinaryBook || smartType == Favorites || smartType == Contexts;
}

// Beyond this many moves the views are told of a new order at once.
constexpr qsizetype kMostSingleMoves = 64;

// The file events one turn of the event loop applies: a backlog of an
// import's events is worked off in slices, the window repainting between.
constexpr qsizetype kMostFileEventsPerTurn = 200;

// Marks the members of one longest rising run of the numbers (patience
// sorting): those rows keep their places, the others move.
QList<bool> longestRisingRun(const QList<qsizetype> &numbers)
{
    QList<qsizetype> tails; // index into numbers of the smallest tail per length
    QList<qsizetype> before(numbers.size(), -1);
    for (qsizetype i = 0; i < numbers.size(); ++i) {
        const auto at =
            std::lower_bound(tails.begin(), tails.end(), numbers[i],
                             [&numbers](qsizetype t, qsizetype n) { return numbers[t] < n; });
        const qsizetype length = at - tails.begin();
        if (length > 0)
            before[i] = tails[length - 1];
        if (at == tails.end())
            tails << i;
        else
            *at = i;
    }
    QList<bool> member(numbers.size(), false);
    for (qsizetype i = tails.isEmpty() ? -1 : tails.last(); i >= 0; i = before[i])
        member[i] = true;
    return member;
}

} // namespace

} // namespace tl::browser

Q_DECLARE_METATYPE(tl::browser::ScanResult)

namespace tl::browser {

DocumentListModel::DocumentListModel(TLKSDocumentListViewController &list, QObject *parent)
    : QAbstractListModel(parent), m_list(list), m_loader(std::make_unique<CoalescingWorker>()),
      m_previewer(std::make_unique<CoalescingWorker>()),
      m_previewQueue(std::make_shared<PreviewQueue>())
{
    connect(m_previewer.get(), &CoalescingWorker::finished, this,
            [this](const QVariant &value) { previewsMade(value.toMap()); });
    m_list.rowsChanged = [this] {
        if (m_applying)
            m_rowsChangedMeanwhile = true;
        else
            syncWithList();
    };
    m_entries = currentEntries();
    m_shownBook = m_list.path;
    m_shownType = m_list.smartBookType;
    connect(m_loader.get(), &CoalescingWorker::finished, this, [this](const QVariant &value) {
        const auto scan = value.value<ScanResult>();
        // A scan for a book no longer shown is dropped.
        if (scan.path == m_list.path && scan.smartBookType == m_list.smartBookType) {
            m_list.smartBooksList = scan.smartBooks;
            m_list.booksList = scan.books;
            m_list.documentsList = scan.documents;
            m_list.numberOfHiddenDoneTasks = scan.hiddenDoneTasks;
            syncWithList();
        }
        if (!m_loader->isBusy())
            Q_EMIT loadingChanged(false);
    });
}

DocumentListModel::~DocumentListModel()
{
    m_list.rowsChanged = [] {};
}

void DocumentListModel::connectToBridge(EventBridge &bridge)
{
    connect(&bridge, &EventBridge::fileModifiedOnDisk, this, [this](const QString &p) {
        queueFileEvent({FileEvent::Modified, p, {}});
    });
    connect(&bridge, &EventBridge::fileDeletedFromDisk, this, [this](const QString &p) {
        queueFileEvent({FileEvent::Deleted, p, {}});
    });
    connect(&bridge, &EventBridge::updateTaskIcon, this, [this](const QString &p) {
        queueFileEvent({FileEvent::TaskIcon, p, {}});
    });
    connect(&bridge, &EventBridge::newFileCreated, this, [this](const QString &p) {
        queueFileEvent({FileEvent::Created, p, {}});
    });
    connect(&bridge, &EventBridge::fileMoved, this,
            [this](const QString &from, const QString &to, bool) {
                queueFileEvent({FileEvent::Moved, from, to});
            });
    connect(&bridge, &EventBridge::newBookSelected, this, [this](const QString &p, int type) {
        if (!m_list.takeOpenedBook(p, type))
            return;
        // The book is read whole from disk: what waited is in it.
        dropFileEvents();
        // Smart books gather from the whole library: off the main thread.
        if (type != 0)
            reloadBookInBackground();
        else
            m_list.reloadBook();
    });
    connect(&bridge, &EventBridge::reloadCurrentBook, this, [this] {
        dropFileEvents();
        m_list.reloadBook();
    });
}

void DocumentListModel::queueFileEvent(FileEvent event)
{
    if (event.kind == FileEvent::Modified) {
        if (m_modifiedWaiting.contains(event.path))
            return;
        m_modifiedWaiting.insert(event.path);
    } else {
        // A change after this event is a change of what it left.
        m_modifiedWaiting.remove(event.path);
        m_modifiedWaiting.remove(event.newPath);
    }
    m_fileEvents << std::move(event);
    postApply();
}

void DocumentListModel::postApply()
{
    if (m_applyPosted || m_fileEvents.isEmpty())
        return;
    m_applyPosted = true;
    QMetaObject::invokeMethod(this, &DocumentListModel::applyFileEvents, Qt::QueuedConnection);
}

void DocumentListModel::dropFileEvents()
{
    m_fileEvents.clear();
    m_modifiedWaiting.clear();
}

void DocumentListModel::applyFileEvents()
{
    m_applyPosted = false;
    const qsizetype count = std::min(m_fileEvents.size(), kMostFileEventsPerTurn);
    const QList<FileEvent> slice = m_fileEvents.first(count);
    m_fileEvents.remove(0, count);
    for (const FileEvent &event : slice)
        if (event.kind == FileEvent::Modified)
            m_modifiedWaiting.remove(event.path);
    m_applying = true;
    m_rowsChangedMeanwhile = false;
    for (const FileEvent &event : slice) {
        switch (event.kind) {
        case FileEvent::Modified:
            m_list.documentModifiedOnDisk(event.path);
            break;
        case FileEvent::Deleted:
            m_list.documentDeletedFromDisk(event.path);
            break;
        case FileEvent::Created:
            m_list.newFileCreated(event.path);
            break;
        case FileEvent::Moved:
            m_list.documentMoved(event.path, event.newPath);
            break;
        case FileEvent::TaskIcon:
            m_list.taskIconChanged(event.path);
            break;
        }
    }
    m_applying = false;
    if (m_rowsChangedMeanwhile)
        syncWithList();
    postApply();
}

QList<DocumentListModel::Entry> DocumentListModel::currentEntries() const
{
    // Headers are known by their section, so "3 DOCUMENTS" turning into
    // "4 DOCUMENTS" is a changed row; rows by their item.
    const QString smartHeader = m_list.smartBooksHeader();
    const QString booksHeader = m_list.booksHeader();
    QList<ListEntry> listed = m_list.entries();
    QList<Entry> result;
    result.reserve(listed.size());
    for (ListEntry &entry : listed) {
        QString key = entry.row                     ? rowKey(*entry.row)
                      : entry.header == smartHeader ? QStringLiteral("#smart")
                      : entry.header == booksHeader ? QStringLiteral("#books")
                                                    : QStringLiteral("#documents");
        result << Entry{std::move(key), std::move(entry.header), std::move(entry.row)};
    }
    return result;
}

void DocumentListModel::syncWithList()
{
    QList<Entry> fresh = currentEntries();
    const QString emptyBefore = m_entries.isEmpty() ? m_list.emptyListText() : QString();
    if (m_list.path != m_shownBook || m_list.smartBookType != m_shownType) {
        // Another book: its rows have nothing to do with the ones shown.
        beginResetModel();
        m_entries = std::move(fresh);
        m_shownBook = m_list.path;
        m_shownType = m_list.smartBookType;
        m_previews.clear();
        m_previewsAsked.clear();
        m_previewQueue->takeAll();
        endResetModel();
        Q_EMIT emptyListTextChanged(m_list.emptyListText());
        return;
    }
    const bool sameRows = fresh.size() == m_entries.size() &&
                          std::equal(fresh.begin(), fresh.end(), m_entries.begin(),
                                     [](const Entry &a, const Entry &b) { return a.key == b.key; });
    // The shown rows all still there in their order, with new ones among
    // them, need no reshaping: an import adds thousands of rows one by one.
    const auto onlyNewRows = [&] {
        qsizetype kept = 0;
        for (const Entry &e : fresh)
            if (kept < m_entries.size() && m_entries[kept].key == e.key)
                ++kept;
        return kept == m_entries.size();
    };
    if (!sameRows && !onlyNewRows())
        reshapeTo(fresh);
    // Changed rows, and new rows in their places, each run of them at once.
    for (qsizetype i = 0; i < fresh.size(); ++i) {
        if (i >= m_entries.size() || m_entries[i].key != fresh[i].key) {
            qsizetype end = i + 1;
            while (end < fresh.size() &&
                   (i >= m_entries.size() || m_entries[i].key != fresh[end].key))
                ++end;
            beginInsertRows({}, int(i), int(end - 1));
            m_entries.insert(i, end - i, Entry{});
            std::move(fresh.begin() + i, fresh.begin() + end, m_entries.begin() + i);
            endInsertRows();
            i = end - 1;
        } else if (!m_entries[i].sameContent(fresh[i])) {
            m_entries[i] = fresh[i];
            if (fresh[i].row) {
                m_previews.remove(fresh[i].row->path);
                m_previewsAsked.remove(fresh[i].row->path);
            }
            Q_EMIT dataChanged(index(int(i)), index(int(i)));
        }
    }
    const QString emptyAfter = m_entries.isEmpty() ? m_list.emptyListText() : QString();
    if (emptyAfter != emptyBefore)
        Q_EMIT emptyListTextChanged(emptyAfter);
}

void DocumentListModel::reshapeTo(const QList<Entry> &fresh)
{
    QSet<QString> freshKeys;
    freshKeys.reserve(fresh.size());
    for (const Entry &e : fresh)
        freshKeys.insert(e.key);

    // 1. Rows no longer listed, from the last, in runs.
    for (qsizetype i = m_entries.size() - 1; i >= 0;) {
        if (freshKeys.contains(m_entries[i].key)) {
            --i;
            continue;
        }
        qsizetype first = i;
        while (first > 0 && !freshKeys.contains(m_entries[first - 1].key))
            --first;
        beginRemoveRows({}, int(first), int(i));
        m_entries.remove(first, i - first + 1);
        endRemoveRows();
        i = first - 1;
    }
    // 2. The rows that stay, in their new order.
    QHash<QString, qsizetype> oldPlace;
    oldPlace.reserve(m_entries.size());
    for (qsizetype i = 0; i < m_entries.size(); ++i)
        oldPlace.insert(m_entries[i].key, i);
    QStringList order;
    QList<qsizetype> places;
    for (const Entry &e : fresh)
        if (const auto it = oldPlace.constFind(e.key); it != oldPlace.constEnd()) {
            order << e.key;
            places << *it;
        }
    const QList<bool> staying = longestRisingRun(places);
    const qsizetype moves = std::count(staying.begin(), staying.end(), false);
    if (moves > kMostSingleMoves) {
        reorderAsLayout(order);
        return;
    }
    // Each row that must move goes right behind the row before it in the
    // new order; the rest already stand in that order.
    const auto placeOf = [this](const QString &key) {
        for (qsizetype i = 0; i < m_entries.size(); ++i)
            if (m_entries[i].key == key)
                return i;
        return qsizetype(-1);
    };
    for (qsizetype p = 0; p < order.size(); ++p) {
        if (staying[p])
            continue;
        const qsizetype from = placeOf(order[p]);
        const qsizetype to = p == 0 ? 0 : placeOf(order[p - 1]) + 1;
        if (from == to)
            continue;
        beginMoveRows({}, int(from), int(from), {}, int(to));
        m_entries.move(from, to > from ? to - 1 : to);
        endMoveRows();
    }
}

void DocumentListModel::reorderAsLayout(const QStringList &order)
{
    const QList<QPersistentModelIndex> parents;
    Q_EMIT layoutAboutToBeChanged(parents, QAbstractItemModel::VerticalSortHint);
    QHash<QString, qsizetype> newPlace;
    newPlace.reserve(order.size());
    for (qsizetype i = 0; i < order.size(); ++i)
        newPlace.insert(order[i], i);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex &index : before)
        after << this->index(int(newPlace.value(m_entries[index.row()].key)));
    QList<Entry> reordered(m_entries.size());
    for (Entry &e : m_entries) {
        const qsizetype place = newPlace.value(e.key);
        reordered[place] = std::move(e);
    }
    m_entries = std::move(reordered);
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged(parents, QAbstractItemModel::VerticalSortHint);
}

QModelIndex DocumentListModel::indexForPath(const QString &path) const
{
    for (qsizetype i = 0; i < m_entries.size(); ++i)
        if (m_entries[i].row && m_entries[i].row->path == path)
            return index(int(i));
    return {};
}

QString DocumentListModel::pathAt(const QModelIndex &index) const
{
    if (!index.isValid() || index.row() >= m_entries.size() || !m_entries[index.row()].row)
        return {};
    return m_entries[index.row()].row->path;
}

void DocumentListModel::setFilter(const QString &filter)
{
    if (filter == m_list.searchFilter)
        return;
    m_list.searchFilter = filter;
    m_list.getDocumentsInFolder();
}

void DocumentListModel::reloadBookInBackground()
{
    if (m_list.smartBookType == 0 && !store::tl_itemIsChildOfTavelle(m_list.path))
        m_list.path = store::libraryRoot();
    m_list.loadDisplayParameters();
    // The new book shows empty at once; its rows follow when the scan ends.
    m_list.smartBooksList.clear();
    m_list.booksList.clear();
    m_list.documentsList.clear();
    syncWithList();
    const QString path = m_list.path;
    const int type = m_list.smartBookType;
    const QString filter = m_list.searchFilter;
    const QString sortOrder = m_list.sortOrder;
    const bool ascending = m_list.sortAscending;
    const bool wasBusy = m_loader->isBusy();
    m_loader->request([path, type, filter, sortOrder, ascending] {
        TLKSDocumentListViewController scan;
        scan.path = path;
        scan.smartBookType = type;
        scan.searchFilter = filter;
        scan.sortOrder = sortOrder;
        scan.sortAscending = ascending;
        scan.getDocumentsInFolder();
        return QVariant::fromValue(ScanResult{path, type, scan.smartBooksList, scan.booksList,
                                              scan.documentsList, scan.numberOfHiddenDoneTasks});
    });
    if (!wasBusy)
        Q_EMIT loadingChanged(true);
}

bool DocumentListModel::isLoading() const
{
    return m_loader->isBusy();
}

void DocumentListModel::waitForLoading()
{
    m_loader->waitForIdle();
}

int DocumentListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

void DocumentListModel::waitForPreviews()
{
    m_previewer->waitForIdle();
}

QString DocumentListModel::previewOf(const QString &path) const
{
    const auto cached = m_previews.constFind(path);
    if (cached != m_previews.constEnd())
        return *cached;
    if (!m_previewsAsked.contains(path)) {
        m_previewsAsked.insert(path);
        m_previewQueue->add(path);
        m_previewer->request([queue = m_previewQueue] {
            QVariantMap previews;
            for (const QString &wanted : queue->takeAll())
                previews.insert(wanted, listPreview(wanted));
            return QVariant(previews);
        });
    }
    return {};
}

void DocumentListModel::previewsMade(const QVariantMap &previews)
{
    for (auto it = previews.cbegin(); it != previews.cend(); ++it) {
        // A preview for a row of a book no longer shown is dropped.
        if (!m_previewsAsked.remove(it.key()))
            continue;
        m_previews.insert(it.key(), it.value().toString());
        const QModelIndex row = indexForPath(it.key());
        if (row.isValid())
            Q_EMIT dataChanged(row, row, {PreviewRole});
    }
}

QVariant DocumentListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_entries.size())
        return {};
    const Entry &entry = m_entries[index.row()];
    if (!entry.row) {
        switch (role) {
        case Qt::DisplayRole:
        case TitleRole:
            return entry.header;
        case IsHeaderRole:
            return true;
        default:
            return {};
        }
    }
    const ListRow &row = *entry.row;
    switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
        return listTitle(row);
    case PathRole:
        return row.path;
    case PreviewRole:
        return row.smartType == 0 ? previewOf(row.path) : QString();
    case DateRole:
        return m_list.sortOrder == u"creationDate" ? row.creationDate : row.modDate;
    case TaskIconRole:
        return row.taskIcon;
    case PinnedRole:
        return row.pinnedSequence != std::numeric_limits<qint64>::max() && row.smartType == 0;
    case ColorLabelRole:
        return row.cellColor.value_or(QString());
    case IsHeaderRole:
        return false;
    case SmartTypeRole:
        return row.smartType;
    case IsBookRole:
        return isBookRow(row);
    case DueDateRole:
        return row.dueDate;
    case DueTextRole: {
        const std::optional<QDateTime> due = row.openTaskDueDate();
        return due ? tasks::tl_weekdayString(*due) : QString();
    }
    case RecordRole:
        return row.toDictionary();
    default:
        return {};
    }
}

Qt::ItemFlags DocumentListModel::flags(const QModelIndex &index) const
{
    if (!index.isValid() || index.row() >= m_entries.size())
        return Qt::ItemIsDropEnabled;
    const Entry &entry = m_entries[index.row()];
    if (!entry.row)
        return Qt::ItemIsEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (entry.row->smartType == 0)
        flags |= Qt::ItemIsDragEnabled;
    if (isBookRow(*entry.row))
        flags |= Qt::ItemIsDropEnabled;
    return flags;
}

QHash<int, QByteArray> DocumentListModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractListModel::roleNames();
    names.insert(PathRole, "path");
    names.insert(TitleRole, "title");
    names.insert(PreviewRole, "preview");
    names.insert(DateRole, "date");
    names.insert(TaskIconRole, "taskIcon");
    names.insert(DueTextRole, "dueText");
    names.insert(PinnedRole, "pinned");
    names.insert(ColorLabelRole, "colorLabel");
    names.insert(IsHeaderRole, "isHeader");
    names.insert(SmartTypeRole, "smartType");
    names.insert(IsBookRole, "isBook");
    names.insert(DueDateRole, "dueDate");
    names.insert(RecordRole, "record");
    return names;
}

QStringList DocumentListModel::mimeTypes() const
{
    return {QStringLiteral("text/uri-list")};
}

QMimeData *DocumentListModel::mimeData(const QModelIndexList &indexes) const
{
    QList<QUrl> urls;
    for (const QModelIndex &index : indexes)
        if (const QString path = pathAt(index); !path.isEmpty())
            urls << QUrl::fromLocalFile(path);
    if (urls.isEmpty())
        return nullptr;
    auto *data = new QMimeData;
    data->setUrls(urls);
    return data;
}

Qt::DropActions DocumentListModel::supportedDropActions() const
{
    return Qt::MoveAction | Qt::CopyAction;
}

bool DocumentListModel::canDropMimeData(const QMimeData *data, Qt::DropAction, int, int,
                                        const QModelIndex &parent) const
{
    if (!data || !data->hasUrls())
        return false;
    // On a book row: into that book; between rows of a plain book: into it.
    return parent.isValid() ? isBookRow(*m_entries[parent.row()].row) : m_list.smartBookType == 0;
}

bool DocumentListModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row,
                                     int column, const QModelIndex &parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    const QStringList paths = droppedPaths(data);
    const QString book = parent.isValid() ? pathAt(parent) : m_list.path;
    // Rows of this book dropped between rows: a manual reordering.
    if (!parent.isValid() && row >= 0 && !paths.isEmpty() &&
        std::all_of(paths.begin(), paths.end(), [&](const QString &p) {
            return path::deletingLastComponent(p) == m_list.path;
        })) {
        for (const QString &p : paths) {
            const QModelIndex from = indexForPath(p);
            if (from.isValid() && moveRows({}, from.row(), 1, {}, row))
                row = indexForPath(p).row() + 1;
        }
        return true;
    }
    return dropOnBook(data, book);
}

bool DocumentListModel::moveRows(const QModelIndex &sourceParent, int sourceRow, int count,
                                 const QModelIndex &destinationParent, int destinationChild)
{
    if (sourceParent.isValid() || destinationParent.isValid() || count != 1 || sourceRow < 0 ||
        sourceRow >= m_entries.size() || !m_entries[sourceRow].row ||
        !keepsManualOrder(m_list.smartBookType) || m_list.sortOrder != u"custom")
        return false;
    // The row must stay within its section: between its header and the next.
    qsizetype sectionStart = sourceRow;
    while (sectionStart > 0 && m_entries[sectionStart - 1].row)
        --sectionStart;
    qsizetype sectionEnd = sourceRow;
    while (sectionEnd + 1 < m_entries.size() && m_entries[sectionEnd + 1].row)
        ++sectionEnd;
    if (destinationChild < sectionStart || destinationChild > sectionEnd + 1 ||
        destinationChild == sourceRow || destinationChild == sourceRow + 1)
        return false;
    const ListRow moved = *m_entries[sourceRow].row;
    QList<ListRow> *list = nullptr;
    for (QList<ListRow> *candidate :
         {&m_list.smartBooksList, &m_list.booksList, &m_list.documentsList})
        if (candidate->contains(moved))
            list = candidate;
    if (!list)
        return false;
    const qsizetype from = sourceRow - sectionStart;
    const qsizetype to =
        (destinationChild > sourceRow ? destinationChild - 1 : destinationChild) - sectionStart;
    beginMoveRows({}, sourceRow, sourceRow, {}, destinationChild);
    m_entries.move(sourceRow,
                   destinationChild > sourceRow ? destinationChild - 1 : destinationChild);
    list->move(from, to);
    endMoveRows();
    m_list.saveCustomSortOrder();
    return true;
}

} // namespace tl::browser
