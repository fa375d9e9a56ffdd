#include "convert/note_preview.h"

#include "convert/convert_keys.h"
#include "convert/default_converter.h"
#include "convert/html_to_text.h"
#include "convert/markdown_preparation.h"
#include "convert/multimarkdown.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "platform/file_ops.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/first_line.h"
#include "store/keys.h"
#include "store/pdf_document.h"
#include "store/properties.h"
#include "store/style_values.h"
#include "store/text_conversions.h"

#include <QFile>
#include <QFileInfo>

namespace tl::convert {

namespace {

// A side-car text that begins so was written by mistake from an empty view.
const QString kNoDocumentSelected = QStringLiteral("No Document Selected");
// A longer text is cut to its beginning before it is converted.
constexpr qsizetype kLongestUncut = 450;
constexpr qsizetype kCutLength = 449;
// A first PDF page shorter than this is followed by the second.
constexpr qsizetype kShortPdfPage = 100;

QString fileText(const QString &path)
{
    const std::optional<store::DecodedText> decoded = store::tl_stringWithContentsOfFile(path);
    return decoded ? decoded->text : QString();
}

QString propertyText(const QString &path, const char *key)
{
    return store::tl_propertyForKey(path, QLatin1String(key)).toString();
}

// The side-car text of an image or of a file that has one; else the
// recognised text of the file.
QString sideCarOrRecognisedText(const QString &path, const QString &extension)
{
    const QString sideCar = store::tl_sideCarPath(path);
    if (store::imageExtensions().contains(extension) || QFileInfo(sideCar).isFile()) {
        const QString text = QString::fromUtf8(platform::readFile(sideCar).value_or(QByteArray()));
        if (text.startsWith(kNoDocumentSelected)) {
            QFile::remove(sideCar);
            return {};
        }
        return text.contains(QStringLiteral("<!DOCTYPE html>")) ? tl_htmlToPlainQuick(text) : text;
    }
    return propertyText(path, tl::keys::property::OCR);
}

// The first page's text, with the second page's behind a short first page;
// kept in the side-car so the PDF is opened once.
QString pdfPreviewText(const QString &path)
{
    const QStringList pages = store::pdfPageTexts(path, 2);
    QString text = pages.value(0);
    if (text.size() < kShortPdfPage && pages.size() > 1)
        text += pages.at(1);
    if (!text.isEmpty())
        platform::writeFileAtomically(store::tl_sideCarPathCreatingParentIfNeeded(path),
                                      text.toUtf8());
    return text;
}

QString documentText(const QString &path, const QString &extension)
{
    if (extension.startsWith(QStringLiteral("htm")))
        return tl_htmlToPlainQuick(fileText(path));
    if (extension == u"pdf")
        return pdfPreviewText(path);
    if (extension == u"opml")
        return tl_htmlToPlainQuick(store::tl_OPMLToHTML(fileText(path)));
    return {};
}

bool isPreviewedAsMarkdown(const QString &extension)
{
    static const QStringList markdown{"md", "markdown", "text", "mdown", "rmd"};
    return markdown.contains(extension);
}

QString markdownAsPlainText(QString text, const QString &path)
{
    platform::Settings &settings = platform::settings();
    if (settings.boolValue(QLatin1String(keys::IgnoreCommentsForWordCount)))
        text = tl_stringByRemovingComments(text);
    // The reverse of the preparation's condition, on purpose.
    if (settings.boolValue(QLatin1String(keys::UseMarkdownStrictly)))
        text = tl_makeEveryNewlineaLinebreak(text);
    if (text.contains(QStringLiteral("[[")))
        text = tl_makeWikiLinksMarkdownLinks(text);
    const QString html = store::tl_markdownConverterAtPath(path) == MultiMarkdown
                             ? tl_multiMarkdownWithPath(text, path)
                             : tl_markdownWithPandoc(text, true, false);
    return tl_htmlToPlainQuick(html).trimmed();
}

// The text without a first line that is the title, its lines joined.
QString withoutTitleLine(const QString &text, const QString &title)
{
    static const Regex lineEnds(QStringLiteral("[\\r\\n]+"));
    QStringList lines = text.split(u'\n');
    const QString stem = path::deletingExtension(title).toLower();
    if (store::tl_stringMatchesFirstLineOfText(stem, store::tl_firstLineOfText(text).toLower()))
        lines.removeFirst();
    return lineEnds.replaceAll(lines.join(u'\n').trimmed(), QStringLiteral("\n")).trimmed();
}

} // namespace

QString tl_previewOfNoteWithTitle(const QString &path, const QString &title)
{
    const QString description = propertyText(path, tl::keys::property::Description).trimmed();
    if (!description.isEmpty())
        return description;
    const QString extension = store::lowerCasedExtension(path);
    QString text;
    if (store::plainTextExtensions().contains(extension)) {
        text = fileText(path).trimmed();
        if (text.isEmpty())
            return {};
    } else {
        text = sideCarOrRecognisedText(path, extension);
        if (text.isEmpty())
            text = documentText(path, extension);
    }
    if (text.size() > kLongestUncut)
        text = text.left(kCutLength).trimmed();
    if (isPreviewedAsMarkdown(extension))
        text = markdownAsPlainText(text, path);
    return withoutTitleLine(text, title);
}

} // namespace tl::convert
