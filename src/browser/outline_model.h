#pragma once

#include "browser/outline_item.h"

#include <QAbstractItemModel>
#include <QHash>

// The outline tree as an item model for the desktop's tree view. Children
// are read from disk when the view first asks for their rows. Every change
// of the tree's shape goes through the operations below, which tell the
// views of each insertion, removal, move and changed row as it happens, so
// selection, expansion and scroll survive; only a new library resets it.
namespace tl::browser {

class OutlineModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum Role {
        PathRole = Qt::UserRole + 1,
        SmartTypeRole,
        GroupRole,
        // The icon's name ("icon-book-inbox", ...); empty for a plain book.
        IconRole,
        IsDocumentRole,
        // The number of items a context or the favourites hold, for the
        // row's badge; nothing for other rows.
        CountRole,
        // The task badge as a list of two numbers (open or due, and
        // overdue); nothing when the row shows none.
        BadgeRole,
    };

    explicit OutlineModel(QObject *parent = nullptr);

    TLKSOutlineItem *itemForIndex(const QModelIndex &index) const;
    QModelIndex indexForItem(TLKSOutlineItem *item) const;
    // The row of a book below the root (the books group for the root
    // itself), invalid when it is not in the tree.
    QModelIndex indexForPath(const QString &path) const;
    QModelIndex smartBookIndex(int type) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    bool hasChildren(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Drops on a book: items of the library move into it, files from
    // elsewhere are copied in, other material becomes a new document.
    QStringList mimeTypes() const override;
    Qt::DropActions supportedDropActions() const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                         const QModelIndex &parent) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

    // A new library: the tree is read again from the top.
    void resetTree();
    // The book at the path, with any missing parents, in its sorted place.
    // Nothing when a parent was never opened (it reads the disk when opened).
    TLKSOutlineItem *insertChildAtPath(const QString &path);
    // The smart book of the type in its place in the group.
    TLKSOutlineItem *insertSmartBook(int type);
    void removeItem(TLKSOutlineItem *item);
    // A book renamed in place or moved below another parent.
    void moveItem(TLKSOutlineItem *item, TLKSOutlineItem *newParent, const QString &newPath);
    // Puts the children in their order again (a new sort order, a rename).
    void resortChildren(TLKSOutlineItem *item);
    // Reads an opened item's children from disk again: items still there
    // keep their rows (and their opened children, refreshed in turn), gone
    // ones are removed, new ones inserted, and the order is put right.
    void refreshChildren(TLKSOutlineItem *item);
    // One item's row shows new data.
    void reloadItem(TLKSOutlineItem *item);

private:
    QVariant badgeFor(TLKSOutlineItem *item) const;
    void applyOrder(TLKSOutlineItem *item, const std::vector<TLKSOutlineItem *> &order);
    // Badges count files on disk: each row's is worked out once, and again
    // after the row is reloaded.
    mutable QHash<QString, QVariant> m_badges;
};

} // namespace tl::browser
