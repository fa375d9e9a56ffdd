#include "browser/formatted_rendering.h"

#include "convert/envelope.h"
#include "convert/markdown_to_html.h"
#include "convert/references.h"
#include "convert/themes.h"
#include "foundation/path_string.h"
#include "store/extensions.h"
#include "store/text_conversions.h"

namespace tl::browser {

bool isRenderedKind(const QString &path)
{
    const QString extension = store::lowerCasedExtension(path);
    return store::markdownExtensions().contains(extension) || extension == u"fountain" ||
           extension == u"opml";
}

namespace {

QString unthemedPage(const QString &path, const QString &text)
{
    const QString extension = store::lowerCasedExtension(path);
    if (extension == u"opml")
        return convert::tl_createFormattedDocWithBody(path, store::tl_OPMLToHTML(text));
    if (extension == u"fountain") {
        const QString script = store::tl_fountainToHTML(text, path);
        if (!script.isEmpty())
            return script;
        // Without the screenplay renderer the script shows as it is written.
        return convert::tl_createFormattedDocWithBody(
            path, QStringLiteral("<pre>%1</pre>").arg(text.toHtmlEscaped()));
    }
    return convert::tl_makeReferencesAbsoluteToSystemRootAtParentPath(
        convert::markdownToHTMLForDocument(text, path), path::deletingLastComponent(path));
}

} // namespace

QString renderedPageOfText(const QString &path, const QString &text)
{
    return convert::formattedDocAdjustedToTheme(unthemedPage(path, text));
}

} // namespace tl::browser
