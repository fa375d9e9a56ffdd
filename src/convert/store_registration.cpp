#include "convert/store_registration.h"

#include "convert/html_to_markdown.h"
#include "convert/latex.h"
#include "convert/markdown_to_html.h"
#include "store/text_conversions.h"

namespace tl::convert {

void registerConversionsWithStore()
{
    store::textConversions().markdownToHTML = [](const QString &markdown, const QString &path) {
        return markdownToHTMLForDocument(markdown, path);
    };
    store::textConversions().markdownToLatex = [](const QString &markdown, const QString &path) {
        return markdownToLatexForDocument(markdown, path);
    };
    store::textConversions().markdownifyHTML = [](const QString &html) {
        return tl_markdownifyHTML(html);
    };
}

} // namespace tl::convert
