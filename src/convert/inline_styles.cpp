#include "convert/html_to_markdown.h"
#include "convert/match_edits.h"
#include "convert/rewrite_table.h"

namespace tl::convert {

namespace {

using enum Rewrite;

// Highlights, alignment and preformatted runs keep their styles.
QString withoutOtherStyles(const QString &html)
{
    static const Regex styled(QStringLiteral(R"re(<[^<]+?( style=".+?").*?>)re"),
                              RegexOption::CaseInsensitive);
    return styled.replaceMatches(
        html, [](const RegexMatch &m, QStringView text) -> std::optional<QString> {
            const QStringView style = m.captured(text, 1);
            if (style.contains(u"style=\"background-color:") ||
                style.contains(u"style=\"text-align:") || style.contains(u"white-space:pre"))
                return std::nullopt;
            return withGroupsReplaced(m, text, {{1, QString()}});
        });
}

} // namespace

QString tl_htmlWithoutInlineStyles(const QString &html)
{
    static const RewriteTable spans = compiledRewrites({
        {Expression, R"re(<span style="text-align: initial;">)re", "<span>"},
        {Expression, R"re(<span style="color: inherit;">)re", "<span>"},
        {Expression, R"re(<span style="text-align: initial; text-indent: 0em;">)re", "<span>"},
        {Expression, "<span *>(.+?)</span>", "$1"},
        {Expression, R"re(<i style="text-align: initial;">)re", "<i>"},
        {Expression, R"re(<b style="text-align: initial;">)re", "<b>"},
    });
    static const RewriteTable layout = compiledRewrites({
        {Literal, R"(<span class="Apple-converted-space">&nbsp;</span>)", " "},
        {Literal, "&nbsp;", " "},
        {Expression, R"(([^\n])(<h[1-6]))", "$1\n\n$2"},
        {Expression, R"((</p>)\n*)", "$1\n\n"},
        {Expression, R"((?<!\n)(<p ?>))", "\n\n$1"},
        {Expression, R"(\n*(<p ?>))", "\n\n$1"},
        {Expression, R"(([^\n])(</?[ou]l ?))", "$1\n$2"},
        {Expression, R"(([^\n])(<li ?))", "$1\n$2"},
        {Expression, R"((<br/?>)(?!</)(?!\n))", "$1\n"},
        {Expression, R"re(<img[^>]*? src=""[^>]*?>)re", ""},
        {Expression, "</?o:[^>]+>", ""},
        {Expression, R"(\n\s*\n)", "\n\n"},
        {Expression, R"(\n{3,})", "\n\n"},
        {CaselessLiteral, "</b><b>", ""},
        {CaselessLiteral, "</i><i>", ""},
    });
    return applyRewrites(withoutOtherStyles(applyRewrites(html, spans)), layout).trimmed();
}

} // namespace tl::convert
