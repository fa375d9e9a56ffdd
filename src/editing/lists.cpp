#include "lists.h"

#include "foundation/regex.h"
#include "store/log.h"

#include <QHash>
#include <array>
#include <optional>

namespace tl::editing {

namespace {

constexpr RegexOptions Insensitive = RegexOption::CaseInsensitive;

// The line prefixes an item continues with, tried in this order.
const std::array<Regex, 4> &listPrefixes()
{
    static const std::array<Regex, 4> prefixes{
        Regex(QStringLiteral(R"(^([ |\t]*(- \[[ |x|X]\])(?: |\t)?))"), Insensitive),
        Regex(QStringLiteral(R"(^([ |\t]*(\d+[\.|)])(?: |\t)+))"), Insensitive),
        Regex(QStringLiteral(R"(^([ |\t]*([-—+\*•>:]){0,1}(?: |\t)+))"), Insensitive),
        Regex(QStringLiteral(R"(^([ |\t]*(//)(?: |\t)+))"), Insensitive),
    };
    return prefixes;
}

// Tab's prefixes: the task box, the number and a narrower bullet.
const std::array<Regex, 3> &tabPrefixes()
{
    static const std::array<Regex, 3> prefixes{
        listPrefixes()[0], listPrefixes()[1],
        Regex(QStringLiteral(R"(^([ |\t]*([-—+*•])*(?: |\t)+))"), Insensitive)};
    return prefixes;
}

// Indent, number, closing mark with its blanks.
const Regex &numberPattern()
{
    static const Regex pattern(QStringLiteral(R"(^([ |\t]*)(\d+)([.|)][ |\t]+))"), Insensitive);
    return pattern;
}

template <std::size_t N>
std::optional<RegexMatch> firstMatch(const std::array<Regex, N> &patterns, QStringView text)
{
    for (const Regex &pattern : patterns)
        if (auto match = pattern.match(text))
            return match;
    return std::nullopt;
}

struct PrefixMatch
{
    RegexMatch match;
    TextRange line;
};

// The item whose prefix a new line takes: the line above, or for a line
// that is only indented, the list marker further up.
std::optional<PrefixMatch> itemAbove(const EditorBuffer &buffer, TextRange line, bool shift)
{
    std::optional<RegexMatch> match = firstMatch(listPrefixes(), buffer.textIn(line));
    std::optional<PrefixMatch> remembered;
    while (!shift && match && isBlank(match->captured(buffer.textIn(line), 1)) &&
           line.location > 0) {
        const TextRange upper = buffer.paragraphRange(line.location - 1);
        if (isBlank(buffer.textIn(upper)))
            break;
        remembered = PrefixMatch{*match, line};
        line = upper;
        match = firstMatch(listPrefixes(), buffer.textIn(line));
    }
    if (match)
        return PrefixMatch{*match, line};
    return remembered;
}

QString blanked(QString text)
{
    for (QChar &c : text)
        if (!c.isSpace())
            c = u' ';
    return text;
}

// Line starts within a range, last first, so earlier places stay valid.
QList<qsizetype> lineStartsLastFirst(const EditorBuffer &buffer, TextRange range)
{
    QList<qsizetype> starts{range.location};
    for (qsizetype i = range.location; i < range.end(); ++i)
        if (isParagraphSeparator(buffer.text().at(i)))
            starts.append(i + 1);
    std::reverse(starts.begin(), starts.end());
    return starts;
}

} // namespace

void tryToInsertListItem(EditorBuffer &buffer, const EditorContext &context)
{
    const qsizetype caret = buffer.selection().location;
    const TextRange caretLine = buffer.paragraphRange(caret);
    if (caretLine.location == 0)
        return;
    const TextRange above = buffer.paragraphRange(caretLine.location - 1);
    if (buffer.paragraphRangeTrimmed(above).length == 0)
        return;
    const bool shift = context.keys.shift;
    const std::optional<PrefixMatch> item = itemAbove(buffer, above, shift);
    if (!item)
        return;
    const QStringView lineText = buffer.textIn(item->line);
    if (item->line.length > item->match.length() + 1 || isBlank(lineText)) {
        QString prefix = item->match.capturedString(lineText, 1);
        prefix.replace(u'x', u' ').replace(u'X', u' '); // a ticked box continues open
        if (shift)
            prefix = blanked(prefix);
        bool numbered = false;
        if (prefix.contains(u'.') || prefix.contains(u')')) {
            if (const auto number = numberPattern().match(prefix)) {
                prefix = number->capturedString(prefix, 1) +
                         QString::number(number->captured(prefix, 2).toLongLong() + 1) +
                         number->capturedString(prefix, 3);
                numbered = true;
            }
        }
        buffer.tl_replaceCharactersInRange({caret, 0}, prefix);
        buffer.setSelection({caret + prefix.size(), 0});
        if (numbered)
            updateNumberedListAtRange(buffer, buffer.paragraphRange(caret), 0);
        return;
    }
    // Return on an empty item. A Return that split an item's text keeps it.
    if (!isBlank(buffer.textIn(buffer.paragraphRangeTrimmed(caretLine))))
        return;
    buffer.tl_replaceCharactersInRange({caret - 1, 1}, QString());
    buffer.setSelection({caret - 1, 0});
    const QString before = buffer.text();
    tabButtonPressed(buffer, context, false, true);
    if (buffer.text() != before)
        return;
    // Nothing to outdent: two Returns end the list.
    const TextRange line = buffer.paragraphRange(buffer.selection().location);
    buffer.tl_replaceCharactersInRange(line, QStringLiteral("\n"));
    buffer.setSelection({line.location, 0});
}

void updateNumberedListAtRange(EditorBuffer &buffer, TextRange line, qint64 count)
{
    TextRange paragraph = buffer.paragraphRange(line.location);
    while (paragraph.location > 0) {
        const TextRange previous = buffer.paragraphRange(paragraph.location - 1);
        if (previous.length <= 1)
            break;
        paragraph = previous;
    }
    if (paragraph.length <= 1) {
        if (paragraph.end() >= buffer.length())
            return;
        paragraph = buffer.paragraphRange(paragraph.end());
        if (paragraph.length <= 1)
            return;
    }
    qsizetype currentIndent = -1;
    QHash<qsizetype, qint64> nextOfLevel;
    qsizetype at = paragraph.location;
    while (at < buffer.length()) {
        paragraph = buffer.paragraphRange(at);
        if (paragraph.length <= 1)
            break;
        const QStringView text = buffer.textIn(paragraph);
        const std::optional<RegexMatch> match = numberPattern().match(text);
        if (!match) {
            logLine(QStringLiteral("no match: %1").arg(text));
            at = paragraph.end();
            continue;
        }
        const qsizetype indent = match->groupLength(1);
        const qint64 number = match->captured(text, 2).toLongLong();
        if (count == 0)
            count = number;
        qint64 expected;
        if (currentIndent < 0) {
            currentIndent = indent;
            expected = count ? count : 1;
        } else if (indent > currentIndent) {
            nextOfLevel.insert(currentIndent, count);
            currentIndent = indent;
            expected = 1;
        } else if (indent < currentIndent) {
            nextOfLevel.remove(currentIndent);
            currentIndent = indent;
            count = nextOfLevel.value(indent, 0);
            expected = count ? count : 1;
        } else {
            expected = count ? count : 1;
        }
        if (number != expected)
            buffer.tl_replaceCharactersInRange(
                {paragraph.location + match->groupStart(2), match->groupLength(2)},
                QString::number(expected));
        count = expected + 1;
        at = buffer.paragraphRange(at).end();
    }
}

bool selectionIsInNumberedList(const EditorBuffer &buffer, const EditorContext &context)
{
    return context.settings.autoIndentLists &&
           numberPattern().isMatch(buffer.textIn(buffer.paragraphRange(buffer.selection())));
}

void tl_updateNumberedList(EditorBuffer &buffer, const EditorContext &)
{
    updateNumberedListAtRange(buffer, buffer.paragraphRange(buffer.selection()), 0);
}

bool tabButtonPressed(EditorBuffer &buffer, const EditorContext &context, bool forceIndent,
                      bool outdent)
{
    if (context.completeWikiPath && context.completeWikiPath(buffer))
        return true;
    if (context.suggestContextTags && context.suggestContextTags(buffer))
        return true;
    bool usedUp = false;
    const TextRange paragraphs = buffer.paragraphRangeTrimmed(buffer.selection());
    const QStringView text = buffer.textIn(paragraphs);
    const std::optional<RegexMatch> match =
        isBlank(text) ? std::nullopt : firstMatch(tabPrefixes(), text);
    if (!isBlank(text) && (match || forceIndent)) {
        if (outdent) {
            const QString unit = text.startsWith(QLatin1String("    ")) ? QStringLiteral("    ")
                                 : text.startsWith(u'\t')               ? QStringLiteral("\t")
                                                                        : QString();
            if (!unit.isEmpty())
                for (qsizetype start : lineStartsLastFirst(buffer, paragraphs))
                    if (buffer.text().mid(start, unit.size()) == unit)
                        buffer.tl_replaceCharactersInRange({start, unit.size()}, QString());
            usedUp = true;
        } else if (forceIndent ||
                   buffer.selection().location - paragraphs.location == match->length()) {
            const QString unit =
                context.settings.indentWithTabs ? QStringLiteral("\t") : QStringLiteral("    ");
            for (qsizetype start : lineStartsLastFirst(buffer, paragraphs))
                buffer.tl_replaceCharactersInRange({start, 0}, unit);
            usedUp = true;
        }
    }
    if (selectionIsInNumberedList(buffer, context))
        tl_updateNumberedList(buffer, context);
    return usedUp;
}

namespace {

// The list cycle: the kind of the first line picks the rewrite of all lines.
struct ListStep
{
    Regex kind;
    Regex lines;
    QString replacement;
    bool renumber;
};

const std::array<ListStep, 4> &listCycle()
{
    static const std::array<ListStep, 4> cycle{
        ListStep{Regex(QStringLiteral(R"(^\s*- (?!\[.\]))"), Insensitive),
                 Regex(QStringLiteral(R"((?sm)^(\s*)- )"), Insensitive), QStringLiteral("$11. "),
                 true},
        ListStep{Regex(QStringLiteral(R"(^\s*\d+\. )"), Insensitive),
                 Regex(QStringLiteral(R"((?sm)^(\s*)\d+\. )"), Insensitive),
                 QStringLiteral("$1- [ ] "), false},
        ListStep{Regex(QStringLiteral(R"(^\s*- \[[ |x]\] ?)"), Insensitive),
                 Regex(QStringLiteral(R"((?sm)^(\s*)- \[[ |x]\] ?)"), Insensitive),
                 QStringLiteral("$1"), false},
        ListStep{Regex(QStringLiteral(R"(.?)")),
                 Regex(QStringLiteral(R"((?sm)^([ \t]*))"), Insensitive), QStringLiteral("$1- "),
                 false},
    };
    return cycle;
}

} // namespace

void tl_toggleList(EditorBuffer &buffer, const EditorContext &)
{
    const TextRange paragraphs = buffer.paragraphRangeTrimmed(buffer.selection());
    const QString text = buffer.textIn(paragraphs).toString();
    const QStringView firstLine = QStringView(text).left(text.indexOf(u'\n'));
    for (const ListStep &step : listCycle()) {
        if (!step.kind.isMatch(firstLine))
            continue;
        const QString changed = step.lines.replaceAll(text, step.replacement);
        const qsizetype newFirstLength =
            changed.indexOf(u'\n') < 0 ? changed.size() : changed.indexOf(u'\n');
        const qsizetype firstDelta = newFirstLength - firstLine.size();
        const qsizetype totalDelta = changed.size() - text.size();
        const TextRange selection = buffer.selection();
        if (!buffer.tl_replaceCharactersInRange(paragraphs, changed))
            return;
        // A selection from the first line's start keeps it and takes the new marks.
        const bool fromStart = selection.length > 0 && selection.location == paragraphs.location;
        const qsizetype moved = fromStart ? 0 : firstDelta;
        buffer.setSelection({std::max(paragraphs.location, selection.location + moved),
                             selection.length ? selection.length + totalDelta - moved : 0});
        if (step.renumber)
            updateNumberedListAtRange(buffer, buffer.paragraphRange(paragraphs.location), 0);
        return;
    }
}

void tl_reverseToggleList(EditorBuffer &buffer, const EditorContext &context)
{
    for (int i = 0; i < 3; ++i)
        tl_toggleList(buffer, context);
}

} // namespace tl::editing
