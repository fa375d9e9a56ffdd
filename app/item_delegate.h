#pragma once

#include <QStyledItemDelegate>

// Rows of the outline: the core's icon names drawn as pictures, group rows
// in small capitals, task counts as badges.
namespace tl::app {

class OutlineDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    // The row, and at its right end the count of a context or the
    // favourites, or a task list's open and (in red) overdue tasks.
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};

} // namespace tl::app
