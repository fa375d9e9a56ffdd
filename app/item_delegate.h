#pragma once

#include <QStyledItemDelegate>

// Rows of the outline: the core's icon names drawn as pictures, group rows
// in small capitals.
namespace tl::app {

class OutlineDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    // The row, and at its right end the count of a context or the favourites.
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};

} // namespace tl::app
