#include "browser/outline_model.h"

#include "browser/item_drops.h"
#include "browser/outline_badges.h"
#include "browser/smart_books.h"
#include "contexts/context_keys.h"
#include "contexts/tag_database.h"
#include "foundation/path_string.h"
#include "store/library_root.h"

#include <QMimeData>

namespace tl::browser {

namespace {

// Children of the same kind and name are the same row across a refresh.
bool sameItem(const TLKSOutlineItem &a, const TLKSOutlineItem &b)
{
    return a.relativePath == b.relativePath && a.smartBookType == b.smartBookType &&
           a.groupItemType == b.groupItemType && a.isDocument == b.isDocument;
}

} // namespace

OutlineModel::OutlineModel(QObject *parent) : QAbstractItemModel(parent)
{
}

TLKSOutlineItem *OutlineModel::itemForIndex(const QModelIndex &index) const
{
    return index.isValid() ? static_cast<TLKSOutlineItem *>(index.internalPointer())
                           : &TLKSOutlineItem::rootItem();
}

QModelIndex OutlineModel::indexForItem(TLKSOutlineItem *item) const
{
    if (!item || !item->parent)
        return {};
    const auto row = item->parent->indexOfChild(item);
    return row ? createIndex(int(*row), 0, item) : QModelIndex();
}

QModelIndex OutlineModel::indexForPath(const QString &path) const
{
    if (path == store::libraryRoot())
        return indexForItem(TLKSOutlineItem::booksItem());
    return indexForItem(TLKSOutlineItem::childAtPath(path));
}

QModelIndex OutlineModel::smartBookIndex(int type) const
{
    return indexForItem(TLKSOutlineItem::smartBookOfType(type));
}

QModelIndex OutlineModel::index(int row, int column, const QModelIndex &parent) const
{
    if (column != 0 || row < 0)
        return {};
    TLKSOutlineItem *child = itemForIndex(parent)->childAtIndex(row);
    return child ? createIndex(row, 0, child) : QModelIndex();
}

QModelIndex OutlineModel::parent(const QModelIndex &child) const
{
    return child.isValid() ? indexForItem(itemForIndex(child)->parent) : QModelIndex();
}

int OutlineModel::rowCount(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return 0;
    return int(itemForIndex(parent)->numberOfChildren());
}

int OutlineModel::columnCount(const QModelIndex &) const
{
    return 1;
}

bool OutlineModel::hasChildren(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return false;
    TLKSOutlineItem *item = itemForIndex(parent);
    // Smart books list what they hold from settings and tags, not the disk:
    // cheap to ask, so only those with children show a disclosure.
    if (item->smartBookType != OrdinaryBook && item->smartBookType != Inbox)
        return item->numberOfChildren() > 0;
    // Unopened books show a disclosure until opening finds them empty.
    return item->childrenAreBuilt() ? item->numberOfChildren() > 0 : !item->isDocument;
}

namespace {

QVariant countForBadge(const TLKSOutlineItem &item)
{
    if (item.groupItemType != NoGroup)
        return {};
    if (item.smartBookType == Context)
        return contexts::tl_numberOfItemsForTag(item.relativePath);
    if (item.smartBookType == Favorites)
        return contexts::tl_numberOfItemsForTag(QLatin1String(contexts::keys::FavoriteTag));
    return {};
}

} // namespace

QVariant OutlineModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    TLKSOutlineItem *item = itemForIndex(index);
    switch (role) {
    case Qt::DisplayRole:
        return item->groupItemType != NoGroup ? item->title().toUpper() : item->title();
    case PathRole:
        return item->fullPath();
    case SmartTypeRole:
        return item->smartBookType;
    case GroupRole:
        return item->groupItemType;
    case IconRole:
        return item->smartBookType != 0 ? iconForSmartBookOfType(item->smartBookType) : QString();
    case IsDocumentRole:
        return item->isDocument;
    case CountRole:
        return countForBadge(*item);
    case BadgeRole:
        return badgeFor(item);
    default:
        return {};
    }
}

