// libFuzzer target: any text as a Markdown document, through both converters
// and every pass of the program's own around them, and as HTML turned into
// Markdown. No text makes a conversion fail, and a document always comes
// whole, its body closed.
#include "convert/html_to_markdown.h"
#include "convert/markdown_preparation.h"
#include "convert/markdown_to_html.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    for (const int converter : {tl::convert::DefaultConverter, tl::convert::MultiMarkdown})
        if (!tl::convert::markdownToHTMLForDocument(text, {}, converter).endsWith(u"</html>"))
            __builtin_trap();
    tl::convert::tl_markdownifyHTML(text);
    return 0;
}
