#include "convert/html_tree.h"

#include <libxml/HTMLparser.h>
#include <libxml/parser.h>
#include <mutex>
#include <spdlog/spdlog.h>

namespace tl::convert {

HtmlDocument parsedHTML(const QString &html)
{
    static std::once_flag initialised;
    std::call_once(initialised, [] { xmlInitParser(); });
    const QByteArray utf8 = html.toUtf8();
    const int options = HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                        HTML_PARSE_NONET | HTML_PARSE_IGNORE_ENC | XML_PARSE_HUGE;
    HtmlDocument document(
        htmlReadMemory(utf8.constData(), int(utf8.size()), nullptr, "UTF-8", options));
    if (!document)
        spdlog::info("HTML text could not be parsed");
    return document;
}

QString textContent(const xmlNode *node)
{
    xmlChar *content = xmlNodeGetContent(node);
    if (!content)
        return QString();
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(content));
    xmlFree(content);
    return text;
}

} // namespace tl::convert
