#include "text_buffer.h"

#include <algorithm>

namespace tl::editing {

EditorBuffer::EditorBuffer(QString text, TextRange selection, bool locked)
    : m_text(std::move(text)), m_locked(locked)
{
    setSelection(selection);
}

void EditorBuffer::setSelection(TextRange selection)
{
    const qsizetype location = std::clamp<qsizetype>(selection.location, 0, m_text.size());
    m_selection = {location, std::clamp<qsizetype>(selection.length, 0, m_text.size() - location)};
}

bool EditorBuffer::tl_replaceCharactersInRange(TextRange range, const QString &string)
{
    if (m_locked || range.location < 0 || range.length < 0 || range.end() > m_text.size())
        return false;
    if (range.length == 0 && string.isEmpty())
        return true;
    m_text.replace(range.location, range.length, string);
    // The selection follows the text, as a text view's does.
    const auto follow = [&](qsizetype at) {
        if (at < range.location || (at == range.location && range.length > 0))
            return at;
        if (at >= range.end())
            return at + string.size() - range.length;
        return range.location + string.size();
    };
    const qsizetype start = follow(m_selection.location);
    m_selection = {start, std::max<qsizetype>(0, follow(m_selection.end()) - start)};
    m_replacements.append({range, string});
    return true;
}

QChar EditorBuffer::at(qsizetype index) const
{
    return index >= 0 && index < m_text.size() ? m_text.at(index) : QChar();
}

QStringView EditorBuffer::textIn(TextRange range) const
{
    return QStringView(m_text).mid(range.location, range.length);
}

TextRange EditorBuffer::paragraphRange(TextRange range) const
{
    return paragraphRangeIn(m_text, range);
}

TextRange EditorBuffer::paragraphRangeTrimmed(TextRange range) const
{
    TextRange paragraphs = paragraphRange(range);
    while (paragraphs.length > 0 && isParagraphSeparator(m_text.at(paragraphs.end() - 1)))
        --paragraphs.length;
    return paragraphs;
}

TextRange paragraphRangeIn(QStringView text, TextRange range)
{
    const qsizetype size = text.size();
    qsizetype start = std::clamp<qsizetype>(range.location, 0, size);
    while (start > 0 && !isParagraphSeparator(text.at(start - 1)))
        --start;
    qsizetype end =
        std::clamp<qsizetype>(range.length > 0 ? range.end() - 1 : range.location, start, size);
    while (end < size && !isParagraphSeparator(text.at(end)))
        ++end;
    if (end < size)
        end += (text.at(end) == u'\r' && end + 1 < size && text.at(end + 1) == u'\n') ? 2 : 1;
    return {start, end - start};
}

bool isParagraphSeparator(QChar c)
{
    return c == u'\n' || c == u'\r' || c == QChar(0x2029);
}

QString withNewlineParagraphs(const QString &text)
{
    QString result = text;
    result.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    result.replace(u'\r', u'\n');
    result.replace(QChar(0x2029), u'\n');
    return result;
}

bool isBlank(QStringView text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar c) { return c == u' ' || c == u'\t' || isParagraphSeparator(c); });
}

} // namespace tl::editing
