#include "item_delegate.h"

#include "browser/outline_model.h"
#include "icons.h"

#include <QApplication>
#include <QPainter>

namespace tl::app {

using browser::OutlineModel;

namespace {

constexpr int kPillGap = 4;

struct Pill
{
    QString text;
    QColor fill;
    QColor ink;
};

// The pills at a row's right end: the count of a context or the favourites,
// the open and overdue tasks of a task list or of the due tasks.
QList<Pill> pillsOf(const QStyleOptionViewItem &option, const QModelIndex &index)
{
    QList<Pill> pills;
    const QPalette &palette = option.palette;
    const bool selected = option.state & QStyle::State_Selected;
    if (const QVariant count = index.data(OutlineModel::CountRole); count.isValid())
        pills << Pill{QString::number(count.toInt()),
                      palette.color(selected ? QPalette::HighlightedText : QPalette::Mid),
                      palette.color(selected ? QPalette::Highlight : QPalette::Window)};
    const QVariantList tasks = index.data(OutlineModel::BadgeRole).toList();
    if (tasks.size() == 2) {
        if (const qint64 open = tasks[0].toLongLong(); open > 0)
            pills << Pill{QString::number(open), palette.color(QPalette::PlaceholderText),
                          Qt::white};
        if (const qint64 overdue = tasks[1].toLongLong(); overdue > 0)
            pills << Pill{QString::number(overdue), overdueColor(), Qt::white};
    }
    return pills;
}

} // namespace

QSize OutlineDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    // Rows with air between them, as the desktop's sidebars have.
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 8);
}

void OutlineDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    const QList<Pill> pills = pillsOf(option, index);
    if (pills.isEmpty()) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QFont font = option.font;
    font.setPointSizeF(font.pointSizeF() * 0.85);
    const QFontMetrics metrics(font);
    const int height = metrics.height() + 2;
    QList<int> widths;
    int total = 0;
    for (const Pill &pill : pills) {
        widths << qMax(metrics.horizontalAdvance(pill.text) + 12, height);
        total += widths.last() + kPillGap;
    }

    // The selection band runs the whole row; the title gives way to the pills.
    QStyleOptionViewItem band = option;
    initStyleOption(&band, index);
    band.text.clear();
    band.features &= ~QStyleOptionViewItem::HasDecoration;
    const QWidget *widget = option.widget;
    QStyle *style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &band, painter, widget);
    QStyleOptionViewItem row = option;
    row.rect.setRight(option.rect.right() - total - 6);
    QStyledItemDelegate::paint(painter, row, index);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(font);
    int x = option.rect.right() - total - 2;
    for (qsizetype i = 0; i < pills.size(); ++i) {
        const QRectF pill(x, option.rect.center().y() - height / 2.0 + 0.5, widths[i], height);
        painter->setPen(Qt::NoPen);
        painter->setBrush(pills[i].fill);
        painter->drawRoundedRect(pill, height / 2.0, height / 2.0);
        painter->setPen(pills[i].ink);
        painter->drawText(pill, Qt::AlignCenter, pills[i].text);
        x += widths[i] + kPillGap;
    }
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
