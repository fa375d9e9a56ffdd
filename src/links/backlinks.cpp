#include "links/backlinks.h"

#include "foundation/compare.h"
#include "foundation/plist.h"
#include "links/path_lock.h"
#include "platform/file_ops.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/plist_file.h"

#include <QFileInfo>
#include <functional>

namespace tl::links {

namespace P = keys::property;

namespace {

const QString backlinksKey = QLatin1String(P::Backlinks);
const QString referencedPathKey = QLatin1String(P::ReferencedPath);

bool containsPath(const QStringList &list, const QString &path)
{
    return std::any_of(list.begin(), list.end(),
                       [&](const QString &entry) { return samePath(entry, path); });
}

QStringList withoutDuplicates(const QStringList &list)
{
    QStringList unique;
    for (const QString &entry : list) {
        if (!containsPath(unique, entry))
            unique.append(entry);
    }
    return unique;
}

// Reads the item's properties, lets `change` edit them, and writes them when
// their stored form changed. Answers whether they changed.
bool updateInPlace(const QString &file, const std::function<void(QVariantMap &)> &change,
                   bool atomically)
{
    const auto lock = lockPath(file);
    QVariantMap properties = store::readPlistDictionary(file);
    const QByteArray before = plist::toXml(properties);
    change(properties);
    if (plist::toXml(properties) == before)
        return false;
    return store::writePlistFile(file, properties, atomically);
}

QVariantMap dictionaryIn(const std::optional<QByteArray> &bytes)
{
    const std::optional<QVariant> value = bytes ? plist::parse(*bytes) : std::nullopt;
    return value && value->typeId() == QMetaType::QVariantMap ? value->toMap() : QVariantMap{};
}

} // namespace

QString absoluteItemPath(const QString &path)
{
    if (path.isEmpty() || store::tl_itemIsChildOfTavelle(path))
        return path;
    return store::libraryRoot() + path;
}

bool samePath(const QString &a, const QString &b)
{
    return localizedCompare(a, b) == 0;
}

QStringList backlinksOf(const QString &item)
{
    return store::readPlistDictionary(store::propertiesFilePath(item))
        .value(backlinksKey)
        .toStringList();
}

QString referencedPathOf(const QString &item)
{
    return store::readPlistDictionary(store::propertiesFilePath(item))
        .value(referencedPathKey)
        .toString();
}

bool hasMismatch(const QString &item)
{
    const QString stored = referencedPathOf(item);
    return !stored.isEmpty() && !samePath(stored, store::tl_normalizedPath(item));
}

BacklinkLists::BacklinkLists(const QByteArray &tag, qsizetype heldLimit)
    : tag_(tag), heldLimit_(heldLimit)
{
}

BacklinkLists::Held BacklinkLists::read(const QString &file)
{
    Held held;
    held.file.path = file;
    {
        const auto lock = lockPath(file);
        held.file.original = platform::readFile(file);
    }
    held.properties = dictionaryIn(held.file.original);
    held.file.bytes = plist::toXml(held.properties);
    return held;
}

bool BacklinkLists::update(const QString &item, const Change &change)
{
    const QString file = store::propertiesFilePath(item);
    if (!tag_)
        return updateInPlace(file, change, false);
    if (failed_)
        return false;
    const QString key = heldFileKey(file);
    const auto found = held_.find(key);
    std::optional<Held> fresh = found == held_.end() ? std::optional(read(file)) : std::nullopt;
    Held &held = fresh ? *fresh : *found;
    QVariantMap changed = held.properties;
    change(changed);
    const QByteArray bytes = plist::toXml(changed);
    if (bytes == held.file.bytes) {
        if (fresh)
            untouched_.insert(file);
        return false;
    }
    // The original, the new bytes and the dictionary, roughly.
    heldBytes_ += (bytes.size() - (fresh ? 0 : held.file.bytes.size())) * 3 +
                  (fresh ? held.file.original.value_or(QByteArray()).size() : 0);
    held.properties = std::move(changed);
    held.file.bytes = bytes;
    held.changes.append(change);
    if (fresh) {
        order_.append(key);
        held_.insert(key, std::move(*fresh));
    }
    if (heldBytes_ > heldLimit_)
        failed_ = !commit();
    return true;
}

bool BacklinkLists::commit()
{
    if (!tag_)
        return true;
    if (failed_)
        return false;
    QList<const HeldFile *> files;
    for (const QString &key : std::as_const(order_))
        files.append(&held_.constFind(key)->file);
    const std::optional<QList<qsizetype>> changedMeanwhile =
        writeTogether(*tag_, files, untouched_.values(), [](qsizetype, bool) {});
    if (changedMeanwhile) {
        // What someone else wrote stays; the lists change on top of it.
        for (const qsizetype i : *changedMeanwhile) {
            const QList<Change> &changes = held_.constFind(order_[i])->changes;
            updateInPlace(
                files[i]->path,
                [&](QVariantMap &properties) {
                    for (const Change &change : changes)
                        change(properties);
                },
                true);
        }
    }
    held_.clear();
    order_.clear();
    untouched_.clear();
    heldBytes_ = 0;
    return changedMeanwhile.has_value();
}

void BacklinkLists::setReferencedPath(const QString &item, const QString &normalizedPath)
{
    update(item, [normalizedPath](QVariantMap &properties) {
        properties.insert(referencedPathKey, normalizedPath);
    });
}

void BacklinkLists::setBacklinks(const QString &item, const QStringList &backlinks)
{
    update(item, [unique = withoutDuplicates(backlinks),
                  normalized = store::tl_normalizedPath(item)](QVariantMap &properties) {
        properties.insert(backlinksKey, unique);
        properties.insert(referencedPathKey, normalized);
    });
}

void BacklinkLists::addBacklink(const QString &referenced, const QString &referencingDocument)
{
    const QString item = absoluteItemPath(referenced);
    if (!QFileInfo::exists(item))
        return;
    const QString normalized = store::tl_normalizedPath(item);
    const QString source = store::tl_normalizedPath(referencingDocument);
    const bool changed = update(item, [normalized, source](QVariantMap &properties) {
        QStringList backlinks = withoutDuplicates(properties.value(backlinksKey).toStringList());
        const QString stored = properties.value(referencedPathKey).toString();
        if (backlinks.isEmpty() || stored.isEmpty())
            properties.insert(referencedPathKey, normalized);
        else if (!samePath(stored, normalized))
            logLine(
                QStringLiteral("### MISMATCH: should be %1, but is %2").arg(normalized, stored));
        if (!containsPath(backlinks, source))
            backlinks.append(source);
        properties.insert(backlinksKey, backlinks);
    });
    if (changed)
        logLine(QStringLiteral("backlinks changed for %1").arg(item));
}

bool BacklinkLists::removeBacklinks(const QString &item)
{
    return update(absoluteItemPath(item), [](QVariantMap &properties) {
        properties.remove(backlinksKey);
        properties.remove(referencedPathKey);
    });
}

void BacklinkLists::changeBacklinkFrom(const QString &referenced, const QString &from,
                                       const QString &to)
{
    const QString item = absoluteItemPath(referenced);
    if (!QFileInfo::exists(item))
        return;
    const QString old = store::tl_normalizedPath(from);
    const QString now = to.isEmpty() ? QString() : store::tl_normalizedPath(to);
    const QString root = store::libraryRoot();
    update(item, [old, now, root](QVariantMap &properties) {
        QStringList backlinks = properties.value(backlinksKey).toStringList();
        backlinks.removeIf([&](const QString &entry) { return samePath(entry, old); });
        if (!now.isEmpty())
            backlinks.append(now);
        backlinks.removeIf([&](const QString &entry) { return !QFileInfo::exists(root + entry); });
        if (backlinks.isEmpty())
            properties.remove(backlinksKey);
        else
            properties.insert(backlinksKey, withoutDuplicates(backlinks));
    });
}

void setReferencedPath(const QString &item, const QString &normalizedPath)
{
    BacklinkLists().setReferencedPath(item, normalizedPath);
}

void setBacklinks(const QString &item, const QStringList &backlinks)
{
    BacklinkLists().setBacklinks(item, backlinks);
}

void tl_addBacklink(const QString &referenced, const QString &referencingDocument)
{
    BacklinkLists().addBacklink(referenced, referencingDocument);
}

bool tl_removeBacklinks(const QString &item)
{
    return BacklinkLists().removeBacklinks(item);
}

void tl_changeBacklinkFrom(const QString &referenced, const QString &from, const QString &to)
{
    BacklinkLists().changeBacklinkFrom(referenced, from, to);
}

} // namespace tl::links
