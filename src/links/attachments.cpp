#include "links/attachments.h"

#include "convert/html_to_text.h"
#include "convert/markdown_preparation.h"
#include "foundation/compare.h"
#include "foundation/digest.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "links/backlinks.h"
#include "links/link_resolution.h"
#include "links/link_rewrite.h"
#include "links/links_keys.h"
#include "platform/file_ops.h"
#include "platform/settings.h"
#include "platform/trash.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/plist_file.h"
#include "store/properties.h"
#include "store/safe_names.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <algorithm>
#include <mutex>

namespace tl::links {

namespace P = keys::property;
namespace S = keys::setting;

namespace {

const QString imagesPrefix = QStringLiteral("TLImages/");

QString decodedOrEmpty(const QString &text)
{
    return store::percentDecoded(text).value_or(QString());
}

QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Unsorted);
}

std::optional<QByteArray> digestOf(const QString &path)
{
    const std::optional<QByteArray> bytes = platform::readFile(path);
    if (!bytes)
        return std::nullopt;
    return md5Hex(*bytes, false).toLatin1();
}

bool sameFolder(const QString &a, const QString &b)
{
    return localizedCompare(path::deletingLastComponent(a), path::deletingLastComponent(b)) == 0;
}

// The attachments the text of a document names, merged into its property.
QStringList attachmentsToBring(const QString &document)
{
    QStringList photos = embeddedPhotosOf(document);
    const QString extension = store::lowerCasedExtension(document);
    if (!hasTextExtension(document) && extension != u"htm")
        return photos;
    const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(document);
    if (!file)
        return photos;
    const qsizetype before = photos.size();
    for (const QString &photo : tl_setOfEmbeddedPhotos(file->text)) {
        if (!photos.contains(photo))
            photos.append(photo);
    }
    if (photos.size() > before)
        store::tl_setProperty(document, photos, QLatin1String(P::EmbeddedPhotos));
    return photos;
}

// The sidecar of a copied attachment: its own path as where it holds, and
// none of the source's backlinks, which stay with the source.
void copySidecar(const QString &source, const QString &target)
{
    const QString sidecar = store::propertiesFilePath(source);
    if (!QFileInfo::exists(sidecar))
        return;
    QVariantMap properties = store::readPlistDictionary(sidecar);
    if (platform::settings().boolValue(QLatin1String(S::ManageLinks))) {
        properties.insert(QLatin1String(P::ReferencedPath), store::tl_normalizedPath(target));
        properties.remove(QLatin1String(P::Backlinks));
    }
    store::writePlistFile(store::propertiesFilePath(target), properties, false);
}

// Books whose clean-up is running.
struct InFlight
{
    std::mutex mutex;
    QSet<QString> books;
};

InFlight &inFlight()
{
    static InFlight flights;
    return flights;
}

class SingleFlight
{
public:
    explicit SingleFlight(const QString &book) : book_(book)
    {
        std::lock_guard lock(inFlight().mutex);
        owns_ = !inFlight().books.contains(book_);
        if (owns_)
            inFlight().books.insert(book_);
    }
    ~SingleFlight()
    {
        if (!owns_)
            return;
        std::lock_guard lock(inFlight().mutex);
        inFlight().books.remove(book_);
    }
    SingleFlight(const SingleFlight &) = delete;
    SingleFlight &operator=(const SingleFlight &) = delete;
    bool owns() const { return owns_; }

private:
    QString book_;
    bool owns_ = false;
};

bool inUseElsewhere(const QString &attachment)
{
    const QString root = store::libraryRoot();
    const QStringList backlinks = backlinksOf(attachment);
    return std::any_of(backlinks.begin(), backlinks.end(),
                       [&](const QString &b) { return QFileInfo::exists(root + b); });
}

// Whether the text mentions the attachment in any of its spellings.
bool textMentions(const QString &text, const QString &entityText, const QString &name)
{
    const QString plain = imagesPrefix + name;
    const QString encodedPath = store::percentEncodedForPath(plain);
    return text.contains(plain) || text.contains(encodedPath) || entityText.contains(encodedPath);
}

} // namespace

