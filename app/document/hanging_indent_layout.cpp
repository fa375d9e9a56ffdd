#include "hanging_indent_layout.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <climits>

namespace tl::app {

HangingIndentLayout::HangingIndentLayout(QTextDocument *document)
    : QPlainTextDocumentLayout(document)
{
}

void HangingIndentLayout::setWidth(qreal width)
{
    m_width = width;
}

void HangingIndentLayout::setDefaultIndents(qreal firstLine, qreal head, qreal tail)
{
    m_default.firstLine = firstLine;
    m_default.head = head;
    m_default.tail = tail;
}

QRectF HangingIndentLayout::blockBoundingRect(const QTextBlock &block) const
{
    if (block.isValid() && block.layout()->lineCount() == 0)
        layoutWithIndents(block);
    return QPlainTextDocumentLayout::blockBoundingRect(block);
}

void HangingIndentLayout::documentChanged(int from, int charsRemoved, int charsAdded)
{
    const int blocksBefore = document()->blockCount();
    QPlainTextDocumentLayout::documentChanged(from, charsRemoved, charsAdded);
    // The base lays a changed paragraph out without indents: do it again.
    QTextBlock block = document()->findBlock(from);
    const QTextBlock last = document()->findBlock(qMax(0, from + charsAdded - 1));
    bool heightChanged = false;
    while (block.isValid()) {
        if (block.layout()->lineCount() > 0) {
            const int lines = block.layout()->lineCount();
            layoutWithIndents(block);
            heightChanged |= block.layout()->lineCount() != lines;
        }
        if (block == last)
            break;
        block = block.next();
    }
    if (heightChanged || blocksBefore != document()->blockCount())
        Q_EMIT documentSizeChanged(documentSize());
    Q_EMIT update();
}

void HangingIndentLayout::layoutWithIndents(const QTextBlock &block) const
{
    const auto *own = static_cast<const ParagraphIndents *>(block.userData());
    const ParagraphIndents &indents = own ? *own : m_default;
    QTextLayout *layout = block.layout();
    QTextOption option = document()->defaultTextOption();
    if (indents.rightToLeft) {
        option.setTextDirection(Qt::RightToLeft);
        option.setAlignment(Qt::AlignRight);
    }
    layout->setTextOption(option);
    const qreal margin = document()->documentMargin();
    const qreal available = m_width > 0 ? m_width - 2 * margin : qreal(INT_MAX);
    layout->beginLayout();
    qreal height = 0;
    for (bool first = true;; first = false) {
        QTextLine line = layout->createLine();
        if (!line.isValid())
            break;
        const qreal indent = first ? indents.firstLine : indents.head;
        line.setLeadingIncluded(true);
        line.setLineWidth(qMax<qreal>(available - indent + qMin<qreal>(indents.tail, 0), 20));
        // The extra spacing stands above each line, so it also parts paragraphs.
        line.setPosition(QPointF(margin + indent, height + (m_lineSpacing - 1) * line.height()));
        height += line.height() * m_lineSpacing;
    }
    layout->endLayout();
    QTextBlock counted = block;
    counted.setLineCount(block.isVisible() ? layout->lineCount() : 0);
}

} // namespace tl::app
