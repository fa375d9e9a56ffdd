#include "drops.h"

#include "convert/html_to_markdown.h"
#include "foundation/digest.h"
#include "platform/file_ops.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/safe_names.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

namespace tl::editing {

namespace {

QString extensionOf(const QString &path)
{
    return QFileInfo(path).suffix().toLower();
}

bool isImage(const QString &path)
{
    static const QStringList images{
        QStringLiteral("gif"),  QStringLiteral("jpg"),  QStringLiteral("jpeg"),
        QStringLiteral("jpe"),  QStringLiteral("png"),  QStringLiteral("psd"),
        QStringLiteral("bmp"),  QStringLiteral("tiff"), QStringLiteral("heif"),
        QStringLiteral("heic"), QStringLiteral("dng"),  QStringLiteral("webp")};
    return images.contains(extensionOf(path));
}

bool isUnder(const QString &path, const QString &root)
{
    return !root.isEmpty() && path.startsWith(root + u'/');
}

std::optional<QString> md5OfFile(const QString &path)
{
    const std::optional<QByteArray> bytes = store::tl_dataWithContentsOfFile(path);
    return bytes ? std::optional(md5Hex(*bytes, false)) : std::nullopt;
}

// A file of the folder with the same bytes as `file`.
QString fileWithIdenticalHash(const QString &file, const QString &folder)
{
    const std::optional<QString> hash = md5OfFile(file);
    const qint64 size = QFileInfo(file).size();
    if (!hash)
        return QString();
    for (const QFileInfo &candidate : QDir(folder).entryInfoList(QDir::Files))
        if (candidate.size() == size && md5OfFile(candidate.filePath()) == hash)
            return candidate.filePath();
    return QString();
}

} // namespace

DroppedText textForDroppedFile(const QString &path, const DropContext &context)
{
    if (context.mayCopy) {
        if (store::plainTextExtensions().contains(extensionOf(path))) {
            const auto text = store::tl_stringWithContentsOfFile(path);
            return {text ? text->text : QString()};
        }
        return {QString(), true};
    }
    const bool inLibrary = isUnder(path, context.root);
    const QString shown = inLibrary ? store::tl_normalizedPath(path) : path;
    QString text;
    if (context.markdownDocument)
        text = QStringLiteral("[%1](%2)")
                   .arg(QFileInfo(path).completeBaseName(),
                        store::tl_pathEscapedForMarkdownLink(shown));
    else
        text = (inLibrary ? QStringLiteral("tavelle:/%1") : QStringLiteral("file://%1"))
                   .arg(store::percentEncodedForPath(shown));
    if (context.markdownDocument && isImage(path) && !context.commandAlone)
        text = QStringLiteral("[!%1](%2)")
                   .arg(QFileInfo(path).completeBaseName(),
                        store::tl_pathEscapedForMarkdownLink(shown));
    return {text};
}

QString attachmentMarkdown(const QString &relativePath)
{
    static const QStringList videos{QStringLiteral("m4v"), QStringLiteral("mp4"),
                                    QStringLiteral("mov"), QStringLiteral("wav"),
                                    QStringLiteral("mpg")};
    static const QStringList audio{QStringLiteral("m4a"), QStringLiteral("mp3"),
                                   QStringLiteral("aiff"), QStringLiteral("flac")};
    const QString escaped = store::tl_pathEscapedForMarkdownLink(relativePath);
    const QString name = QFileInfo(relativePath).fileName();
    const QString extension = extensionOf(relativePath);
    if (isImage(relativePath))
        return QStringLiteral("[![%1](%2)](%2)").arg(name, escaped);
    if (videos.contains(extension))
        return QStringLiteral("%1<video src=\"%2\" controls></video>").arg(name, escaped);
    if (audio.contains(extension))
        return QStringLiteral("%1<audio src=\"%2\" controls></audio>").arg(name, escaped);
    return QStringLiteral("[%1](%2)").arg(name, escaped);
}

std::optional<QString> insertImageSavingToTLImages(const QString &file, bool save,
                                                   const QString &documentPath)
{
    const QString folder = QFileInfo(documentPath).path();
    QString target = file;
    if (save) {
        const QString images = store::tl_imagesFolderAtMyPath(documentPath);
        target = fileWithIdenticalHash(file, images);
        if (target.isEmpty()) {
            QDir().mkpath(images);
            target = store::tl_uniqueNameForFileatPath(
                QFileInfo(file).fileName().replace(u' ', u'-'), images);
            if (!platform::copyItem(file, target))
                return std::nullopt;
        }
    }
    return attachmentMarkdown(QDir(folder).relativeFilePath(target));
}

QString tl_pasteAsMarkdown(const PastedContent &pasted, const QString &selectedText,
                           const QString &documentPath, const QString &root)
{
    if (!pasted.html.isEmpty())
        return convert::tl_markdownifyHTML(pasted.html);
    const QString text = pasted.text.trimmed();
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty() || text.contains(u'\n'))
        return convert::tl_markdownifyHTML(pasted.text);
    const QString title = !selectedText.isEmpty()     ? selectedText
                          : !pasted.urlName.isEmpty() ? pasted.urlName
                                                      : text;
    QString target = text;
    if (url.scheme() == u"tavelle" && !store::tl_isTavelleURLSchemeAction(text)) {
        const QString path = store::tl_pathFromTavelleURLScheme(text);
        target = store::tl_pathWithoutAnchor(path) == documentPath
                     ? u'#' + store::tl_pathAnchor(path)
                     : store::tl_pathEscapedForMarkdownLink(store::tl_normalizedPath(path));
    } else if (url.isLocalFile() && isUnder(url.toLocalFile(), root)) {
        target = store::tl_pathEscapedForMarkdownLink(store::tl_normalizedPath(url.toLocalFile()));
    }
    return QStringLiteral("%1[%2](%3)")
        .arg(isImage(url.path()) ? QStringLiteral("!") : QString(), title, target);
}

} // namespace tl::editing
