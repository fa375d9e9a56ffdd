#include "convert/contents_block.h"

#include "foundation/literal_finder.h"
#include "foundation/regex.h"

#include <QStringList>

namespace tl::convert {

namespace {

struct LevelRange
{
    int from = 0;
    int to = 0;
};

// "2", "2-", "2-4": the levels a range names; nothing for a three-character
// range without "-".
std::optional<LevelRange> levelRange(QStringView range)
{
    if (range.size() == 3 && range[1] != u'-')
        return std::nullopt;
    LevelRange levels;
    levels.from = std::max(1, range.left(1).toInt());
    levels.to = levels.from;
    if (range.size() == 2 && range.endsWith(u'-'))
        levels.to = 9;
    else if (range.size() == 3)
        levels.to = range.mid(2, 1).toInt();
    return levels;
}

// The lines of the list whose depth of nesting lies in the range.
QString listOfLevels(const QString &list, LevelRange levels)
{
    QStringList kept;
    int depth = 0;
    for (const QString &line : list.split(u'\n')) {
        if (line.contains(QStringLiteral("<ul>")))
            ++depth;
        if (depth >= levels.from && depth <= levels.to)
            kept.append(line);
        if (line.contains(QStringLiteral("</ul>")))
            --depth;
    }
    return kept.join(u'\n');
}

} // namespace

QString contentsBlock(const QString &list)
{
    return QStringLiteral("<!-- TOC -->\n<div class=\"TOC\">\n%1\n</div>\n").arg(list);
}

bool holdsContentsMarker(const QString &html)
{
    static const LiteralFinder braces(QStringLiteral("{{TOC"));
    return html.contains(QStringLiteral("<p><TOC><")) || braces.indexIn(html) >= 0;
}

QString withContentsAtMarkers(const QString &html, const QString &list)
{
    static const Regex contentsMarker(QStringLiteral(R"(<p>\s*\{\{TOC\}\})"));
    static const Regex contentsParagraph(QStringLiteral(R"(<p>\s*\{\{TOC\}\}.*?</p>)"));
    static const Regex levelsParagraph(QStringLiteral(R"(<p>\s*\{\{TOC:(.{1,3})\}\}.*?</p>)"));
    // Both markers are written with braces; a page without them is spared
    // the expressions.
    static const LiteralFinder braces(QStringLiteral("{{TOC"));
    if (list.isEmpty())
        return html;

    QString result = html;
    const QString block = contentsBlock(list);
    if (result.contains(QStringLiteral("<p><TOC><")) ||
        (braces.indexIn(result) >= 0 && contentsMarker.isMatch(result))) {
        result.replace(QStringLiteral("<p><TOC></p>"), block);
        result.replace(QStringLiteral("<p><TOC>"), block);
        result = contentsParagraph.replaceMatches(
            result, [&](const RegexMatch &, QStringView) { return std::optional(block); });
    }
    if (braces.indexIn(result) < 0)
        return result;
    return levelsParagraph.replaceMatches(
        result, [&](const RegexMatch &match, QStringView text) -> std::optional<QString> {
            const std::optional<LevelRange> levels = levelRange(match.captured(text, 1));
            if (!levels || levels->to < levels->from)
                return std::nullopt;
            return contentsBlock(listOfLevels(list, *levels));
        });
}

} // namespace tl::convert
