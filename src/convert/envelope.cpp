#include "convert/envelope.h"

#include "convert/references.h"
#include "convert/style_sheet.h"
#include "foundation/digest.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "store/document_file.h"
#include "store/extensions.h"

namespace tl::convert {

namespace {

const QString kRepresentationStart = QStringLiteral("<!-- Plain Text Representation:\n");

QString titleOfPath(const QString &path)
{
    return path::deletingExtension(path::lastComponent(path));
}

QString digestWithoutGenerator(const QString &html)
{
    return md5Hex(tl_removeGeneratorTavelle(html).toUtf8(), false);
}

} // namespace

QString generatorName()
{
    return QStringLiteral("Tavelle for Mac %1").arg(QLatin1String(TAVELLE_SHORT_VERSION));
}

QString formattedDocument(const QString &title, const QString &styleSheet, const QString &body)
{
    const QString head =
        QStringLiteral("<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\">"
                       "\n<head>\n  <!-- Generator: %1 -->\n  <title>%2</title>\n  <meta "
                       "http-equiv=\"Content-Type\" content=\"text/html; "
                       "charset=utf-8\">\n%3\n</head>\n")
            .arg(generatorName(), title, styleSheet);
    static const QString bodyStart = QStringLiteral("<body>\n");
    static const QString bodyEnd = QStringLiteral("\n</body>\n</html>");
    // Put together in one buffer: the body may be megabytes long.
    QString document;
    document.reserve(head.size() + bodyStart.size() + body.size() + bodyEnd.size());
    document += head;
    document += bodyStart;
    document += body;
    document += bodyEnd;
    return document;
}

QString tl_createFormattedDocWithBody(const QString &path, const QString &body)
{
    static const Regex firstHeading(QStringLiteral("<h1.*?>(.+?)</h1>"),
                                    RegexOption::AnchorsMatchLines);
    const QString content = tl_makeReferencesAbsoluteToTLRoot(body);
    QString title = titleOfPath(path);
    if (const std::optional<RegexMatch> heading = firstHeading.match(content))
        title = heading->capturedString(content, 1);
    return formattedDocument(title, tl_inheritedStyleSheet(path), content);
}

bool tl_generatorIsTavelle(const QString &html)
{
    const qsizetype headEnd = html.indexOf(QStringLiteral("</head>"));
    return QStringView(html)
        .left(headEnd < 0 ? html.size() : headEnd)
        .contains(QStringLiteral("<!-- Generator: Tavelle "));
}

QString tl_removeGeneratorTavelle(const QString &html)
{
    static const Regex generator(QStringLiteral("<!-- Generator: Tavelle .*?-->"));
    return generator.replaceAll(html, QString());
}

QString tl_getInnerHTML(const QString &html)
{
    static const Regex body(QStringLiteral("<body.*?>(.*?)</body>"),
                            RegexOption::DotMatchesNewline);
    if (const std::optional<RegexMatch> match = body.match(html))
        return match->captured(html, 1).trimmed().toString();
    return html.trimmed();
}

QString withPlainTextRepresentation(const QString &markdown, const QString &html)
{
    QString source = markdown;
    source.replace(QStringLiteral("-->"), QStringLiteral("\\-\\-\\>"));
    return QStringLiteral("<!-- Plain Text Representation:\n%1 \n-->\n\n").arg(source) + html;
}

QString tl_stripMarkdownFromHTML(const QString &html)
{
    static const Regex representation(QStringLiteral("<!-- Plain Text Representation:\n.+?-->"),
                                      RegexOption::DotMatchesNewline);
    return representation.replaceAll(html, QString()).trimmed();
}

QString tl_plainTextRepresentation(const QString &html)
{
    const qsizetype start = html.indexOf(kRepresentationStart);
    if (start < 0)
        return html;
    const qsizetype from = start + kRepresentationStart.size();
    // The source ends at the first closing mark: its own are escaped, and the
    // page behind it has comments of its own (the generator's among them).
    const qsizetype end = html.indexOf(QStringLiteral("-->"), from);
    QString source = end >= from ? html.mid(from, end - from) : html;
    source.replace(QStringLiteral("\\-\\-\\>"), QStringLiteral("-->"));
    return source.trimmed();
}

QString withEmbeddedStylesheet(const QString &path, const QString &html, const QString &styleSheet)
{
    return formattedDocument(titleOfPath(path), styleSheet, tl_getInnerHTML(html));
}

bool tl_updateEmbeddedStylesheet(const QString &path)
{
    const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(path);
    if (!file || file->text.isEmpty())
        return false;
    const QString updated = withEmbeddedStylesheet(path, file->text, tl_inheritedStyleSheet(path));
    if (digestWithoutGenerator(file->text) == digestWithoutGenerator(updated))
        return false;
    if (!store::tl_writeToFile(updated, path, true, file->encoding))
        return false;
    NotificationCenter::defaultCenter().post(QLatin1String(events::FileModifiedOnDisk),
                                             {{QStringLiteral("path"), path}});
    return true;
}

bool tl_applyCurrentStyle(const QString &path)
{
    if (!store::lowerCasedExtension(path).startsWith(QStringLiteral("htm")))
        return false;
    return tl_updateEmbeddedStylesheet(path);
}

} // namespace tl::convert
