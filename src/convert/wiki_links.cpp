#include "convert/code_ranges.h"
#include "convert/markdown_preparation.h"
#include "convert/match_edits.h"
#include "foundation/path_string.h"
#include "store/item_path.h"

namespace tl::convert {

namespace {

QString decoded(const QString &text)
{
    return store::percentDecoded(text).value_or(QString());
}

QString trimmedOfBlanksAndTabs(QStringView text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && (text[start] == u' ' || text[start] == u'\t'))
        ++start;
    while (end > start && (text[end - 1] == u' ' || text[end - 1] == u'\t'))
        --end;
    return text.sliced(start, end - start).toString();
}

QString markdownLinkForWikiLink(const QString &inner)
{
    const QStringList pieces = inner.split(u'|');
    QString target = decoded(trimmedOfBlanksAndTabs(pieces.first()));
    target.remove(QStringLiteral("tavelle://show"));
    target.remove(QStringLiteral("tavelle://"));
    target = store::tl_pathEscapedForMarkdownLink(target);

    QString title = pieces.size() >= 2
                        ? decoded(pieces.at(1))
                        : decoded(path::deletingExtension(path::lastComponent(inner)));
    if (title.startsWith(u'#'))
        title.remove(0, 1);
    return QStringLiteral("[%1](%2)").arg(title, target);
}

} // namespace

QString tl_makeWikiLinksMarkdownLinks(const QString &text)
{
    static const Regex wikiLink(QStringLiteral(R"((?<![`.*|\\])(\[\[([^\[\n]+?)\]\])(?!.*`))"),
                                RegexOption::AnchorsMatchLines);
    LazyCodeRanges code;
    return wikiLink.replaceMatches(
        text, [&](const RegexMatch &match, QStringView) -> std::optional<QString> {
            if (code.contains(text, match))
                return std::nullopt;
            return withGroupsReplaced(
                match, text, {{1, markdownLinkForWikiLink(match.capturedString(text, 2))}});
        });
}

} // namespace tl::convert
