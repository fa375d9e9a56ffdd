#include "store/duplicate_as.h"

#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "platform/document_converter.h"
#include "platform/file_ops.h"
#include "platform/folders.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/item_operations.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/log.h"
#include "store/pdf_document.h"
#include "store/properties.h"
#include "store/properties_carry.h"
#include "store/safe_names.h"
#include "store/style_values.h"
#include "store/text_conversions.h"

#include <QDir>
#include <QTemporaryDir>

namespace tl::store {

namespace {

namespace P = keys::property;

const char kPrintFontSize[] = "printFontSize";
const char kPlainTextRepresentation[] = "<!-- Plain Text Representation:\n";

enum class Kind { Markdown, PlainText, Other };

Kind kindOf(const QString &path)
{
    const QString extension = lowerCasedExtension(path);
    if (markdownExtensions().contains(extension))
        return Kind::Markdown;
    if (plainTextExtensions().contains(extension))
        return Kind::PlainText;
    return Kind::Other;
}

bool isHtml(const QString &path)
{
    const QString extension = lowerCasedExtension(path);
    return extension == u"html" || extension == u"htm";
}

// A free path beside the item for its stem with the new extension.
QString targetBeside(const QString &path, const QString &extension)
{
    return tl_uniqueNameForFileatPath(
        path::appendingExtension(path::lastComponent(path::deletingExtension(path)), extension),
        path::deletingLastComponent(path));
}

QString plainCopyAs(const QString &path, const QString &extension)
{
    const QString target = targetBeside(path, extension);
    return tl_copyItemToPath(path, target) ? target : QString();
}

void postModified(const QString &path)
{
    NotificationCenter::defaultCenter().post(events::FileModifiedOnDisk, {{"path", path}});
}

QString textOf(const QString &path)
{
    const std::optional<DecodedText> read = tl_stringWithContentsOfFile(path);
    return read ? read->text : QString();
}

// Text that cannot be put in the source's encoding goes out as UTF-8 rather
// than not at all.
bool writeInEncodingOf(const QString &source, const QString &text, const QString &target)
{
    WriteError error = WriteError::None;
    if (tl_writeToFile(text, target, true, tl_textEncodingOfFile(source), &error))
        return true;
    return error == WriteError::Unencodable &&
           tl_writeToFile(text, target, true, TextEncoding::UTF8);
}

// What a formatted document keeps in a comment of its own for editing as
// plain text; empty when there is none.
QString plainTextRepresentation(const QString &html)
{
    const qsizetype marker = html.indexOf(QLatin1String(kPlainTextRepresentation));
    if (marker < 0)
        return {};
    const qsizetype start = marker + qsizetype(qstrlen(kPlainTextRepresentation));
    const qsizetype end = html.indexOf(QLatin1String("-->"), start);
    return end < 0 ? QString() : html.mid(start, end - start);
}

// A Markdown duplicate of converted text: in the source's encoding, with its
// properties.
QString writeMarkdownDuplicate(const QString &source, const QString &markdown)
{
    if (markdown.isEmpty())
        return {};
    const QString target = targetBeside(source, QStringLiteral("md"));
    if (!writeInEncodingOf(source, markdown, target))
        return {};
    copyPropertiesFile(source, target);
    postModified(target);
    return target;
}

// A formatted duplicate of converted HTML: UTF-8, with the properties less
// those of the Markdown view.
QString writeFormattedDuplicate(const QString &source, const QString &html)
{
    if (html.isEmpty())
        return {};
    const QString target = targetBeside(source, QStringLiteral("html"));
    if (!tl_writeToFile(html, target, true, TextEncoding::UTF8))
        return {};
    copyPropertiesFile(source, target);
    for (const char *key : {P::Markdown, P::TOC, P::Print, P::PrivateProperties})
        tl_removePropertyForKey(target, QLatin1String(key));
    postModified(target);
    return target;
}

// Any other kind goes through the converter in a folder of its own, so the
// images it extracts can be told apart and moved into the book's TLImages.
QString formattedDuplicateByConverter(const QString &source)
{
    if (!platform::makeFolder(platform::temporaryFolder()))
        return {};
    QTemporaryDir work(QDir(platform::temporaryFolder()).filePath(QStringLiteral("dup-XXXXXX")));
    const QString copy = work.filePath(path::lastComponent(source));
    if (!work.isValid() || !platform::copyItem(source, copy))
        return {};
    const QString converted = tl_duplicateItemAs(copy, QStringLiteral("html"));
    if (converted.isEmpty())
        return {};
    const QStringList images = QDir(work.path()).entryList(QDir::Files | QDir::NoDotAndDotDot);
    QString html = textOf(converted);
    html.replace(QLatin1String("src=\"file:///"), QLatin1String("src=\"TLImages/"));
    for (const QString &image : images)
        html.replace(QStringLiteral("src=\"%1\"").arg(image),
                     QStringLiteral("src=\"TLImages/%1\"").arg(image));
    const QString target = targetBeside(source, QStringLiteral("html"));
    if (!tl_writeToFile(html, target, true, TextEncoding::UTF8))
        return {};
    copyPropertiesFile(source, target);
    const QString imagesFolder = tl_imagesFolderAtMyPath(target);
    for (const QString &image : images) {
        const QString from = work.filePath(image);
        if (from != copy && from != converted)
            platform::moveItem(from, tl_uniqueNameForFileatPath(image, imagesFolder));
    }
    postModified(target);
    return target;
}

} // namespace

QString tl_duplicateItemAsPlaintext(const QString &path)
{
    const QString extension = lowerCasedExtension(path);
    switch (kindOf(path)) {
    case Kind::Markdown:
        return plainCopyAs(path, QStringLiteral("txt"));
    case Kind::PlainText:
        return tl_duplicateItemAtPath(path);
    case Kind::Other:
        break;
    }
    if (extension == u"pdf") {
        const QString text = pdfText(path);
        const QString target = targetBeside(path, QStringLiteral("txt"));
        return !text.isEmpty() && tl_writeToFile(text, target, true, TextEncoding::UTF8)
                   ? target
                   : QString();
    }
    if (extension == u"html") {
        const QString html = textOf(path);
        if (html.contains(QLatin1String(kPlainTextRepresentation))) {
            const QString text = plainTextRepresentation(html);
            const QString target = targetBeside(path, QStringLiteral("txt"));
            return !text.isEmpty() && writeInEncodingOf(path, text, target) ? target : QString();
        }
    }
    return tl_duplicateItemAs(path, QStringLiteral("txt"));
}

QString tl_duplicateItemAsMarkdown(const QString &path)
{
    const Kind kind = kindOf(path);
    if (kind == Kind::Markdown)
        return tl_duplicateItemAtPath(path);
    if (lowerCasedExtension(path) == u"opml")
        return writeMarkdownDuplicate(path, tl_markdownifyHTML(tl_OPMLToHTML(textOf(path))));
    if (kind == Kind::PlainText)
        return plainCopyAs(path, QStringLiteral("md"));
    if (isHtml(path)) {
        const QString html = textOf(path);
        const QString representation = plainTextRepresentation(html);
        return writeMarkdownDuplicate(path, representation.isEmpty() ? tl_markdownifyHTML(html)
                                                                     : representation);
    }
    return {};
}

QString tl_duplicateItemAsFormattedDocument(const QString &path)
{
    const QString extension = lowerCasedExtension(path);
    if (isHtml(path))
        return tl_duplicateItemAtPath(path);
    if (kindOf(path) != Kind::Other)
        return writeFormattedDuplicate(path, markdownToHTMLForDocument(textOf(path), path));
    if (extension == u"opml")
        return writeFormattedDuplicate(path, tl_OPMLToHTML(textOf(path)));
    if (extension == u"webarchive")
        return tl_duplicateWebArchiveAsFormattedDocument(path);
    return formattedDuplicateByConverter(path);
}

QString tl_duplicateItemAsFountain(const QString &path)
{
    return plainCopyAs(path, QStringLiteral("fountain"));
}

QString tl_duplicateAsLatex(const QString &path)
{
    const QString latex = tl_markdownToLatex(textOf(path), path);
    if (latex.isEmpty())
        return {};
    const QString target = targetBeside(path, QStringLiteral("tex"));
    if (!writeInEncodingOf(path, latex, target))
        return {};
    postModified(target);
    return target;
}

QString tl_duplicateItemAs(const QString &path, const QString &requested)
{
    static const QStringList formats{"txt",  "html",   "rtf", "rtfd",      "doc",
                                     "docx", "wordml", "odt", "webarchive"};
    if (!formats.contains(requested))
        return {};
    const bool markdown = kindOf(path) == Kind::Markdown;
    const bool hasPhotos =
        !propertyValueIsEmpty(tl_propertyForKey(path, QLatin1String(P::EmbeddedPhotos)));
    const QString format =
        requested == u"rtf" && (markdown || lowerCasedExtension(path) == u"html") && hasPhotos
            ? QStringLiteral("rtfd")
            : requested;
    const QString target = targetBeside(path, format);

    // Markdown goes to the converter as the HTML it renders to, in a hidden
    // file beside it.
    QString source = path;
    QString rendered;
    if (markdown) {
        const QString html = markdownToHTMLForDocument(textOf(path), path);
        rendered =
            tl_uniqueNameForFileatPath(QStringLiteral(".%1.html").arg(path::lastComponent(path)),
                                       path::deletingLastComponent(path));
        if (html.isEmpty() || !tl_writeToFile(html, rendered, true, TextEncoding::UTF8)) {
            logLine(QStringLiteral("conversion failed."));
            return {};
        }
        source = rendered;
    }
    const double printFontSize = platform::settings().real(QLatin1String(kPrintFontSize));
    const double fontSize = printFontSize > 0 ? printFontSize : tl_fontSizeAtPath(path);
    const int status = platform::documentConverter().convert({format, fontSize, target, source});
    if (!rendered.isEmpty())
        platform::removeItem(rendered);
    if (status != 0) {
        logLine(QStringLiteral("conversion failed."));
        // The target was free before: whatever is there now is a partial result.
        platform::removeItem(target);
        return {};
    }
    copyPropertiesFile(path, target);
    postModified(target);
    return target;
}

} // namespace tl::store
