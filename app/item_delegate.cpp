#include "item_delegate.h"

#include "browser/outline_model.h"
#include "icons.h"

namespace tl::app {

using browser::OutlineModel;

QSize OutlineDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    // Rows with air between them, as the desktop's sidebars have.
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 8);
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
