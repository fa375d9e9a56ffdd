#include "markdown_highlighter.h"

#include "document/hanging_indent_layout.h"

#include <QFontMetricsF>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

namespace tl::app {

using namespace editing;

QColor toColor(const Rgba &rgba)
{
    return QColor::fromRgbF(float(rgba.red), float(rgba.green), float(rgba.blue),
                            float(rgba.alpha));
}

MarkdownHighlighter::MarkdownHighlighter(QTextDocument *document, HangingIndentLayout *layout)
    : QObject(document), m_document(document), m_layout(layout)
{
    connect(document, &QTextDocument::contentsChange, this, &MarkdownHighlighter::contentsChanged);
}

void MarkdownHighlighter::setStyle(const HighlightOptions &options, const Palette &palette,
                                   const QFont &font)
{
    m_options = options;
    m_palette = palette;
    m_font = font;
    QFont bold = font;
    bold.setBold(true);
    m_options.width = [regular = QFontMetricsF(font), bold = QFontMetricsF(bold)](QStringView text,
                                                                                  double stroke) {
        return (stroke < 0 ? bold : regular).horizontalAdvance(text.toString());
    };
    rehighlightAll();
}

void MarkdownHighlighter::rehighlightAll()
{
    m_text = m_document->toPlainText();
    highlight({0, m_text.size()});
}

void MarkdownHighlighter::contentsChanged(int position, int removed, int added)
{
    if (m_suspended)
        return;
    QTextCursor inserted(m_document);
    inserted.setPosition(position);
    inserted.setPosition(qMin(position + added, m_document->characterCount() - 1),
                         QTextCursor::KeepAnchor);
    QString piece = inserted.selectedText();
    piece.replace(QChar(0x2029), u'\n');
    m_text.replace(position, removed, piece);
    if (m_text.size() != m_document->characterCount() - 1) {
        rehighlightAll(); // out of step: a whole new text
        return;
    }
    highlight(rangeToRecompute(m_text, {position, piece.size()}));
}

QTextCharFormat MarkdownHighlighter::format(const CharacterStyle &style) const
{
    QTextCharFormat format;
    format.setForeground(toColor(m_palette.color(style.color)));
    if (style.stroke <= -2)
        format.setFontWeight(QFont::Bold);
    else if (style.stroke < 0)
        format.setFontWeight(QFont::DemiBold);
    if (style.slant != 0)
        format.setFontItalic(true);
    if (style.strike)
        format.setFontStrikeOut(true);
    if (style.link) {
        format.setFontUnderline(true);
        format.setUnderlineColor(toColor(m_palette.color(ColorRole::Base)));
        format.setForeground(toColor(m_palette.color(ColorRole::Link)));
    }
    return format;
}

void MarkdownHighlighter::highlight(TextRange range)
{
    const Highlighting result = tl_highlightStringinRange(m_text, range, range, m_options);
    if (result.range.length == 0 && !m_text.isEmpty())
        return;
    const ParagraphStyle base =
        result.paragraphs.isEmpty() ? ParagraphStyle() : result.paragraphs.first().style;
    m_layout->setDefaultIndents(base.headIndent, base.headIndent, base.tailIndent);
    qsizetype run = 0;
    qsizetype paragraph = 0;
    for (QTextBlock block = m_document->findBlock(int(result.range.location));
         block.isValid() && block.position() <= result.range.end(); block = block.next()) {
        const qsizetype start = block.position();
        const qsizetype end = start + block.length();
        QList<QTextLayout::FormatRange> formats;
        while (run < result.runs.size() &&
               result.runs[run].start + result.runs[run].length <= start)
            ++run;
        for (qsizetype r = run; r < result.runs.size() && result.runs[r].start < end; ++r) {
            const AttributeRun &attributes = result.runs[r];
            if (attributes.style == CharacterStyle())
                continue;
            const qsizetype from = qMax(attributes.start, start);
            const qsizetype to = qMin(attributes.start + attributes.length, end);
            formats.append({int(from - start), int(to - from), format(attributes.style)});
        }
        block.layout()->setFormats(formats);
        while (paragraph + 1 < result.paragraphs.size() &&
               result.paragraphs[paragraph + 1].start <= start)
            ++paragraph;
        if (paragraph < result.paragraphs.size()) {
            const ParagraphStyle &style = result.paragraphs[paragraph].style;
            auto *indents = new ParagraphIndents;
            indents->firstLine = style.firstLineHeadIndent;
            indents->head = style.headIndent;
            indents->tail = style.tailIndent;
            indents->rightToLeft = style.alignment == Alignment::RightToLeft;
            block.setUserData(indents);
        }
    }
    m_document->markContentsDirty(int(result.range.location), int(result.range.length));
}

} // namespace tl::app
