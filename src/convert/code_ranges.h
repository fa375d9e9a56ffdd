#pragma once

#include "foundation/regex.h"

#include <QList>
#include <QString>
#include <vector>

// Where code stands in a Markdown text, so that the extensions leave it alone.
namespace tl::convert {

// The matches of fenced blocks, then of inline code spans (which never
// cross a line).
QList<RegexMatch> tl_rangesOfFencedCodeBlocks(const QString &text);

// The matches of "`.+?`", with dot-matches-newline when `acrossLines`.
QList<RegexMatch> backquoteSpans(const QString &text, bool acrossLines);

// Whether the result lies wholly inside one of the ranges; an overlap alone
// does not count.
bool tl_textCheckingResultsIntersectResult(const QList<RegexMatch> &ranges,
                                           const RegexMatch &result);

// Ranges by start, with the furthest end reached so far, for questions
// about many results against many ranges in logarithmic time each.
class RangeIndex
{
public:
    explicit RangeIndex(const QList<RegexMatch> &ranges = {});
    // Whether the range [start, end) lies wholly inside one range; an empty
    // one meets any range in an empty intersection, which counts.
    bool encloses(qsizetype start, qsizetype end) const;
    // Whether [start, end) shares at least one position with a range.
    bool overlaps(qsizetype start, qsizetype end) const;
    // Moves every position at or behind the end of an edit by what the edit
    // added; the edits are in order and no range begins or ends inside one.
    struct Edit
    {
        qsizetype start;
        qsizetype end;
        qsizetype newLength;
    };
    void moveThrough(const QList<Edit> &edits);

private:
    struct Range
    {
        qsizetype start;
        qsizetype furthestEnd;
    };
    // The ranges that start at or before `position`, as an end iterator.
    std::vector<Range>::const_iterator startingUpTo(qsizetype position) const;
    std::vector<Range> ranges_;
};

// The code ranges of a text, computed at the first question and then kept
// as they are, even when the text has changed since: later questions are
// answered against those stale positions on purpose.
class LazyCodeRanges
{
public:
    bool contains(const QString &textNow, const RegexMatch &result);
    bool contains(const QString &textNow, qsizetype start, qsizetype end);
    using Edit = RangeIndex::Edit;
    // The text was edited: ranges found already move with it when the edits
    // `keepCode`, and are found again on the next question otherwise.
    void textEdited(const QList<Edit> &edits, bool keepCode);

private:
    bool computed_ = false;
    RangeIndex ranges_;
};

} // namespace tl::convert
