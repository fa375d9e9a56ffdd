#include "browser/outline_model.h"

#include "browser/smart_books.h"

namespace tl::browser {

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

QModelIndex OutlineModel::index(int row, int column, const QModelIndex &parent) const
{
    if (column != 0)
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
    TLKSOutlineItem *item = itemForIndex(parent);
    // Unopened books show a disclosure until opening finds them empty.
    return item->childrenAreBuilt() ? item->numberOfChildren() > 0 : !item->isDocument;
}

QVariant OutlineModel::data(const QModelIndex &index, int role) const
{
    TLKSOutlineItem *item = itemForIndex(index);
    if (!index.isValid())
        return {};
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
    default:
        return {};
    }
}

void OutlineModel::changeTree(const std::function<void()> &change)
{
    beginResetModel();
    change();
    endResetModel();
}

void OutlineModel::reloadItem(TLKSOutlineItem *item)
{
    const QModelIndex index = indexForItem(item);
    if (index.isValid())
        Q_EMIT dataChanged(index, index);
}

} // namespace tl::browser
