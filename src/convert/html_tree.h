#pragma once

#include <QString>
#include <libxml/tree.h>
#include <memory>

// HTML as libxml2's tree, by its tolerant parser: no network, no external
// entities, the text taken as UTF-8 whatever its head declares.
namespace tl::convert {

struct HtmlDocumentFree
{
    void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
};
using HtmlDocument = std::unique_ptr<xmlDoc, HtmlDocumentFree>;

// Nothing when the parser gives up (logged).
HtmlDocument parsedHTML(const QString &html);

// The text of a node and all below it.
QString textContent(const xmlNode *node);

} // namespace tl::convert
