#pragma once

#include "browser/outline_item.h"

#include <QAbstractItemModel>

// The outline tree as an item model for the desktop's tree view. Children
// are read from disk when the view first asks for their rows.
namespace tl::browser {

class OutlineModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum Role { PathRole = Qt::UserRole + 1, SmartTypeRole, GroupRole, IconRole };

    explicit OutlineModel(QObject *parent = nullptr);

    TLKSOutlineItem *itemForIndex(const QModelIndex &index) const;
    QModelIndex indexForItem(TLKSOutlineItem *item) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    bool hasChildren(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    // Runs a change of the tree's shape and tells the views.
    void changeTree(const std::function<void()> &change);
    // One item's row shows new data.
    void reloadItem(TLKSOutlineItem *item);
};

} // namespace tl::browser
