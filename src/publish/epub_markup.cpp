#include "publish/epub_markup.h"

#include "convert/rewrite_table.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/library_root.h"

#include <QDir>
#include <QSet>
#include <libxml/HTMLparser.h>
#include <libxml/xmlsave.h>

namespace tl::publish {

QString tl_stringByMakingHTMLePubCompliant(const QString &html)
{
    using enum convert::Rewrite;
    constexpr RegexOptions dotAll = RegexOption::DotMatchesNewline;
    static const convert::RewriteTable rules = convert::compiledRewrites({
        {Literal, "<div><br></div>", "<br/>"},
        {Expression, "<p .*?>", "<p>", dotAll},
        {Expression, "<hr.*?>", "<hr/>", dotAll},
        {Expression, "(<img [^>]+)(?<! ?/ ?)(?=>)", "$1/", dotAll},
        {Expression, "(<input [^>]+)(?<! ?/ ?)(?=>)", "$1/", dotAll},
        {Literal, "<br>", "<br/>"},
        {Expression, "<br .*?>", "<br/>"},
        {Literal, "<hr>", "<hr/>"},
    });
    return convert::applyRewrites(html, rules);
}

namespace {

// An XML name: a letter or "_" first, then letters, digits, ".", "-", "_".
QString validId(const QString &id)
{
    QString valid = id;
    for (QChar &c : valid)
        if (!c.isLetterOrNumber() && c != u'.' && c != u'-' && c != u'_')
            c = u'-';
    if (valid.isEmpty() || !(valid.front().isLetter() || valid.front() == u'_'))
        valid.prepend(QStringLiteral("id-"));
    return valid;
}

// Newer elements XHTML 1.1 lacks, and the older ones of the same kind that
// take their place, marked by a class of the newer name.
struct NewerElement
{
    const char *name;
    const char *older;
};
constexpr NewerElement kNewerElements[] = {
    {"mark", "span"},      {"section", "div"}, {"article", "div"}, {"aside", "div"},
    {"header", "div"},     {"footer", "div"},  {"nav", "div"},     {"figure", "div"},
    {"figcaption", "div"}, {"details", "div"}, {"summary", "div"}, {"main", "div"},
};

// Elements XHTML 1.1 knows, and a text for every image (an empty one shows
// nothing).
void makeElementsValid(xmlNodePtr node)
{
    for (; node; node = node->next) {
        if (node->type != XML_ELEMENT_NODE)
            continue;
        if (xmlStrEqual(node->name, BAD_CAST "img") && !xmlHasProp(node, BAD_CAST "alt"))
            xmlSetProp(node, BAD_CAST "alt", BAD_CAST "");
        for (const NewerElement &element : kNewerElements)
            if (xmlStrEqual(node->name, BAD_CAST element.name)) {
                xmlSetProp(node, BAD_CAST "class", BAD_CAST element.name);
                xmlNodeSetName(node, BAD_CAST element.older);
                break;
            }
        makeElementsValid(node->children);
    }
}

} // namespace

QString withValidIds(const QString &html)
{
    static const Regex id(QStringLiteral(R"re(( id="|href="#)([^"]*)")re"));
    QSet<QString> seen;
    QString result;
    qsizetype copied = 0;
    // From the first to the last, so the first of repeated ids keeps its name.
    for (const RegexMatch &m : id.allMatches(html)) {
        QString valid = validId(m.capturedString(html, 2));
        if (m.capturedString(html, 1) == u" id=\"") {
            const QString first = valid;
            for (int n = 2; seen.contains(valid); ++n)
                valid = first + QStringLiteral("-%1").arg(n);
            seen.insert(valid);
        }
        result += QStringView(html).mid(copied, m.groupStart(2) - copied);
        result += valid;
        copied = m.groupEnd(2);
    }
    result += QStringView(html).mid(copied);
    return result;
}

QString withWellFormedBody(const QString &page)
{
    const qsizetype open = page.indexOf(QStringLiteral("<body>"));
    const qsizetype close = page.lastIndexOf(QStringLiteral("</body>"));
    if (open < 0 || close < open)
        return page;
    const QByteArray html =
        "<html><body>" + page.mid(open + 6, close - open - 6).toUtf8() + "</body></html>";
    htmlDocPtr doc = htmlReadMemory(html.constData(), int(html.size()), nullptr, "UTF-8",
                                    HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                                        HTML_PARSE_NONET);
    if (!doc)
        return page;
    xmlNodePtr body = xmlDocGetRootElement(doc);
    body = body ? body->children : nullptr;
    while (body && !(body->type == XML_ELEMENT_NODE && xmlStrEqual(body->name, BAD_CAST "body")))
        body = body->next;
    if (body)
        makeElementsValid(body->children);
    xmlBufferPtr buffer = xmlBufferCreate();
    xmlSaveCtxtPtr save = xmlSaveToBuffer(buffer, "UTF-8", XML_SAVE_AS_XML | XML_SAVE_NO_DECL);
    for (xmlNodePtr child = body ? body->children : nullptr; child; child = child->next)
        xmlSaveTree(save, child);
    xmlSaveClose(save);
    const QString repaired =
        QString::fromUtf8(reinterpret_cast<const char *>(xmlBufferContent(buffer)));
    xmlBufferFree(buffer);
    xmlFreeDoc(doc);
    return page.left(open + 6) + repaired + page.mid(close);
}

QString newerElementStyles()
{
    return QStringLiteral("\nspan.mark { background-color: yellow; color: black; }\n");
}

QString pageNameForDocument(const QString &path)
{
    QString name = path::lastComponent(path);
    name.replace(u'#', u'-').replace(u'&', u'+');
    if (store::lowerCasedExtension(path) == u"html")
        return name;
    return path::deletingExtension(name) + QStringLiteral(".html");
}

QString hrefForFileName(const QString &name)
{
    return store::percentEncodedForPath(name).replace(u'&', QStringLiteral("%26"));
}

namespace {

bool isOutsideLink(const QString &target)
{
    static const Regex scheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]*:"));
    return target.startsWith(u'#') ||
           (scheme.isMatch(target) && !target.startsWith(u"tavelle:", Qt::CaseInsensitive));
}

// The document a link of the book names, as a cleaned absolute path.
QString linkedDocument(const QString &target, const QString &documentFolder)
{
    QString value = store::percentDecoded(target).value_or(target);
    if (value.startsWith(u"tavelle://", Qt::CaseInsensitive))
        return QDir::cleanPath(store::libraryRoot() + store::tl_pathFromTavelleURLScheme(value));
    if (value.startsWith(u'/'))
        return QDir::cleanPath(store::libraryRoot() + value);
    return QDir::cleanPath(path::appendingComponent(documentFolder, value));
}

} // namespace

QString withFlattenedLinks(const QString &html, const QString &documentFolder,
                           const QHash<QString, QString> &pages)
{
    static const Regex link(QStringLiteral(R"re(<a href="(.*?)")re"));
    return link.replaceMatches(html, [&](const RegexMatch &m, QStringView t) {
        const QString target = m.capturedString(t, 1);
        if (isOutsideLink(target))
            return std::optional<QString>();
        const QString anchor = store::tl_pathAnchor(target);
        const QString page =
            pages.value(linkedDocument(store::tl_pathWithoutAnchor(target), documentFolder));
        if (page.isEmpty())
            return std::optional(QStringLiteral("<a"));
        return std::optional(
            QStringLiteral("<a href=\"%1%2\"")
                .arg(hrefForFileName(page), anchor.isEmpty() ? QString() : u'#' + validId(anchor)));
    });
}

} // namespace tl::publish
