#include "completion_popup.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <cmath>

namespace tl::app {

CompletionPopup::CompletionPopup(QWidget *parent) : QListWidget(parent)
{
    setWindowFlags(Qt::Popup);
    setObjectName(QStringLiteral("completionPopup"));
    setUniformItemSizes(true);
    connect(this, &QListWidget::itemActivated, this, [this](QListWidgetItem *item) {
        hide();
        Q_EMIT chosen(row(item));
    });
}

void CompletionPopup::showChoices(const QStringList &choices, const QPoint &globalBelowCaret,
                                  const QFont &font)
{
    clear();
    addItems(choices);
    setFont(font);
    const int rowHeight = int(std::lround(QFontMetricsF(font).lineSpacing() * 2)) + 3;
    for (int i = 0; i < count(); ++i)
        item(i)->setSizeHint(QSize(0, rowHeight));
    resize(380, rowHeight * int(qMin<qsizetype>(4, choices.size())) + 2 * frameWidth());
    move(globalBelowCaret);
    setCurrentRow(0);
    show();
    setFocus();
}

void CompletionPopup::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Tab || event->key() == Qt::Key_Return ||
        event->key() == Qt::Key_Enter) {
        if (QListWidgetItem *item = currentItem())
            Q_EMIT itemActivated(item);
        return;
    }
    QListWidget::keyPressEvent(event);
}

} // namespace tl::app
