#pragma once

#include <QPlainTextEdit>

// The plain-text editor: the document's face, size and line spacing, the
// text the controller hands over, and every change reported back.
namespace tl::app {

class PlainTextView : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit PlainTextView(QWidget *parent = nullptr);

    // Replaces the text without reporting a change; the caret goes to offset.
    void showText(const QString &text, qint64 offset);
    void setDocumentFont(const QString &family, int pointSize, double lineSpacing);
Q_SIGNALS:
    // The first key that would change the text: set *allowed to false to
    // refuse it (a locked document whose user did not unlock it).
    void editingWanted(bool *allowed);
    // The text after each change, and whether the caret's line has text
    // before the caret.
    void textEdited(const QString &text, bool caretLineHasTextBefore);
    void caretMoved(qint64 offset);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    bool mayEdit();
    void applyLineSpacing();

    bool m_editing = false;
    bool m_loading = false;
    double m_lineSpacing = 1.0;
};

} // namespace tl::app
