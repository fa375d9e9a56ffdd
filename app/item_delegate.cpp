#include "item_delegate.h"

#include "browser/outline_model.h"
#include "icons.h"

#include <QPainter>

namespace tl::app {

using browser::OutlineModel;

QSize OutlineDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    // Rows with air between them, as the desktop's sidebars have.
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 8);
}

void OutlineDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    const QVariant count = index.data(OutlineModel::CountRole);
    if (!count.isValid()) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const QString text = QString::number(count.toInt());
    QFont font = option.font;
    font.setPointSizeF(font.pointSizeF() * 0.85);
    const QFontMetrics metrics(font);
    const int width = metrics.horizontalAdvance(text) + 12;
    const QRect badge(option.rect.right() - width - 6,
                      option.rect.center().y() - metrics.height() / 2 - 1, width,
                      metrics.height() + 2);
    QStyleOptionViewItem row = option;
    row.rect.setRight(badge.left() - 4);
    QStyledItemDelegate::paint(painter, row, index);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    const bool selected = option.state & QStyle::State_Selected;
    painter->setBrush(selected ? option.palette.color(QPalette::HighlightedText)
                               : option.palette.color(QPalette::Mid));
    painter->drawRoundedRect(badge, badge.height() / 2.0, badge.height() / 2.0);
    painter->setFont(font);
    painter->setPen(selected ? option.palette.color(QPalette::Highlight)
                             : option.palette.color(QPalette::Window));
    painter->drawText(badge, Qt::AlignCenter, text);
    painter->restore();
}

void OutlineDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.data(OutlineModel::GroupRole).toInt() != 0) {
        option->font.setBold(true);
        option->font.setPointSizeF(option->font.pointSizeF() * 0.85);
        option->palette.setColor(QPalette::Text, option->palette.color(QPalette::PlaceholderText));
        option->features &= ~QStyleOptionViewItem::HasDecoration;
        return;
    }
    const QString name = index.data(OutlineModel::IconRole).toString();
    option->icon = name.isEmpty() ? iconForItem(index.data(OutlineModel::PathRole).toString())
                                  : iconNamed(name);
    option->features |= QStyleOptionViewItem::HasDecoration;
}

} // namespace tl::app
