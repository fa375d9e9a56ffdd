#pragma once

#include <QPlainTextDocumentLayout>
#include <QTextBlockUserData>

// The plain-text layout with each paragraph's indents: the first line at its
// own indent, wrapped lines at the head indent, so heading marks and list
// markers hang to the left of the text. The indents live beside the blocks,
// not in their formats, so the undo history holds only the user's edits.
namespace tl::app {

struct ParagraphIndents : QTextBlockUserData
{
    qreal firstLine = 0;
    qreal head = 0;
    qreal tail = 0;
    bool rightToLeft = false;
};

class HangingIndentLayout : public QPlainTextDocumentLayout
{
    Q_OBJECT
public:
    explicit HangingIndentLayout(QTextDocument *document);

    // The view's width, as the base layout is told it.
    void setWidth(qreal width);
    // Lines stand this many line heights apart.
    void setLineSpacing(qreal multiple) { m_lineSpacing = multiple > 0 ? multiple : 1; }
    // The indents of a paragraph the highlighter has not reached yet.
    void setDefaultIndents(qreal firstLine, qreal head, qreal tail);
    QRectF blockBoundingRect(const QTextBlock &block) const override;

protected:
    void documentChanged(int from, int charsRemoved, int charsAdded) override;

private:
    void layoutWithIndents(const QTextBlock &block) const;

    ParagraphIndents m_default;
    qreal m_width = 0;
    qreal m_lineSpacing = 1;
};

} // namespace tl::app
