#include "convert/code_ranges.h"

#include <algorithm>

namespace tl::convert {

QList<RegexMatch> tl_rangesOfFencedCodeBlocks(const QString &text)
{
    // "[\A\n]" is kept as ICU reads it.
    static const Regex blocks(QStringLiteral(R"([\A\n]\s{0,3}([~|`]{3,})[^~`].*?\n\s{0,3}\1)"),
                              RegexOption::DotMatchesNewline);
    static const Regex spans(QStringLiteral("`.+?`"), RegexOption::AnchorsMatchLines);
    QList<RegexMatch> ranges = blocks.allMatches(text);
    ranges.append(spans.allMatches(text));
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

bool LazyCodeRanges::contains(const QString &textNow, const RegexMatch &result)
{
    if (!computed_) {
        ranges_ = tl_rangesOfFencedCodeBlocks(textNow);
        computed_ = true;
    }
    return tl_textCheckingResultsIntersectResult(ranges_, result);
}

} // namespace tl::convert
