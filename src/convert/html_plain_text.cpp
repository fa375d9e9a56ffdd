#include "convert/envelope.h"
#include "convert/html_to_text.h"
#include "convert/rewrite_table.h"

#include <libxml/HTMLparser.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <memory>
#include <mutex>
#include <optional>
#include <spdlog/spdlog.h>

namespace tl::convert {

namespace {

// The beginning keeps its lines: they carry a document's title and first
// paragraphs, where a reader looks. The rest need not.
constexpr qsizetype kLinesKeptFor = 450;

struct DocumentFree
{
    void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
};
struct ContentFree
{
    void operator()(xmlChar *content) const { xmlFree(content); }
};

// The text of every node in document order, by the tolerant HTML parser:
// no network, no external entities, the text taken as UTF-8 whatever its
// head declares.
std::optional<QString> textOfNodes(const QString &html)
{
    static std::once_flag initialised;
    std::call_once(initialised, [] { xmlInitParser(); });
    const QByteArray utf8 = html.toUtf8();
    const int options = HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                        HTML_PARSE_NONET | HTML_PARSE_IGNORE_ENC | XML_PARSE_HUGE;
    const std::unique_ptr<xmlDoc, DocumentFree> document(
        htmlReadMemory(utf8.constData(), int(utf8.size()), nullptr, "UTF-8", options));
    if (!document) {
        spdlog::info("HTML text could not be parsed for its plain text");
        return std::nullopt;
    }
    const xmlNode *root = xmlDocGetRootElement(document.get());
    if (!root)
        return QString();
    const std::unique_ptr<xmlChar, ContentFree> content(xmlNodeGetContent(root));
    if (!content)
        return QString();
    return QString::fromUtf8(reinterpret_cast<const char *>(content.get()));
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
