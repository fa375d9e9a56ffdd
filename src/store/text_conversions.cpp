#include "store/text_conversions.h"

namespace tl::store {

namespace {
template <typename Function, typename... Args>
QString runConversion(const Function &conversion, const Args &...args)
{
    return conversion ? conversion(args...) : QString();
}
} // namespace

TextConversions &textConversions()
{
    static TextConversions conversions;
    return conversions;
}

QString markdownToHTMLForDocument(const QString &markdown, const QString &path)
{
    return runConversion(textConversions().markdownToHTML, markdown, path);
}

QString tl_markdownToLatex(const QString &markdown, const QString &path)
{
    return runConversion(textConversions().markdownToLatex, markdown, path);
}

QString tl_markdownifyHTML(const QString &html)
{
    return runConversion(textConversions().markdownifyHTML, html);
}

QString tl_htmlToPlainText(const QString &html)
{
    return runConversion(textConversions().htmlToPlainText, html);
}

QString tl_fountainToHTML(const QString &fountain, const QString &path)
{
    return runConversion(textConversions().fountainToHTML, fountain, path);
}

QString tl_emlToHTML(const QString &path)
{
    return runConversion(textConversions().emlToHTML, path);
}

QString tl_webarchiveToHTML(const QString &path)
{
    return runConversion(textConversions().webarchiveToHTML, path);
}

QString tl_OPMLToHTML(const QString &opml)
{
    return runConversion(textConversions().OPMLToHTML, opml);
}

QString tl_duplicateWebArchiveAsFormattedDocument(const QString &path)
{
    return runConversion(textConversions().duplicateWebArchiveAsFormattedDocument, path);
}

} // namespace tl::store
