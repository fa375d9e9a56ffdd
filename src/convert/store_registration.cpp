#include "convert/store_registration.h"

#include "convert/markdown_to_html.h"
#include "store/text_conversions.h"

namespace tl::convert {

void registerConversionsWithStore()
{
    store::textConversions().markdownToHTML = [](const QString &markdown, const QString &path) {
        return markdownToHTMLForDocument(markdown, path);
    };
}

} // namespace tl::convert
