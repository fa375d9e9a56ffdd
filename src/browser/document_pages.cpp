#include "browser/document_pages.h"

#include "browser/formatted_rendering.h"
#include "convert/default_converter.h"
#include "convert/envelope.h"
#include "convert/themes.h"
#include "foundation/digest.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "platform/file_ops.h"
#include "platform/folders.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/itmz_preview.h"
#include "store/keys.h"
#include "store/log.h"
#include "store/properties.h"
#include "store/style_values.h"
#include "store/text_conversions.h"

#include <QDir>
#include <QUrl>

namespace tl::browser {

namespace P = keys::property;

namespace {

QString fileURL(const QString &path)
{
    return QUrl::fromLocalFile(path).toString();
}

QString md5OfText(const QString &text)
{
    return md5Hex(text.toUtf8(), true);
}

bool isHTMLKind(const QString &path)
{
    return store::lowerCasedExtension(path).startsWith(u"htm");
}

FormattedPage pageOfHTML(QString html, QString baseUrl, bool scripts, bool editable = false)
{
    FormattedPage page;
    page.html = std::move(html);
    page.baseUrl = std::move(baseUrl);
    page.documentScriptsAllowed = scripts;
    page.editable = editable;
    return page;
}

FormattedPage imagePage(const QString &imagePath, const QString &documentPath)
{
    const QString body = imagePath.isEmpty()
                             ? QString()
                             : QStringLiteral("<img src=\"%1\" style=\"max-width:100%;\">")
                                   .arg(fileURL(imagePath).toHtmlEscaped());
    return pageOfHTML(QStringLiteral("<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"></head>"
                                     "<body style=\"margin:0;text-align:center;\">%1</body></html>")
                          .arg(body),
                      fileURL(documentPath), false);
}

// An HTML file: as it is when another program made it, else its body in the
// item's current envelope and theme.
FormattedPage htmlFilePage(const QString &path, const QString &text)
{
    if (!convert::tl_generatorIsTavelle(text)) {
        const QString url = store::tl_propertyForKey(path, QLatin1String(P::URL)).toString();
        const bool hasScheme = !QUrl(url).scheme().isEmpty();
        return pageOfHTML(text, hasScheme ? url : fileURL(path), false, true);
    }
    return pageOfHTML(convert::formattedDocAdjustedToTheme(convert::tl_createFormattedDocWithBody(
                          path, convert::tl_getInnerHTML(text))),
                      fileURL(path), true, true);
}

QString finalDraftStyleSheet()
{
    const QDir folder(platform::resourcesFolder() + QStringLiteral("/XSL"));
    const QStringList sheets = folder.entryList({QStringLiteral("*.xsl")}, QDir::Files, QDir::Name);
    if (sheets.isEmpty())
        return {};
    return store::tl_stringWithContentsOfFile(folder.filePath(sheets.first()),
                                              store::TextEncoding::UTF8)
        .value_or(QString());
}

FormattedPage finalDraftPage(const QString &path, const QString &text)
{
    const QString sheet = finalDraftStyleSheet();
    if (sheet.isEmpty())
        return pageOfHTML(convert::tl_createFormattedDocWithBody(
                              path, QStringLiteral("<pre>%1</pre>").arg(text.toHtmlEscaped())),
                          fileURL(path), false);
    static const Regex declaration(QStringLiteral("(<?xml version.*?>\n)"));
    static const Regex sceneHeading(
        QStringLiteral("<Paragraph [^>]*?Type=\"Scene Heading\"[^>]*?>\\s*<Text>"),
        RegexOption::DotMatchesNewline);
    QString xml = declaration.replaceMatches(text, [&](const RegexMatch &m, QStringView t) {
        return std::optional<QString>(m.capturedString(t, 1) + sheet);
    });
    xml += QStringLiteral("\n</DOC>");
    // Scene numbers count down from the last heading, so each heading gets its place.
    qulonglong counter = qulonglong(sceneHeading.count(xml));
    xml = sceneHeading.replaceMatches(xml, [&counter](const RegexMatch &m, QStringView t) {
        return std::optional<QString>(m.capturedString(t) + QString::asprintf("%llu ", counter--));
    });
    xml = convert::formattedDocAdjustedToTheme(xml);
    const QString work = platform::temporaryFolder() + u'/' +
                         path::deletingExtension(path::lastComponent(path)) +
                         QStringLiteral(".xml");
    if (!platform::writeFileAtomically(work, xml.toUtf8()))
        return {};
    FormattedPage page;
    page.url = fileURL(work);
    page.baseUrl = page.url;
    return page;
}

// The Markdown's rendering as the file keeps it, always with the default converter.
QString representationRendering(const QString &path, const QString &markdown)
{
    const bool contents = store::tl_propertyForKey(path, QLatin1String(P::TOC)).isValid();
    return convert::tl_createFormattedDocWithBody(
               path, convert::tl_markdownWithPandoc(markdown, true, contents))
        .trimmed();
}

BuiltPage plainTextRepresentationPage(const QString &path, const QString &text)
{
    BuiltPage built;
    const QString stored = convert::tl_stripMarkdownFromHTML(text);
    const QString markdown = markdownOfRepresentation(text);
    if (markdown.isEmpty()) {
        // Nothing to render from: show what the file holds, and never write it.
        built.page = pageOfHTML(convert::formattedDocAdjustedToTheme(stored), fileURL(path), true);
        return built;
    }
    const QString rendering = representationRendering(path, markdown);
    if (md5OfText(stored) != md5OfText(rendering)) {
        // The rendering went stale (another device, an older version): renew it.
        if (store::tl_writeToFile(convert::withPlainTextRepresentation(markdown, rendering), path,
                                  true, store::TextEncoding::UTF8))
            built.rewritten = platform::modificationDate(path);
    }
    built.page = pageOfHTML(convert::formattedDocAdjustedToTheme(rendering), fileURL(path), true);
    return built;
}

} // namespace

QString markdownOfRepresentation(const QString &fileText)
{
    const qsizetype start = fileText.indexOf(QStringLiteral("<!-- Plain Text Representation:\n"));
    const qsizetype end = start < 0 ? -1 : fileText.indexOf(QStringLiteral("-->"), start);
    return store::tl_htmlToPlainText(end < 0 ? fileText : fileText.left(end + 3));
}

QString plainTextRepresentationFile(const QString &path, const QString &markdown)
{
    return convert::withPlainTextRepresentation(markdown, representationRendering(path, markdown));
}

QString withMailFontMarkers(const QString &html, const QString &face, int size)
{
    QString cssFace = face;
    if (face == u"System Monospaced")
        cssFace = QStringLiteral("ui-monospace");
    else if (face == u"System Font")
        cssFace = QStringLiteral("-apple-system");
    QString result = html;
    result.replace(QStringLiteral("**TavelleFontSize**"), QString::number(size));
    result.replace(QStringLiteral("**TavelleFont**"), cssFace);
    return result;
}

QString evernoteExportPage(const QString &path)
{
    QUrl link = QUrl::fromLocalFile(path);
    link.setFragment(QLatin1String(kExtractEvernoteFragment));
    return QStringLiteral("<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\">"
                          "<title>CannotLoadError</title></head><body class=\"CannotLoadError\">"
                          "<p>%1</p><p><a href=\"%2\">%3</a></p></body></html>")
        .arg(QStringLiteral("This file contains notes exported from Evernote."),
             link.toString().toHtmlEscaped(), QStringLiteral("Click to extract and import..."));
}

BuiltPage buildFormattedPage(const PageRequest &request)
{
    const QString &path = request.path;
    BuiltPage built;
    switch (request.source) {
    case FormattedSource::Rendered:
        // Only Markdown pages carry the program's own scripts (diagrams, formulas);
        // a script's or outline's text stands in its page unescaped, so none may run.
        built.page =
            pageOfHTML(renderedPageOfText(path, request.text), fileURL(path),
                       store::markdownExtensions().contains(store::lowerCasedExtension(path)));
        break;
    case FormattedSource::File:
        if (isHTMLKind(path)) {
            built.page = htmlFilePage(path, request.text);
        } else {
            built.page.url = fileURL(path);
            built.page.baseUrl = built.page.url;
        }
        break;
    case FormattedSource::PlainTextRepresentation:
        return plainTextRepresentationPage(path, request.text);
    case FormattedSource::FinalDraft:
        built.page = finalDraftPage(path, request.text);
        break;
    case FormattedSource::WebArchive:
        built.page = pageOfHTML(store::tl_webarchiveToHTML(path), fileURL(path), false);
        break;
    case FormattedSource::WebLocation:
        built.page.url = tl_embeddedURL(path);
        built.page.baseUrl = built.page.url;
        built.page.documentScriptsAllowed = true;
        break;
    case FormattedSource::Mail:
        built.page = pageOfHTML(withMailFontMarkers(store::tl_emlToHTML(path),
                                                    store::tl_fontFaceAtPath(path),
                                                    store::tl_fontSizeAtPath(path)),
                                fileURL(path), false);
        break;
    case FormattedSource::EvernoteExport:
        built.page = pageOfHTML(evernoteExportPage(path), fileURL(path), false);
        break;
    case FormattedSource::Image:
        built.page = imagePage(path, path);
        break;
    case FormattedSource::MindMapPreview:
        built.page = imagePage(store::tl_pathToPreviewOfITMZ(path).value_or(QString()), path);
        break;
    case FormattedSource::None:
        break;
    }
    return built;
}

} // namespace tl::browser
