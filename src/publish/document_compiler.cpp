#include "publish/document_compiler.h"

#include "browser/document_kinds.h"
#include "convert/convert_keys.h"
#include "convert/envelope.h"
#include "convert/markdown_preparation.h"
#include "convert/markdown_to_html.h"
#include "convert/style_sheet.h"
#include "foundation/path_string.h"
#include "platform/settings.h"
#include "publish/compile_selection.h"
#include "publish/compile_text.h"
#include "publish/image_copies.h"
#include "publish/mail_parts.h"
#include "publish/publish_texts.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/properties.h"
#include "store/reading_order.h"
#include "store/safe_names.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <algorithm>

namespace tl::publish {

namespace {

// What one compile run carries from document to document.
struct CompileRun
{
    QString outputExtension;
    QString imagesFolder;
    QSet<QString> imageNames;
    int imageReferenceCount = 0;

    bool html() const { return outputExtension == u"html"; }
};

QString readText(const QString &path)
{
    const std::optional<store::DecodedText> decoded = store::tl_stringWithContentsOfFile(path);
    return decoded ? decoded->text : QString();
}

// The text a document brings, before its images are gathered.
std::optional<QString> entryText(const QString &path, CompileRun &run)
{
    const QString extension = store::lowerCasedExtension(path);
    if (extension == u"eml")
        return mailBody(path);
    if (extension == u"webloc" || extension == u"url")
        return webLinkEntry(browser::tl_embeddedURL(path),
                            path::deletingExtension(path::lastComponent(path)),
                            run.outputExtension);
    if (extension == u"html") {
        const QString text = readText(path);
        if (text.contains(u"<html"))
            return convert::tl_getInnerHTML(text);
    }
    if (run.html())
        return convert::tl_getInnerHTML(convert::tl_markdownToHTML(path));
    QString text = readText(path);
    if (platform::settings().boolValue(QLatin1String(convert::keys::IgnoreCommentsForWordCount)))
        text = convert::tl_stringByRemovingComments(text);
    return renumberedImageReferences(text, run.imageReferenceCount);
}

// An image document: copied once, shown unless it is an attachment already.
QString imageEntry(const QString &path, CompileRun &run)
{
    const QString name = copiedOnce(path, run.imagesFolder);
    if (name.isEmpty())
        return {};
    run.imageNames.insert(name);
    if (path.contains(QLatin1String(names::TLImages)))
        return {};
    return compiledImageLine(name);
}

} // namespace

void TLKSDocumentCompiler::setProgressSheet(ProgressSheet sheet)
{
    m_sheet = std::move(sheet);
}

void TLKSDocumentCompiler::showSheet()
{
    if (m_sheet.show)
        m_sheet.show();
}

void TLKSDocumentCompiler::updateProgress(double percent)
{
    if (m_sheet.update)
        m_sheet.update(percent);
}

void TLKSDocumentCompiler::hideSheet()
{
    if (m_sheet.hide)
        m_sheet.hide();
}

QString TLKSDocumentCompiler::effectiveBasePath() const
{
    return !basePath.isEmpty() && QFileInfo(basePath).isDir() ? basePath : store::libraryRoot();
}

QStringList TLKSDocumentCompiler::listOfDocumentsByExpandingBooksInArray(const QStringList &paths)
{
    QStringList documents;
    for (const QString &path : paths) {
        if (QFileInfo(path).isDir() &&
            !store::packageExtensions().contains(store::lowerCasedExtension(path)))
            documents << store::tl_sortedListOfAllItemsInHierarchy(path);
        else
            documents << path;
    }
    return documents;
}

QString TLKSDocumentCompiler::tl_createHTMLFromDocuments(const QStringList &paths,
                                                         const QString &title,
                                                         const QString &separator, bool autoFormat)
{
    Q_UNUSED(separator); // documents are always set apart by two empty lines
    showSheet();
    const QString name = title.isEmpty() ? QString::fromUtf8(texts::CompiledDocuments) : title;
    const QString base = effectiveBasePath();
    const QStringList ordered = withCoverFirst(listOfDocumentsByExpandingBooksInArray(paths), base);

    CompileRun run;
    run.outputExtension = outputKind.isEmpty() ? outputExtension(ordered, autoFormat) : outputKind;
    const QStringList documents = withEmbeddedPhotos(ordered);
    const QString target =
        store::tl_uniqueNameForFileatPath(name + u'.' + run.outputExtension, base);
    run.imagesFolder = path::appendingComponent(base, QLatin1String(names::TLImages));
    QDir().mkpath(run.imagesFolder);

    QFile out(target);
    if (!out.open(QIODevice::WriteOnly)) {
        logLine(QStringLiteral("compile: cannot write %1").arg(target));
        hideSheet();
        return {};
    }
    const auto write = [&out](const QString &text) { out.write(text.toUtf8()); };
    if (run.html())
        write(compiledHTMLHead(path::lastComponent(base), convert::tl_inheritedStyleSheet(base)));

    int done = 0;
    for (const QString &path : documents) {
        if (stopProcess)
            break;
        if (!isAcceptedForCompiling(path))
            continue;
        if (hasImageExtension(path)) {
            write(imageEntry(path, run));
        } else if (const std::optional<QString> text = entryText(path, run)) {
            write(compiledEntry(withGatheredImages(*text, path::deletingLastComponent(path),
                                                   run.imagesFolder, run.html(), run.imageNames)));
        }
        updateProgress(100.0 / documents.size() * ++done);
    }
    if (run.html())
        write(compiledHTMLTail());
    out.close();

    store::tl_setCreationDate(target);
    if (!run.imageNames.isEmpty()) {
        QStringList attachments;
        for (const QString &image : std::as_const(run.imageNames))
            attachments << QStringLiteral("TLImages/") + image;
        std::sort(attachments.begin(), attachments.end());
        store::tl_setProperty(target, attachments, QLatin1String(keys::property::EmbeddedPhotos));
    }
    hideSheet();
    return target;
}

} // namespace tl::publish
