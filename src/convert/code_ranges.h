#pragma once

#include "foundation/regex.h"

#include <QList>
#include <QString>

// Where code stands in a Markdown text, so that the extensions leave it alone.
namespace tl::convert {

// The matches of fenced blocks, then of inline code spans (which never
// cross a line).
QList<RegexMatch> tl_rangesOfFencedCodeBlocks(const QString &text);

// Whether the result lies wholly inside one of the ranges; an overlap alone
// does not count.
bool tl_textCheckingResultsIntersectResult(const QList<RegexMatch> &ranges,
                                           const RegexMatch &result);

// The code ranges of a text, computed at the first question and then kept
// as they are, even when the text has changed since: later questions are
// answered against those stale positions on purpose.
class LazyCodeRanges
{
public:
    bool contains(const QString &textNow, const RegexMatch &result);

private:
    bool computed_ = false;
    QList<RegexMatch> ranges_;
};

} // namespace tl::convert
