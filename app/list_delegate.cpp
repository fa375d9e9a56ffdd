#include "list_delegate.h"

#include "browser/document_list_model.h"
#include "icons.h"
#include "store/colors.h"

#include <QApplication>
#include <QDateTime>
#include <QLocale>
#include <QPainter>

namespace tl::app {

using browser::DocumentListModel;

namespace {

constexpr int kPadding = 8;
constexpr int kIconSize = 20;

QFont titleFont(const QFont &base)
{
    QFont font = base;
    font.setBold(true);
    return font;
}

QFont smallFont(const QFont &base)
{
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() * 0.85);
    return font;
}

QString dateText(const QDateTime &date)
{
    if (!date.isValid())
        return {};
    const QDate today = QDate::currentDate();
    if (date.date() == today)
        return QLocale().toString(date.time(), QStringLiteral("HH:mm"));
    return QLocale().toString(date.date(), QLocale::ShortFormat);
}

QColor labelColor(const QModelIndex &index)
{
    const QString value = index.data(DocumentListModel::ColorLabelRole).toString();
    if (value.isEmpty())
        return {};
    if (const auto rgba = store::colorFromString(value))
        return QColor::fromRgbF(float(rgba->red), float(rgba->green), float(rgba->blue),
                                float(rgba->alpha));
    return colorForLabel(value);
}

} // namespace

QRect ListDelegate::iconRect(const QRect &row)
{
    return {row.left() + kPadding, row.top() + kPadding, kIconSize, kIconSize};
}

QSize ListDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QFontMetrics title(titleFont(option.font));
    if (index.data(DocumentListModel::IsHeaderRole).toBool())
        return {option.rect.width(), QFontMetrics(smallFont(option.font)).height() + 2 * kPadding};
    int height = title.height() + 2 * kPadding;
    const QString preview = index.data(DocumentListModel::PreviewRole).toString();
    if (!preview.isEmpty()) {
        const int lines = int(qMin<qsizetype>(preview.count(u'\n') + 1, 3));
        height += lines * QFontMetrics(smallFont(option.font)).lineSpacing() + 2;
    }
    return {option.rect.width(), qMax(height, kIconSize + 2 * kPadding)};
}

void ListDelegate::paintHeader(QPainter *painter, const QStyleOptionViewItem &option,
                               const QModelIndex &index) const
{
    painter->setFont(smallFont(titleFont(option.font)));
    painter->setPen(option.palette.color(QPalette::PlaceholderText));
    painter->drawText(option.rect.adjusted(kPadding, 0, -kPadding, 0),
                      Qt::AlignLeft | Qt::AlignBottom | Qt::TextSingleLine,
                      index.data(Qt::DisplayRole).toString());
}

void ListDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (index.data(DocumentListModel::IsHeaderRole).toBool()) {
        paintHeader(painter, option, index);
        painter->restore();
        return;
    }
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    background.text.clear();
    background.icon = QIcon();
    const QWidget *widget = option.widget;
    QStyle *style = widget ? widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &background, painter, widget);

    const bool selected = option.state & QStyle::State_Selected;
    const QColor ink = option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    const QColor faint = selected ? ink : option.palette.color(QPalette::PlaceholderText);
    QRect area = option.rect.adjusted(kPadding, kPadding, -kPadding, -kPadding);

    // Colour label: a bar at the row's left edge.
    if (const QColor label = labelColor(index); label.isValid()) {
        painter->fillRect(
            QRect(option.rect.left(), option.rect.top() + 3, 4, option.rect.height() - 6), label);
    }
    const QString taskIcon = index.data(DocumentListModel::TaskIconRole).toString();
    const QString path = index.data(DocumentListModel::PathRole).toString();
    const QIcon icon = taskIcon.isEmpty() ? iconForItem(path) : iconNamed(taskIcon);
    icon.paint(painter, iconRect(option.rect));
    area.setLeft(area.left() + kIconSize + kPadding);

    const QFont title = titleFont(option.font);
    const QFont small = smallFont(option.font);
    const QFontMetrics titleMetrics(title);
    // An open task shows when it is due, in red once that has passed.
    const QString due = index.data(DocumentListModel::DueTextRole).toString();
    const QString date =
        due.isEmpty() ? dateText(index.data(DocumentListModel::DateRole).toDateTime()) : due;
    const bool pinned = index.data(DocumentListModel::PinnedRole).toBool();
    const QString right = (pinned ? QStringLiteral("\U0001F4CC ") : QString()) + date;
    painter->setFont(small);
    const int rightWidth = QFontMetrics(small).horizontalAdvance(right);
    painter->setPen(!selected && !due.isEmpty() && taskIcon.endsWith(u"-due") ? overdueColor()
                                                                              : faint);
    painter->drawText(
        QRect(area.right() - rightWidth, area.top(), rightWidth, titleMetrics.height()),
        Qt::AlignRight | Qt::AlignVCenter, right);

    painter->setFont(title);
    painter->setPen(ink);
    const QRect titleRect(area.left(), area.top(), area.width() - rightWidth - kPadding,
                          titleMetrics.height());
    painter->drawText(titleRect, Qt::AlignLeft | Qt::AlignVCenter,
                      titleMetrics.elidedText(index.data(Qt::DisplayRole).toString(),
                                              Qt::ElideMiddle, titleRect.width()));

    const QString preview = index.data(DocumentListModel::PreviewRole).toString();
    if (!preview.isEmpty()) {
        painter->setFont(small);
        painter->setPen(faint);
        const QRect previewRect(area.left(), area.top() + titleMetrics.height() + 2, area.width(),
                                area.bottom() - area.top() - titleMetrics.height());
        painter->drawText(previewRect, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, preview);
    }
    painter->restore();
}

} // namespace tl::app
