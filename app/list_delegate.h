#pragma once

#include <QStyledItemDelegate>

// Rows of the document list: icon or task mark, title, date, a preview
// line where the book asks for one, the pin and the colour label; group
// headers in small capitals.
namespace tl::app {

class ListDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    // Where a row draws its icon or task mark.
    static QRect iconRect(const QRect &row);

private:
    void paintHeader(QPainter *painter, const QStyleOptionViewItem &option,
                     const QModelIndex &index) const;
};

} // namespace tl::app