Qt::ItemFlags OutlineModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    if (!index.isValid())
        return flags;
    TLKSOutlineItem *item = itemForIndex(index);
    const bool plainBook = item->smartBookType == 0 && item->groupItemType == NoGroup;
    if (plainBook)
        flags |= Qt::ItemIsDragEnabled;
    if (plainBook || item->groupItemType == BooksGroup)
        flags |= Qt::ItemIsDropEnabled;
    return flags;
}

QHash<int, QByteArray> OutlineModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractItemModel::roleNames();
    names.insert(PathRole, "path");
    names.insert(SmartTypeRole, "smartType");
    names.insert(GroupRole, "group");
    names.insert(IconRole, "icon");
    names.insert(IsDocumentRole, "isDocument");
    names.insert(CountRole, "count");
    names.insert(BadgeRole, "badge");
    return names;
}

QStringList OutlineModel::mimeTypes() const
{
    return {QStringLiteral("text/uri-list"), QStringLiteral("text/html"),
            QStringLiteral("text/plain"),    QStringLiteral("image/png"),
            QStringLiteral("image/jpeg"),    QStringLiteral("image/tiff"),
            QStringLiteral("text/rtf")};
}

Qt::DropActions OutlineModel::supportedDropActions() const
{
    return Qt::MoveAction | Qt::CopyAction;
}

bool OutlineModel::canDropMimeData(const QMimeData *data, Qt::DropAction, int, int,
                                   const QModelIndex &parent) const
{
    return (flags(parent) & Qt::ItemIsDropEnabled) && canDropOnBook(data);
}

bool OutlineModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                                const QModelIndex &parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    return dropOnBook(data, itemForIndex(parent)->fullPath());
}

QVariant OutlineModel::badgeFor(TLKSOutlineItem *item) const
{
    const bool dueTasks = item->smartBookType == DueTasks;
    if (item->isDocument || item->groupItemType == SmartBooksGroup ||
        (item->smartBookType != 0 && !dueTasks))
        return {};
    const QString key = dueTasks ? QStringLiteral("#due") : item->fullPath();
    if (const auto cached = m_badges.constFind(key); cached != m_badges.cend())
        return *cached;
    const std::optional<TaskBadge> badge =
        dueTasks ? dueTasksBadge() : taskBadgeForBook(item->fullPath());
    const QVariant value =
        badge ? QVariant(QVariantList{badge->count, badge->overdue}) : QVariant();
    m_badges.insert(key, value);
    return value;
}

void OutlineModel::resetTree()
{
    m_badges.clear();
    beginResetModel();
    TLKSOutlineItem::rootItem().resetAllChildren();
    endResetModel();
}

TLKSOutlineItem *OutlineModel::insertChildAtPath(const QString &path)
{
    if (TLKSOutlineItem *existing = TLKSOutlineItem::childAtPath(path))
        return existing;
    const QString root = store::libraryRoot();
    const QString parentPath = path::deletingLastComponent(path);
    TLKSOutlineItem *parentItem = parentPath == root ? TLKSOutlineItem::booksItem()
                                                     : TLKSOutlineItem::childAtPath(parentPath);
    if (!parentItem && parentPath.size() > root.size())
        parentItem = insertChildAtPath(parentPath);
    // A parent never opened finds the folder on disk when it is opened.
    if (!parentItem || !parentItem->childrenAreBuilt())
        return nullptr;
    const int row = int(parentItem->numberOfChildren());
    beginInsertRows(indexForItem(parentItem), row, row);
    TLKSOutlineItem *added = parentItem->addChildWithTitle(path::lastComponent(path));
    endInsertRows();
    resortChildren(parentItem);
    return added;
}

