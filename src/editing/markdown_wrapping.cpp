#include "markdown_wrapping.h"

namespace tl::editing {

namespace {

// With an empty selection inside a pair of long marks, the text between
// them, so the toggle acts on that pair.
TextRange pairAroundCaret(const QString &text, qsizetype caret, const QString &openTag,
                          const QString &closeTag)
{
    const qsizetype openBefore =
        caret >= openTag.size() ? text.lastIndexOf(openTag, caret - openTag.size()) : -1;
    const qsizetype closeBefore =
        caret >= closeTag.size() ? text.lastIndexOf(closeTag, caret - closeTag.size()) : -1;
    const qsizetype openAfter = text.indexOf(openTag, caret);
    const qsizetype closeAfter = text.indexOf(closeTag, caret);
    if (openBefore < 0 || closeAfter < 0 || closeBefore > openBefore ||
        (openAfter >= 0 && openAfter < closeAfter))
        return {caret, 0};
    const qsizetype start = openBefore + openTag.size();
    return {start, closeAfter - start};
}

} // namespace

QString weakEmphasisMark(const EditorContext &context)
{
    return context.settings.underscoreEmphasis ? QStringLiteral("_") : QStringLiteral("*");
}

QString strongEmphasisMark(const EditorContext &context)
{
    return context.settings.underscoreEmphasis ? QStringLiteral("__") : QStringLiteral("**");
}

void insertMarkdownString(EditorBuffer &buffer, const EditorContext &context,
                          const QString &openTag, const QString &closeTag)
{
    const QString &text = buffer.text();
    TextRange selection = buffer.selection();
    if (selection.length == 0 && openTag != closeTag && openTag.size() >= 2)
        selection = pairAroundCaret(text, selection.location, openTag, closeTag);
    const qsizetype open = openTag.size();
    const qsizetype close = closeTag.size();
    const auto textAt = [&](qsizetype at, qsizetype length) {
        return at >= 0 ? QStringView(text).mid(at, length) : QStringView();
    };
    bool unwrap = textAt(selection.location - open, open) == openTag &&
                  textAt(selection.end(), close) == closeTag;
    // "**bold**" takes a weak mark inside, not off.
    if (unwrap && openTag == weakEmphasisMark(context) &&
        buffer.at(selection.location - 2) == openTag.at(0) &&
        buffer.at(selection.location - 3) != openTag.at(0))
        unwrap = false;
    const QString inner = buffer.textIn(selection).toString();
    if (unwrap) {
        const bool doubled =
            (openTag == u"[" && closeTag == u"]") || (openTag == u"{" && closeTag == u"}");
        if (doubled && textAt(selection.location - 2 * open, 2 * open) == openTag + openTag &&
            textAt(selection.end(), 2 * close) == closeTag + closeTag) {
            const TextRange grown{selection.location - 2 * open,
                                  selection.length + 2 * (open + close)};
            if (buffer.tl_replaceCharactersInRange(grown, inner))
                buffer.setSelection({grown.location, inner.size()});
            return;
        }
        // One pair of brackets grows into a double one: "[" inside "[]" makes "[[]]".
        const TextRange grown{selection.location - open, selection.length + open + close};
        const QString replacement =
            doubled ? openTag + openTag + inner + closeTag + closeTag : inner;
        if (buffer.tl_replaceCharactersInRange(grown, replacement))
            buffer.setSelection(
                {doubled ? selection.location + open : grown.location, inner.size()});
        return;
    }
    if (buffer.tl_replaceCharactersInRange(selection, openTag + inner + closeTag))
        buffer.setSelection({selection.location + open, inner.size()});
}

void insertMarkdownHeading(EditorBuffer &buffer, int level)
{
    const TextRange selection = buffer.selection();
    const TextRange paragraph = buffer.paragraphRangeTrimmed({selection.location, 0});
    const QStringView text = buffer.textIn(paragraph);
    qsizetype start = 0;
    while (start < text.size() && text.at(start) == u'#')
        ++start;
    while (start < text.size() && (text.at(start) == u' ' || text.at(start) == u'\t'))
        ++start;
    QString heading = level > 0 ? QString(level, u'#') + u' ' : QString();
    heading += text.mid(start);
    const qsizetype fromEnd = paragraph.end() - selection.location;
    if (!buffer.tl_replaceCharactersInRange(paragraph, heading))
        return;
    buffer.setSelection(
        {std::max(paragraph.location, paragraph.location + heading.size() - fromEnd), 0});
}

} // namespace tl::editing
