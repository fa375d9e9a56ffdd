#include "importers/shared_items.h"

#include "contexts/context_words.h"
#include "contexts/tag_database.h"
#include "convert/envelope.h"
#include "convert/markdown_to_html.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "platform/file_ops.h"
#include "platform/folders.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/first_line.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/properties.h"
#include "store/safe_names.h"

#include <QDirIterator>
#include <QFileInfo>

namespace tl::importers {

namespace {

const char kImportingSharedItems[] = "importingSharedItems";

// What file managers of other systems leave behind.
bool isLeftover(const QString &name)
{
    return name.endsWith(QLatin1String(".DS_Store")) || name.startsWith(QLatin1String("._")) ||
           name == u".TemporaryItems";
}

// A free path for the name in the shared items' folder of the book.
std::optional<QString> freeSharedPath(const QString &name, const QString &relativeBook)
{
    const QString folder = path::appendingComponent(sharedItemsFolder(), relativeBook);
    if (relativeBook.split(u'/').contains(QStringLiteral("..")) || !platform::makeFolder(folder)) {
        logLine(QStringLiteral("share: cannot make %1").arg(folder));
        return std::nullopt;
    }
    return store::tl_uniqueNameForFileatPath(name, folder);
}

// Where the item of a shared file goes: the same place below the library
// root, or the root when its book is missing.
QString targetFor(const QString &source, const QString &folder, const QString &root)
{
    const QString target = path::appendingComponent(root, source.mid(folder.size() + 1));
    if (QFileInfo(path::deletingLastComponent(target)).isDir())
        return target;
    logLine(QStringLiteral("parent does not exist for %1").arg(target));
    const QString atRoot = path::appendingComponent(root, path::lastComponent(source));
    logLine(QStringLiteral("... using %1").arg(atRoot));
    return atRoot;
}

struct NewItem
{
    QString path;
    QString text; // whose contexts the item takes
};

// What a shared file becomes. `placed` tells whether the source may go: a
// file that could not be placed stays for the next time.
struct Outcome
{
    std::optional<NewItem> item;
    bool placed = true;
};

QString newDocumentExtension()
{
    const QString type =
        platform::settings().string(QLatin1String(keys::setting::DefaultDocumentType));
    return type.isEmpty() ? QStringLiteral("html") : type;
}

Outcome moveToFreeName(const QString &source, const QString &folder)
{
    const QString target = store::tl_uniqueNameForFileatPath(path::lastComponent(source), folder);
    if (!platform::moveItem(source, target))
        return {std::nullopt, false};
    return {NewItem{target, {}}, true};
}

Outcome written(const QString &text, const QString &target, const QString &contextsOf)
{
    if (!store::tl_writeToFile(text, target, false, store::TextEncoding::UTF8))
        return {std::nullopt, false};
    return {NewItem{target, contextsOf}, true};
}

Outcome importText(const QString &source, const QString &text, const QString &folder)
{
    const QString extension = newDocumentExtension();
    QString stem = store::tl_firstLineOfText(text);
    if (stem.isEmpty())
        stem = path::deletingExtension(path::lastComponent(source));
    const QString target =
        store::tl_uniqueNameForFileatPath(path::appendingExtension(stem, extension), folder);
    const QString contents =
        extension == u"html"
            ? convert::tl_createFormattedDocWithBody(
                  target,
                  convert::tl_getInnerHTML(convert::tl_markdownToHTML(QStringLiteral("# ") + text)))
            : text;
    return written(contents, target, text);
}

Outcome importPage(const QString &page, const QString &target)
{
    static const Regex title(QStringLiteral("<title>(.+)</title"));
    QString stem = path::deletingExtension(path::lastComponent(target));
    if (const std::optional<RegexMatch> match = title.match(page))
        stem = store::tl_escapeIllegalCharacters(match->capturedString(page, 1));
    // A document of the same name stays: the page takes a free one.
    const QString path =
        store::tl_uniqueNameForFileatPath(path::appendingExtension(stem, QStringLiteral("html")),
                                          path::deletingLastComponent(target));
    return written(page, path, {});
}

Outcome importFile(const QString &source, const QString &target)
{
    const QString folder = path::deletingLastComponent(target);
    const QString extension = store::lowerCasedExtension(source);
    if (extension == u"txt" || extension == u"md" || extension == u"html") {
        // Text that is not UTF-8 comes in as the file it is.
        const std::optional<QString> text =
            store::tl_stringWithContentsOfFile(source, store::TextEncoding::UTF8);
        if (!text)
            return moveToFreeName(source, folder);
        if (text->isEmpty())
            return {};
        return extension == u"html" ? importPage(*text, target) : importText(source, *text, folder);
    }
    if (path::lastComponent(source) == QLatin1String(names::TasklistDetails)) {
        if (QFileInfo::exists(target))
            platform::removeItem(target);
        return platform::moveItem(source, target) ? Outcome{} : Outcome{std::nullopt, false};
    }
    if (!extension.isEmpty() && extension != u"plist")
        return moveToFreeName(source, folder);
    return {};
}

// The properties, contexts and creation date of the source go to the item.
void finishItem(const NewItem &item, const QString &source, const QDateTime &created)
{
    const QString properties = store::tl_plistPath(source);
    if (QFileInfo::exists(properties))
        platform::moveItem(properties, store::tl_plistPath(item.path));
    if (contexts::contextsExtractedAutomatically()) {
        contexts::TagSet added = contexts::tl_extractTagsFromString(item.text);
        const QString description =
            store::tl_propertyForKey(item.path, QLatin1String(keys::property::Description))
                .toString();
        if (!description.isEmpty())
            added.unite(contexts::tl_extractTagsFromString(description));
        if (!added.isEmpty())
            contexts::tl_updateContextsRemoving(item.path, {}, added);
    }
    if (created.isValid())
        store::tl_setCreationDate(item.path, created);
    NotificationCenter::defaultCenter().post(events::FileModifiedOnDisk, {{"path", item.path}});
}

// A properties file stays while the item it describes waits beside it.
bool isPropertiesOfWaitingItem(const QString &source)
{
    return store::lowerCasedExtension(source) == u"plist" &&
           QFileInfo::exists(path::deletingExtension(source));
}

QStringList entriesBelow(const QString &folder)
{
    QStringList entries;
    QDirIterator walk(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext())
        entries << walk.next();
    entries.sort();
    return entries;
}

} // namespace

QString sharedItemsFolder()
{
    return path::appendingComponent(platform::applicationSupportFolder(),
                                    QStringLiteral("SharedItems"));
}

std::optional<QString> shareFile(const QString &path, const QString &relativeBook)
{
    const std::optional<QString> target = freeSharedPath(path::lastComponent(path), relativeBook);
    if (!target || !platform::copyItem(path, *target)) {
        logLine(QStringLiteral("share: cannot copy %1").arg(path));
        return std::nullopt;
    }
    return target;
}

std::optional<QString> shareText(const QString &text, const QString &relativeBook)
{
    const QString stem = store::tl_firstLineOfText(text);
    const std::optional<QString> target =
        freeSharedPath(path::appendingExtension(stem.isEmpty() ? QStringLiteral("Shared") : stem,
                                                QStringLiteral("txt")),
                       relativeBook);
    if (!target || !store::tl_writeToFile(text, *target, false, store::TextEncoding::UTF8)) {
        logLine(QStringLiteral("share: cannot write the text"));
        return std::nullopt;
    }
    return target;
}

QStringList TLStaticFunctions::importSharedItems()
{
    const QString folder = sharedItemsFolder();
    const QString root = store::libraryRoot();
    if (root.isEmpty() || !QFileInfo(folder).isDir())
        return {};
    platform::Settings &settings = platform::settings();
    settings.set(QLatin1String(kImportingSharedItems), true);
    QStringList created;
    bool processedFile = false;
    for (const QString &source : entriesBelow(folder)) {
        const QFileInfo info(source);
        if (isLeftover(info.fileName())) {
            platform::removeItem(source);
            continue;
        }
        // Gone with a leftover folder, or a folder: nothing to take.
        if (!info.exists() || info.isDir())
            continue;
        processedFile = true;
        const QDateTime born = platform::creationDate(source).value_or(
            platform::modificationDate(source).value_or(QDateTime()));
        const Outcome outcome = importFile(source, targetFor(source, folder, root));
        if (outcome.item) {
            finishItem(*outcome.item, source, born);
            created << outcome.item->path;
        }
        if (outcome.placed && QFileInfo::exists(source) && !isPropertiesOfWaitingItem(source))
            platform::removeItem(source);
    }
    if (!processedFile)
        for (const QString &entry : QDir(folder).entryList(QDir::AllEntries | QDir::Hidden |
                                                           QDir::System | QDir::NoDotAndDotDot))
            platform::removeItem(path::appendingComponent(folder, entry));
    settings.remove(QLatin1String(kImportingSharedItems));
    return created;
}

} // namespace tl::importers
