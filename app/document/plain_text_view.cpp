#include "plain_text_view.h"

#include <QKeyEvent>
#include <QTextBlock>
#include <QTextBlockFormat>
#include <QTextCursor>

namespace tl::app {

PlainTextView::PlainTextView(QWidget *parent) : QPlainTextEdit(parent)
{
    setFrameShape(QFrame::NoFrame);
    setTabChangesFocus(false);
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
    document()->setDocumentMargin(16);
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        if (m_loading)
            return;
        const QTextCursor cursor = textCursor();
        const bool textBefore =
            !cursor.block().text().left(cursor.positionInBlock()).trimmed().isEmpty();
        Q_EMIT textEdited(toPlainText(), textBefore);
    });
    connect(this, &QPlainTextEdit::cursorPositionChanged, this,
            [this] { Q_EMIT caretMoved(textCursor().position()); });
}

void PlainTextView::showText(const QString &text, qint64 offset)
{
    m_loading = true;
    m_editing = false;
    setPlainText(text);
    applyLineSpacing();
    QTextCursor cursor = textCursor();
    cursor.setPosition(int(qBound<qint64>(0, offset, text.size())));
    setTextCursor(cursor);
    centerCursor();
    m_loading = false;
}

void PlainTextView::setDocumentFont(const QString &family, int pointSize, double lineSpacing)
{
    QFont face = family.isEmpty() ? QFont() : QFont(family);
    face.setPointSize(pointSize > 0 ? pointSize : 14);
    setFont(face);
    m_lineSpacing = lineSpacing > 0 ? lineSpacing : 1.0;
    const bool loading = m_loading;
    m_loading = true;
    applyLineSpacing();
    m_loading = loading;
}

void PlainTextView::applyLineSpacing()
{
    QTextCursor all(document());
    all.select(QTextCursor::Document);
    QTextBlockFormat format;
    format.setLineHeight(m_lineSpacing * 100, QTextBlockFormat::ProportionalHeight);
    all.mergeBlockFormat(format);
}

bool PlainTextView::mayEdit()
{
    if (m_editing)
        return true;
    bool allowed = true;
    Q_EMIT editingWanted(&allowed);
    m_editing = allowed;
    return allowed;
}

namespace {

// Keys that change the text: printable ones without a command modifier,
// Return, Tab, Backspace, Delete, and the editing shortcuts.
bool editsText(const QKeyEvent *event)
{
    for (QKeySequence::StandardKey key :
         {QKeySequence::Cut, QKeySequence::Paste, QKeySequence::Undo, QKeySequence::Redo})
        if (event->matches(key))
            return true;
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;
    if (event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete)
        return true;
    const QString text = event->text();
    return !text.isEmpty() && (text.at(0).isPrint() || text == u"\r" || text == u"\t");
}

} // namespace

void PlainTextView::keyPressEvent(QKeyEvent *event)
{
    if (editsText(event) && !mayEdit())
        return;
    QPlainTextEdit::keyPressEvent(event);
}

void PlainTextView::insertFromMimeData(const QMimeData *source)
{
    if (mayEdit())
        QPlainTextEdit::insertFromMimeData(source);
}

} // namespace tl::app