QStringList tl_setOfEmbeddedPhotos(const QString &text)
{
    static const Regex reference(QStringLiteral(R"re((TLImages/.+?)["\?\)\]<])re"));
    QStringList photos;
    if (!text.contains(QStringLiteral("TLImages")))
        return photos;
    for (const RegexMatch &match : reference.allMatches(text)) {
        const QString photo = convert::tl_stringByReplacingHTMLEntities(
            decodedOrEmpty(match.capturedString(text, 1)));
        if (!photo.isEmpty() && !photos.contains(photo))
            photos.append(photo);
    }
    return photos;
}

QStringList embeddedPhotosOf(const QString &document)
{
    return store::tl_propertyForKey(document, QLatin1String(P::EmbeddedPhotos)).toStringList();
}

void updateEmbeddedPhotosAfterSave(const QString &document, const QString &given,
                                   bool formattedView)
{
    static const QStringList commented{"md", "markdown", "text", "mdown", "rmd"};
    static const Regex firstImage(QStringLiteral(R"re(src="(TLImages/.+?)["\?])re"));
    QString text = given;
    if (commented.contains(store::lowerCasedExtension(document)) &&
        platform::settings().boolValue(QStringLiteral("ignoreCommentsForWordCount")))
        text = convert::tl_stringByRemovingComments(text);
    const QStringList stored = embeddedPhotosOf(document);
    if (!text.contains(QStringLiteral("TLImages"))) {
        if (!stored.isEmpty())
            store::tl_removePropertyForKey(document, QLatin1String(P::EmbeddedPhotos));
        return;
    }
    QStringList photos = tl_setOfEmbeddedPhotos(text);
    std::sort(photos.begin(), photos.end(), LocalizedCaseInsensitiveLess());
    bool firstMoved = false;
    if (formattedView) {
        if (const std::optional<RegexMatch> m = firstImage.match(text)) {
            const QString first = decodedOrEmpty(m->capturedString(text, 1));
            if (photos.removeOne(first)) {
                photos.prepend(first);
                firstMoved = stored.value(0) != first;
            }
        }
    }
    const bool setChanged =
        QSet<QString>(photos.begin(), photos.end()) != QSet<QString>(stored.begin(), stored.end());
    if (!photos.isEmpty() && (setChanged || firstMoved))
        store::tl_setProperty(document, photos, QLatin1String(P::EmbeddedPhotos));
}

void tl_copyEmbeddedPhotosToPath(const QString &from, const QString &to)
{
    if (to.isEmpty() || sameFolder(from, to))
        return;
    const QStringList photos = attachmentsToBring(to);
    if (photos.isEmpty())
        return;
    const QString oldFolder = path::deletingLastComponent(from);
    const QString newFolder = path::deletingLastComponent(to);
    store::tl_imagesFolderAtMyPath(to);

    QList<std::pair<QString, QString>> renamed;
    for (const QString &photo : photos) {
        const QString source = path::appendingComponent(oldFolder, photo);
        QString target = path::appendingComponent(newFolder, photo);
        if (!QFileInfo::exists(source)) {
            logLine(QStringLiteral(
                "move image - source does not exist, skip (maybe moved by other instance of TL)"));
            continue;
        }
        if (QFileInfo::exists(target)) {
            const std::optional<QByteArray> there = digestOf(target);
            if (there && there == digestOf(source)) {
                logLine(QStringLiteral("move image - have identical file at target, leave as is"));
                continue;
            }
            const QString free = store::tl_uniqueNameForFileatPath(
                path::lastComponent(target), path::deletingLastComponent(target));
            renamed.append({target, free});
            logLine(QStringLiteral("move image - conflict at target - create copy with new "
                                   "filename %1")
                        .arg(free));
            target = free;
        }
        if (!platform::copyItem(source, target))
            continue;
        copySidecar(source, target);
    }
    tl_cleanupImagesFolder(oldFolder);
    for (const auto &[was, now] : renamed) {
        if (QFileInfo::exists(now)) {
            logLine(QStringLiteral("renaming from to: %1 %2").arg(was, now));
            tl_renameLinksInDocumentFrom(to, was, now);
        } else {
            logLine(
                QStringLiteral("NOT renaming, target does not exist from to: %1 %2").arg(was, now));
        }
    }
}

QStringList tl_cleanupImagesFolder(const QString &book, bool dryRun)
{
    if (!platform::settings().boolValue(QLatin1String(S::CleanUpAttachments)))
        return {};
    if (platform::settings().integer(QLatin1String(keys::setting::ICloudSyncProgress)) != 0)
        return {};
    const QString images = path::appendingComponent(book, QLatin1String(names::TLImages));
    if (!QFileInfo(images).isDir())
        return {};
    const SingleFlight flight(book);
    if (!flight.owns())
        return {};

    QStringList candidates;
    for (const QString &name : entriesOf(images)) {
        if (store::tl_pathIsPlaceholderStub(name)) {
            logLine(QStringLiteral("not deleting any images, iCloud still downloading"));
            return {};
        }
        if (name.endsWith(QStringLiteral(".plist")) ||
            inUseElsewhere(path::appendingComponent(images, name)))
            continue;
        candidates.append(name);
    }
    if (candidates.isEmpty()) {
        logLine(QStringLiteral("no images to check"));
        return {};
    }

    QStringList editable;
    for (const QString &name : entriesOf(book)) {
        if (store::tl_pathIsPlaceholderStub(name))
            return {};
        if (hasTextExtension(name) && store::lowerCasedExtension(name) != u"plist")
            editable.append(path::appendingComponent(book, name));
    }
    logLine(QStringLiteral("editable files: %1").arg(editable.join(u", ")));

    for (const QString &document : editable) {
        for (const QString &photo : embeddedPhotosOf(document))
            candidates.removeAll(photo.mid(imagesPrefix.size()));
    }
    candidates.removeAll(QLatin1String(names::BookProperties));
    logLine(
        QStringLiteral("images to delete, but will check again: %1").arg(candidates.join(u", ")));

    // The texts themselves: a property may be stale, a text never is.
    for (const QString &document : editable) {
        if (candidates.isEmpty())
            break;
        const std::optional<store::DecodedText> file = store::tl_stringWithContentsOfFile(document);
        if (!file) {
            logLine(QStringLiteral("### Break, read error: %1").arg(document));
            return {};
        }
        const QString entityText = convert::tl_stringByReplacingHTMLEntities(file->text);
        QStringList used;
        candidates.removeIf([&](const QString &name) {
            if (!textMentions(file->text, entityText, name))
                return false;
            used.append(imagesPrefix + name);
            return true;
        });
        if (!used.isEmpty() && !dryRun)
            store::tl_setProperty(document, embeddedPhotosOf(document) + used,
                                  QLatin1String(P::EmbeddedPhotos));
    }

    logLine(QStringLiteral("images to delete: %1").arg(candidates.join(u", ")));
    if (dryRun)
        return candidates;
    QStringList trashed;
    for (const QString &name : candidates) {
        const QString attachment = path::appendingComponent(images, name);
        if (!platform::trashItem(attachment))
            continue;
        trashed.append(name);
        const QString sidecar = store::tl_plistPath(attachment);
        if (QFileInfo::exists(sidecar))
            platform::trashItem(sidecar);
    }
    QStringList remaining = entriesOf(images);
    remaining.removeIf([](const QString &name) { return name.endsWith(QStringLiteral(".plist")); });
    logLine(QStringLiteral("remaining images in folder: %1").arg(remaining.join(u", ")));
    if (remaining.isEmpty() && !QDir().rmdir(images))
        platform::trashItem(images);
    return trashed;
}

} // namespace tl::links
