#include "convert/code_ranges.h"
#include "convert/markdown_preparation.h"
#include "convert/match_edits.h"

namespace tl::convert {

QString tl_stringByRemovingComments(const QString &text)
{
    static const Regex comment(QStringLiteral(R"(^\s*//.*?$)"), RegexOption::AnchorsMatchLines);
    LazyCodeRanges code;
    QList<std::pair<qsizetype, qsizetype>> lines;
    for (const RegexMatch &match : comment.allMatches(text)) {
        if (code.contains(text, match))
            continue;
        // The match starts at a line start; the line's end goes with it.
        qsizetype end = match.end();
        if (text.mid(end, 2) == u"\r\n")
            end += 2;
        else if (end < text.size())
            ++end;
        if (!lines.isEmpty() && match.start() < lines.last().second)
            continue;
        lines.append({match.start(), end});
    }
    return withRangesRemoved(text, lines);
}

} // namespace tl::convert
