#include "publish/image_copies.h"

#include "foundation/digest.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "store/document_file.h"
#include "store/item_path.h"
#include "store/library_root.h"
#include "store/safe_names.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace tl::publish {

namespace {

QString md5OfFile(const QString &path)
{
    const std::optional<QByteArray> data = store::tl_dataWithContentsOfFile(path);
    return data ? md5Hex(*data, false) : QString();
}

// A file of the folder with the same bytes as the source, or nothing.
QString fileWithIdenticalHash(const QString &source, const QString &folder)
{
    const QFileInfo info(source);
    const QString hash = md5OfFile(source);
    if (hash.isEmpty())
        return {};
    const QFileInfoList entries = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden);
    for (const QFileInfo &entry : entries)
        if (entry.size() == info.size() && md5OfFile(entry.filePath()) == hash)
            return entry.filePath();
    return {};
}

// The reference as a file: scheme links made paths, "/" from the root,
// anything else from the document's folder. Nothing for what is no file
// of ours.
std::optional<QString> imageSource(const QString &reference, const QString &entryFolder)
{
    QString value = store::percentDecoded(reference).value_or(reference);
    if (value.startsWith(u"tavelle://")) {
        value.remove(QStringLiteral("tavelle://show"));
        value.remove(QStringLiteral("tavelle:/"));
    }
    if (value.startsWith(u"TLImages/\"") || value.contains(u"://") || value.isEmpty())
        return std::nullopt;
    const QString joined = value.startsWith(u'/')
                               ? path::appendingComponent(store::libraryRoot(), value)
                               : path::appendingComponent(entryFolder, value);
    const QString resolved = store::resolvingSymlinks(QDir::cleanPath(joined));
    if (!QFileInfo(resolved).isFile())
        return std::nullopt;
    return resolved;
}

} // namespace

QString copiedOnce(const QString &source, const QString &imagesFolder)
{
    const QString identical = fileWithIdenticalHash(source, imagesFolder);
    if (!identical.isEmpty())
        return path::lastComponent(identical);
    const QString target =
        store::tl_uniqueNameForFileatPath(path::lastComponent(source), imagesFolder);
    if (!QFile::copy(source, target))
        return {};
    return path::lastComponent(target);
}

QString withGatheredImages(const QString &text, const QString &entryFolder,
                           const QString &imagesFolder, bool htmlOutput, QSet<QString> &names)
{
    static const Regex htmlImage(QStringLiteral(R"re(<img .*?src="(.*?)")re"),
                                 RegexOption::CaseInsensitive);
    static const Regex markdownImage(QStringLiteral(R"(!\[.*?\]\((.+?)\))"),
                                     RegexOption::CaseInsensitive);
    const QString baseImages = store::resolvingSymlinks(imagesFolder);
    const auto gather = [&](const RegexMatch &match, QStringView in) -> std::optional<QString> {
        const std::optional<QString> source = imageSource(match.capturedString(in, 1), entryFolder);
        if (!source)
            return std::nullopt;
        if (path::deletingLastComponent(*source) == baseImages) {
            names.insert(path::lastComponent(*source));
            return std::nullopt;
        }
        const QString name = copiedOnce(*source, imagesFolder);
        if (name.isEmpty())
            return std::nullopt;
        names.insert(name);
        const qsizetype start = match.groupStart(1) - match.start();
        return match.captured(in).toString().replace(start, match.groupLength(1),
                                                     QStringLiteral("TLImages/") + name);
    };
    QString result = htmlImage.replaceMatches(text, gather);
    if (!htmlOutput)
        result = markdownImage.replaceMatches(result, gather);
    return result;
}

} // namespace tl::publish
