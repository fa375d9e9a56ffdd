#include "convert/envelope.h"
#include "convert/html_to_text.h"
#include "convert/html_tree.h"
#include "convert/rewrite_table.h"

#include <optional>

namespace tl::convert {

namespace {

// The beginning keeps its lines: they carry a document's title and first
// paragraphs, where a reader looks. The rest need not.
constexpr qsizetype kLinesKeptFor = 450;

// The text of every node in document order.
std::optional<QString> textOfNodes(const QString &html)
{
    const HtmlDocument document = parsedHTML(html);
    if (!document)
        return std::nullopt;
    const xmlNode *root = xmlDocGetRootElement(document.get());
    return root ? textContent(root) : QString();
}

} // namespace

QString tl_htmlToPlainText(const QString &text)
{
    if (text.contains(QStringLiteral("<!-- Plain Text Representation:\n")))
        return tl_plainTextRepresentation(text);
    if (!text.contains(QStringLiteral("<html")))
        return text;
    static const RewriteTable scripts = compiledRewrites({
        {Rewrite::Expression, "<script.*?</script>", "", RegexOption::DotMatchesNewline},
        {Rewrite::Expression, "<style.*?</style>", "", RegexOption::DotMatchesNewline},
    });
    QString html = text;
    const qsizetype headEnd = html.indexOf(QStringLiteral("</head>"));
    if (headEnd >= 0)
        html.remove(0, headEnd + qsizetype(qstrlen("</head>")));
    const qsizetype kept = std::min(html.size(), kLinesKeptFor);
    html = html.first(kept).replace(u'\n', QStringLiteral("<br/>\n")) + html.sliced(kept);
    html = applyRewrites(html, scripts);
    const std::optional<QString> nodes = textOfNodes(html);
    return nodes ? nodes->trimmed() : html;
}

QString tl_htmlToPlainQuick(const QString &html)
{
    using enum Rewrite;
    static const RewriteTable rules = compiledRewrites({
        {Expression, ">\\n\\s+<", ">\n<"},
        {Literal, "</li><li>", "\n- "},
        {Literal, "<li>", "- "},
        {Literal, "<div>", "\n"},
        {Literal, "<br>", "\n"},
        {Literal, "<br/>", "\n"},
        {Literal, "<hr>", "\n----\n\n"},
        {Literal, "</th>", " "},
        {Literal, "</td>", " "},
        {Expression, "(?s)<style .+?/style>", ""},
        {Expression, "(?s)<script.*?>.*?</script>", ""},
        {Expression, "</?[^>]+?>", ""},
    });
    return tl_stringByReplacingHTMLEntities(applyRewrites(tl_getInnerHTML(html), rules).trimmed());
}

} // namespace tl::convert
