#pragma once

#include <QListWidget>

// The list of completions under the caret: at most 380 wide and four rows
// high, each row twice the font's line height plus 3. Return or a click
// chooses, Escape or a click elsewhere cancels.
namespace tl::app {

class CompletionPopup : public QListWidget
{
    Q_OBJECT
public:
    explicit CompletionPopup(QWidget *parent);

    void showChoices(const QStringList &choices, const QPoint &globalBelowCaret, const QFont &font);

Q_SIGNALS:
    void chosen(int index);

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace tl::app
