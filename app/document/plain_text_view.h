#pragma once

#include "editing/completion.h"
#include "editing/editor_settings.h"
#include "editing/text_buffer.h"

#include <QPlainTextEdit>
#include <functional>

// The plain-text editor: the document's face, size and line spacing, the
// text the controller hands over, every change reported back, the editing
// rules on keys, paste and drops (each rule one undo step) and the Markdown
// colours.
namespace tl::app {

class CompletionPopup;
class HangingIndentLayout;
class MarkdownHighlighter;

class PlainTextView : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit PlainTextView(QWidget *parent = nullptr);

    // Replaces the text without reporting a change; the caret goes to offset.
    void showText(const QString &text, qint64 offset);
    void setDocumentFont(const QString &family, int pointSize, double lineSpacing);
    // The shown document, whose kind decides the colouring.
    void setDocumentPath(const QString &path);

    using Rule = std::function<void(editing::EditorBuffer &, editing::EditorContext &)>;
    // Runs a rule on the text and the selection as one undo step.
    void applyRule(const Rule &rule, bool shift = false);
    void sortLines();
    void pasteAsMarkdown();
    void insertMarkdownLink();
    // Puts the text in place of the selection, the caret behind it.
    void insertAtSelection(const QString &text);
    // The next key that would change the text asks again (editingWanted).
    void endEditing() { m_editing = false; }

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
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    bool mayEdit();
    bool handleEditingKey(QKeyEvent *event);
    void typeReplacement(editing::TextRange affected, const QString &replacement, bool shift);
    void updateStyle();
    editing::EditorContext editorContext(bool shift);
    void showCompletions();
    QString droppedText(const QMimeData *source);

    HangingIndentLayout *m_layout;
    MarkdownHighlighter *m_highlighter;
    CompletionPopup *m_popup;
    std::optional<editing::Completions> m_completions;
    QString m_path;
    bool m_dropCopies = false;
    bool m_dropping = false;
    bool m_editing = false;
    bool m_loading = false;
    double m_lineSpacing = 1.0;
};

} // namespace tl::app
