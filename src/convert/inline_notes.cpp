#include "convert/inline_notes.h"

#include "foundation/literal_finder.h"

#include <QMultiHash>
#include <algorithm>
#include <vector>

namespace tl::convert {

namespace {

// Extends a note whose text holds brackets to its balancing "]", or short
// of `limit`: the end of the text before any definition was appended, so
// that a note never takes in the definitions of the notes behind it.
qsizetype noteEnd(const QString &text, const RegexMatch &match, qsizetype limit)
{
    const QStringView note = match.captured(text);
    if (!note.sliced(1).contains(u'['))
        return match.end();
    // The expression stopped at the first "]": follow the nesting instead.
    int depth = 1;
    qsizetype end = match.end();
    while (depth > 0 && end + 1 < limit) {
        const QChar c = text.at(end);
        if (c == u']')
            --depth;
        else if (c == u'[')
            ++depth;
        ++end;
    }
    return end;
}

// Whether `needle` followed by ":" occurs anywhere in the text. A needle
// ends in "]", so only the places where "]:" stands need a look; they are
// found once and filed by the characters in front of them. The text only
// changes by appended definitions (their places are added) and by labels
// written over notes (places just behind a label are filed again).
class DefinitionIndex
{
public:
    explicit DefinitionIndex(const QString &text) { addFrom(text, 0); }

    void addFrom(const QString &text, qsizetype from)
    {
        // Colons are rarer than brackets: each is looked behind.
        for (qsizetype colon = text.indexOf(u':', from + 1); colon >= 0;
             colon = text.indexOf(u':', colon + 1)) {
            if (text[colon - 1] != u']')
                continue;
            places_.push_back(colon - 1);
            file(text, colon - 1);
        }
    }

    void refile(const QString &text, qsizetype start, qsizetype end)
    {
        auto it = std::lower_bound(places_.begin(), places_.end(), start);
        for (; it != places_.end() && *it < end + kKey; ++it)
            file(text, *it);
    }

    bool contains(const QString &text, const QString &needle) const
    {
        const QString key = needle.right(kKey);
        for (auto it = byKey_.constFind(key); it != byKey_.cend() && it.key() == key; ++it) {
            const qsizetype bracket = it.value();
            const qsizetype start = bracket + 1 - needle.size();
            // A label may have been written over an old place since.
            if (start >= 0 && text.at(bracket) == u']' && text.at(bracket + 1) == u':' &&
                QStringView(text).sliced(start, needle.size()) == needle)
                return true;
        }
        return false;
    }

private:
    // The shortest note, "[^x]", has four characters.
    static constexpr qsizetype kKey = 4;
    void file(const QString &text, qsizetype bracket)
    {
        const qsizetype start = std::max<qsizetype>(0, bracket + 1 - kKey);
        byKey_.insert(text.mid(start, bracket + 1 - start), bracket);
    }
    std::vector<qsizetype> places_;
    QMultiHash<QString, qsizetype> byKey_;
};

} // namespace

QList<RegexMatch> matchesUpToBracket(const QString &text, const QString &opening, BracketRun run)
{
    const LiteralFinder openings(opening);
    const qsizetype skipped = opening.size() + (run == BracketRun::AnyCharacter ? 1 : 0);
    QList<RegexMatch> matches;
    qsizetype close = -1;
    for (qsizetype at = openings.indexIn(text); at >= 0;) {
        if (close < at + skipped)
            close = text.indexOf(u']', at + skipped);
        if (close < 0)
            break;
        const bool refused =
            run == BracketRun::NoBracketNorColonBehind &&
            (close == at + skipped || (close + 1 < text.size() && text[close + 1] == u':'));
        if (refused) {
            at = openings.indexIn(text, at + 1);
            continue;
        }
        RegexMatch match;
        match.groups = {{at, close + 1 - at}, {at, opening.size()}};
        matches.append(match);
        at = openings.indexIn(text, close + 1);
    }
    return matches;
}

QList<RegexMatch> noteMatches(const QString &text)
{
    // "\[\^ ?[^\]]+?\](?!:)"
    QList<RegexMatch> matches =
        matchesUpToBracket(text, QStringLiteral("[^"), BracketRun::NoBracketNorColonBehind);
    for (RegexMatch &match : matches)
        match.groups.resize(1);
    return matches;
}

QString labelOfNote(QStringView note)
{
    QString label = note.toString();
    for (qsizetype i = 1; i + 1 < label.size(); ++i) {
        if (label[i] == u'[' || label[i] == u']')
            label[i] = u'-';
    }
    return label;
}

namespace {

QString bodyOfNote(QStringView note)
{
    auto trimmed = [](QChar c) { return c == u'[' || c == u']' || c == u'^'; };
    qsizetype start = 0;
    qsizetype end = note.size();
    while (start < end && trimmed(note[start]))
        ++start;
    while (end > start && trimmed(note[end - 1]))
        --end;
    return note.sliced(start, end - start).toString();
}

QList<RegexMatch> codeOfNotes(const QString &text)
{
    static const Regex backquoteFences(QStringLiteral(R"(\n(`{3,}?)[a-zA-Z0-9]*\s*\n.*?\n\1)"),
                                       RegexOption::DotMatchesNewline);
    static const Regex tildeFences(QStringLiteral(R"(\n(~{3,}?)\s*\n.*?\n\1)"),
                                   RegexOption::DotMatchesNewline);
    QList<RegexMatch> ranges = backquoteFences.allMatches(text);
    ranges.append(tildeFences.allMatches(text));
    ranges.append(backquoteSpans(text, true));
    return ranges;
}

} // namespace

QString notesMovedToDefinitions(const QString &text, LazyCodeRanges &code)
{
    const QList<RegexMatch> notes = noteMatches(text);
    if (notes.isEmpty())
        return text;

    // Edited in place from the last note to the first: a label has the
    // length of its note, and definitions go behind everything, so the
    // places of the notes still to come stay true.
    QString result = text;
    std::optional<DefinitionIndex> definitions;
    std::optional<RangeIndex> noteCode;
    for (qsizetype i = notes.size() - 1; i >= 0; --i) {
        const RegexMatch &match = notes[i];
        if (code.contains(result, match))
            continue;
        const qsizetype end = noteEnd(result, match, text.size());
        const QString noteText = result.mid(match.start(), end - match.start());
        if (!definitions)
            definitions.emplace(result);
        if (definitions->contains(result, noteText))
            continue;
        if (!noteCode)
            noteCode.emplace(codeOfNotes(result));
        if (noteCode->overlaps(match.start(), end))
            continue;
        const QString label = labelOfNote(noteText);
        const qsizetype appendedAt = result.size();
        result.append(QStringLiteral("\n%1: %2").arg(label, bodyOfNote(noteText)));
        result.replace(match.start(), label.size(), label);
        definitions->refile(result, match.start(), end);
        definitions->addFrom(result, std::max<qsizetype>(0, appendedAt - 1));
    }
    return result;
}

} // namespace tl::convert
