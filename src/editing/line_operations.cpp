#include "line_operations.h"

#include "editing/lists.h"
#include "foundation/compare.h"
#include "foundation/regex.h"

#include <algorithm>

namespace tl::editing {

void tl_toggleComment(EditorBuffer &buffer)
{
    static const Regex commented(QStringLiteral(R"(^(\s*)//\s)"), RegexOption::AnchorsMatchLines);
    static const Regex lineStart(QStringLiteral("^"), RegexOption::AnchorsMatchLines);
    const TextRange paragraphs = buffer.paragraphRangeTrimmed(buffer.selection());
    const QString text = buffer.textIn(paragraphs).toString();
    const QString changed = text.trimmed().startsWith(QLatin1String("//"))
                                ? commented.replaceAll(text, QString())
                                : lineStart.replaceAll(text, QStringLiteral("// "));
    if (buffer.tl_replaceCharactersInRange(paragraphs, changed))
        buffer.setSelection({paragraphs.location, changed.size()});
}

void tl_sortSelectionbyAlphabet(EditorBuffer &buffer, const EditorContext &context)
{
    const TextRange selection = buffer.selection();
    const TextRange paragraphs = buffer.paragraphRange(selection);
    QStringList lines = buffer.textIn(paragraphs).toString().split(u'\n');
    const bool finalNewline = lines.size() > 1 && lines.last().isEmpty();
    if (finalNewline)
        lines.removeLast();
    if (context.settings.sortCaseSensitive)
        std::stable_sort(lines.begin(), lines.end(), LocalizedLess());
    else
        std::stable_sort(lines.begin(), lines.end(), LocalizedCaseInsensitiveLess());
    if (context.settings.sortDescending)
        std::reverse(lines.begin(), lines.end());
    QString sorted = lines.join(u'\n');
    if (finalNewline)
        sorted += u'\n';
    if (buffer.tl_replaceCharactersInRange(paragraphs, sorted))
        buffer.setSelection(selection);
}

namespace {

// Swaps the selected lines with the paragraph before them (up) or after
// them (down); the block without a final newline keeps the text's end as it was.
void moveLines(EditorBuffer &buffer, const EditorContext &context, bool up)
{
    const TextRange selection = buffer.selection();
    const TextRange lines = buffer.paragraphRange(selection);
    if (up ? lines.location == 0 : lines.end() >= buffer.length())
        return;
    const TextRange other = buffer.paragraphRange(up ? lines.location - 1 : lines.end());
    QString moved = buffer.textIn(lines).toString();
    QString passed = buffer.textIn(other).toString();
    QString &last = up ? moved : passed; // the one that ends the text now
    QString &first = up ? passed : moved;
    if (!last.endsWith(u'\n')) {
        last += u'\n';
        first.chop(1);
    }
    const TextRange both{std::min(lines.location, other.location), lines.length + other.length};
    if (!buffer.tl_replaceCharactersInRange(both, up ? moved + passed : passed + moved))
        return;
    const qsizetype shift = up ? -other.length : passed.size();
    buffer.setSelection({selection.location + shift, selection.length});
    if (selectionIsInNumberedList(buffer, context))
        tl_updateNumberedList(buffer, context);
}

} // namespace

void tl_moveLineUp(EditorBuffer &buffer, const EditorContext &context)
{
    moveLines(buffer, context, true);
}

void tl_moveLineDown(EditorBuffer &buffer, const EditorContext &context)
{
    moveLines(buffer, context, false);
}

QString tl_deleteLine(EditorBuffer &buffer)
{
    TextRange lines = buffer.paragraphRange(buffer.selection());
    if (lines.length == 0 && lines.location > 0)
        lines = {lines.location - 1, 1}; // an empty last line takes its newline
    const QString deleted = buffer.textIn(lines).toString();
    if (!buffer.tl_replaceCharactersInRange(lines, QString()))
        return QString();
    buffer.setSelection({lines.location, 0});
    return deleted;
}

void advancedForwardDelete(EditorBuffer &buffer)
{
    const qsizetype caret = buffer.selection().location;
    if (caret == 0)
        return;
    const qsizetype found = buffer.text().indexOf(buffer.at(caret - 1), caret, Qt::CaseInsensitive);
    if (found >= 0)
        buffer.tl_replaceCharactersInRange({caret, found + 1 - caret}, QString());
}

void tl_smartReplaceCharactersInRange(EditorBuffer &buffer, TextRange range, const QString &string)
{
    QString replacement = string;
    if (range.location > 0 && !buffer.at(range.location - 1).isSpace())
        replacement.prepend(u' ');
    if (range.end() < buffer.length() && !buffer.at(range.end()).isSpace())
        replacement.append(u' ');
    if (buffer.tl_replaceCharactersInRange(range, replacement))
        buffer.setSelection({range.location + replacement.size(), 0});
}

} // namespace tl::editing
