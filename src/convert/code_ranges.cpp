#include "convert/code_ranges.h"

#include <algorithm>

namespace tl::convert {

namespace {

bool isFenceCharacter(QChar c)
{
    return c == u'~' || c == u'|' || c == u'`';
}

// The matches of the block expression, as its search walks them. A match
// begins one to four characters before a run of three fence characters
// ("[\A\n]" and at most three blanks), so only those places are tried:
// ICU's own search would try every line start and every "A".
QList<RegexMatch> fencedBlocks(const QString &text, const Regex &blocks)
{
    QList<RegexMatch> matches;
    qsizetype tried = 0; // places before this have been tried or skipped
    for (qsizetype run = 1; run + 2 < text.size(); ++run) {
        // No run starts here, nor at the next two places, without the third.
        if (!isFenceCharacter(text[run + 2])) {
            run += 2;
            continue;
        }
        if (!isFenceCharacter(text[run]) || !isFenceCharacter(text[run + 1]))
            continue;
        for (qsizetype at = std::max(tried, run - 4); at < run; ++at) {
            // "[\A\n]" takes an "A" or a line end, and nothing else.
            if (text[at] != u'\n' && text[at] != u'A')
                continue;
            if (const std::optional<RegexMatch> match = blocks.matchAt(text, at)) {
                matches.append(*match);
                run = match->end();
                break;
            }
        }
        tried = std::max(tried, run);
    }
    return matches;
}

} // namespace

QList<RegexMatch> backquoteSpans(const QString &text, bool acrossLines)
{
    QList<RegexMatch> matches;
    for (qsizetype at = text.indexOf(u'`'); at >= 0;) {
        // The lazy run takes one character, a backquote too, and then
        // stops at the next backquote; without dot-matches-newline a line
        // end before it fails the attempt.
        const qsizetype close = text.indexOf(u'`', at + 2);
        if (close < 0)
            break;
        bool crossed = false;
        for (qsizetype k = at + 1; !acrossLines && k < close && !crossed; ++k)
            crossed = Regex::isLineEnd(text[k]);
        if (crossed) {
            at = text.indexOf(u'`', at + 1);
            continue;
        }
        RegexMatch match;
        match.groups = {{at, close + 1 - at}};
        matches.append(match);
        at = text.indexOf(u'`', close + 1);
    }
    return matches;
}

QList<RegexMatch> tl_rangesOfFencedCodeBlocks(const QString &text)
{
    // "[\A\n]" is kept as ICU reads it.
    static const Regex blocks(QStringLiteral(R"([\A\n]\s{0,3}([~|`]{3,})[^~`].*?\n\s{0,3}\1)"),
                              RegexOption::DotMatchesNewline);
    // Then "`.+?`" with anchors matching lines, which has none.
    QList<RegexMatch> ranges = fencedBlocks(text, blocks);
    ranges.append(backquoteSpans(text, false));
    return ranges;
}

bool tl_textCheckingResultsIntersectResult(const QList<RegexMatch> &ranges,
                                           const RegexMatch &result)
{
    for (const RegexMatch &range : ranges) {
        const qsizetype start = std::max(range.start(), result.start());
        const qsizetype end = std::min(range.end(), result.end());
        // Disjoint ranges intersect in an empty range, as the platform's
        // range intersection answers.
        if (std::max<qsizetype>(0, end - start) == result.length())
            return true;
    }
    return false;
}

RangeIndex::RangeIndex(const QList<RegexMatch> &ranges)
{
    for (const RegexMatch &range : ranges)
        ranges_.push_back({range.start(), range.end()});
    std::sort(ranges_.begin(), ranges_.end(),
              [](const Range &a, const Range &b) { return a.start < b.start; });
    for (size_t i = 1; i < ranges_.size(); ++i)
        ranges_[i].furthestEnd = std::max(ranges_[i].furthestEnd, ranges_[i - 1].furthestEnd);
}

std::vector<RangeIndex::Range>::const_iterator RangeIndex::startingUpTo(qsizetype position) const
{
    return std::upper_bound(ranges_.begin(), ranges_.end(), position,
                            [](qsizetype p, const Range &range) { return p < range.start; });
}

bool RangeIndex::encloses(qsizetype start, qsizetype end) const
{
    if (start == end)
        return !ranges_.empty();
    const auto after = startingUpTo(start);
    return after != ranges_.begin() && std::prev(after)->furthestEnd >= end;
}

bool RangeIndex::overlaps(qsizetype start, qsizetype end) const
{
    const auto after = startingUpTo(end - 1);
    return after != ranges_.begin() && std::prev(after)->furthestEnd > start;
}

void RangeIndex::moveThrough(const QList<Edit> &edits)
{
    if (edits.isEmpty())
        return;
    // Positions grow in both lists, so one walk moves them all.
    auto moved = [&](qsizetype position, qsizetype &edit, qsizetype &shift) {
        while (edit < edits.size() && edits[edit].end <= position) {
            shift += edits[edit].newLength - (edits[edit].end - edits[edit].start);
            ++edit;
        }
        return position + shift;
    };
    qsizetype edit = 0;
    qsizetype shift = 0;
    for (Range &range : ranges_)
        range.start = moved(range.start, edit, shift);
    // Furthest ends grow too, in their own walk.
    edit = 0;
    shift = 0;
    for (Range &range : ranges_)
        range.furthestEnd = moved(range.furthestEnd, edit, shift);
}

void LazyCodeRanges::textEdited(const QList<Edit> &edits, bool keepCode)
{
    if (keepCode)
        ranges_.moveThrough(edits);
    else
        computed_ = false;
}

bool LazyCodeRanges::contains(const QString &textNow, const RegexMatch &result)
{
    return contains(textNow, result.start(), result.end());
}

bool LazyCodeRanges::contains(const QString &textNow, qsizetype start, qsizetype end)
{
    if (!computed_) {
        ranges_ = RangeIndex(tl_rangesOfFencedCodeBlocks(textNow));
        computed_ = true;
    }
    return ranges_.encloses(start, end);
}

} // namespace tl::convert