TLKSOutlineItem *OutlineModel::insertSmartBook(int type)
{
    if (TLKSOutlineItem *existing = TLKSOutlineItem::smartBookOfType(type))
        return existing;
    TLKSOutlineItem *group = TLKSOutlineItem::smartBooksItem();
    const int row = int(group->numberOfChildren());
    beginInsertRows(indexForItem(group), row, row);
    TLKSOutlineItem *added = group->addChild(
        std::make_unique<TLKSOutlineItem>(titleForSmartBookOfType(type), group, type));
    endInsertRows();
    resortChildren(group);
    return added;
}

void OutlineModel::removeItem(TLKSOutlineItem *item)
{
    if (!item || !item->parent)
        return;
    const auto row = item->parent->indexOfChild(item);
    if (!row)
        return;
    beginRemoveRows(indexForItem(item->parent), int(*row), int(*row));
    item->parent->removeChild(item);
    endRemoveRows();
}

void OutlineModel::moveItem(TLKSOutlineItem *item, TLKSOutlineItem *newParent,
                            const QString &newPath)
{
    TLKSOutlineItem *oldParent = item ? item->parent : nullptr;
    if (!oldParent || !newParent)
        return;
    if (newParent != oldParent) {
        const int from = int(*oldParent->indexOfChild(item));
        const int to = int(newParent->numberOfChildren());
        beginMoveRows(indexForItem(oldParent), from, from, indexForItem(newParent), to);
        item->moveToParent(newParent);
        endMoveRows();
    }
    item->changeRelativePath(newPath);
    reloadItem(item);
    resortChildren(newParent);
}

void OutlineModel::resortChildren(TLKSOutlineItem *item)
{
    if (item && item->childrenAreBuilt())
        applyOrder(item, item->sortedChildren());
}

void OutlineModel::applyOrder(TLKSOutlineItem *item, const std::vector<TLKSOutlineItem *> &order)
{
    const QModelIndex parentIndex = indexForItem(item);
    // Each step moves the row that belongs at i up from below.
    for (std::size_t i = 0; i < order.size(); ++i) {
        const auto from = item->indexOfChild(order[i]);
        if (!from || std::size_t(*from) == i)
            continue;
        beginMoveRows(parentIndex, int(*from), int(*from), parentIndex, int(i));
        item->moveChild(*from, qsizetype(i));
        endMoveRows();
    }
}

void OutlineModel::refreshChildren(TLKSOutlineItem *item)
{
    if (!item || !item->childrenAreBuilt())
        return;
    auto fresh = item->childrenFromDisk();
    const QModelIndex parentIndex = indexForItem(item);
    // Rows gone from the disk go first, from the last.
    for (qsizetype row = item->numberOfChildren() - 1; row >= 0; --row) {
        const TLKSOutlineItem *old = item->childAtIndex(row);
        const bool kept = std::any_of(fresh.begin(), fresh.end(),
                                      [old](const auto &f) { return sameItem(*old, *f); });
        if (!kept) {
            beginRemoveRows(parentIndex, int(row), int(row));
            item->removeChild(item->childAtIndex(row));
            endRemoveRows();
        }
    }
    std::vector<TLKSOutlineItem *> order;
    for (auto &f : fresh) {
        TLKSOutlineItem *match = nullptr;
        for (const auto &child : item->children())
            if (sameItem(*child, *f))
                match = child.get();
        if (!match) {
            const int row = int(item->numberOfChildren());
            beginInsertRows(parentIndex, row, row);
            match = item->addChild(std::move(f));
            endInsertRows();
        } else {
            refreshChildren(match);
            reloadItem(match);
        }
        order.push_back(match);
    }
    applyOrder(item, order);
}

void OutlineModel::reloadItem(TLKSOutlineItem *item)
{
    if (!item)
        return;
    m_badges.remove(item->smartBookType == DueTasks ? QStringLiteral("#due") : item->fullPath());
    const QModelIndex index = indexForItem(item);
    if (index.isValid())
        Q_EMIT dataChanged(index, index);
}

} // namespace tl::browser
