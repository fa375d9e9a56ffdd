#pragma once

#include "editing/highlighter.h"

#include <QColor>
#include <QFont>
#include <QObject>
#include <QString>
#include <QTextCharFormat>

class QTextDocument;

// Colours the plain-text view from the core's attribute runs: the whole text
// on load, after each edit the range the edit asks for. Character attributes
// go into the paragraphs' layout formats and indents beside the paragraphs,
// so neither enters the undo history.
namespace tl::app {

class HangingIndentLayout;

class MarkdownHighlighter : public QObject
{
    Q_OBJECT
public:
    MarkdownHighlighter(QTextDocument *document, HangingIndentLayout *layout);

    // The document's kind, font and colours; highlights the whole text.
    void setStyle(const editing::HighlightOptions &options, const editing::Palette &palette,
                  const QFont &font);
    // The text as the rules see it, kept in step with every edit.
    const QString &text() const { return m_text; }
    void rehighlightAll();
    // While a whole new text goes in, edits are not followed; the style set
    // afterwards colours it once.
    void setSuspended(bool suspended) { m_suspended = suspended; }

private:
    void contentsChanged(int position, int removed, int added);
    void highlight(editing::TextRange range);
    QTextCharFormat format(const editing::CharacterStyle &style) const;

    QTextDocument *m_document;
    HangingIndentLayout *m_layout;
    editing::HighlightOptions m_options;
    editing::Palette m_palette{editing::PaletteOptions{}};
    QFont m_font;
    QString m_text;
    bool m_suspended = false;
};

QColor toColor(const editing::Rgba &rgba);

} // namespace tl::app
