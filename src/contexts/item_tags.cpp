#include "contexts/item_tags.h"

#include "contexts/context_keys.h"
#include "contexts/tag_database.h"
#include "contexts/tag_stores.h"
#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/plist_file.h"
#include "store/properties.h"

#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>

namespace tl::contexts {

namespace {

const QString kTagsKey = QLatin1String(tl::keys::property::Tags);
const QString kBookProperties = QLatin1String(names::BookProperties);

// The item a properties file stands for: the book for BookProperties.plist,
// the name without ".plist" for another; any other path stands for itself.
QString itemOfPath(const QString &path)
{
    if (QFileInfo(path).fileName() == kBookProperties)
        return QFileInfo(path).path();
    if (path.endsWith(QLatin1String(".plist")))
        return path.chopped(6);
    return path;
}

} // namespace

bool holdsCanonically(const QStringList &list, const QString &tag)
{
    if (list.contains(tag))
        return true;
    for (const QString &entry : list)
        if (canonicallyEqual(entry, tag))
            return true;
    return false;
}

ItemOnDisk readItem(const QString &absolutePath)
{
    ItemOnDisk item;
    struct stat st
    {
    };
    item.path = absolutePath;
    if (::stat(QFile::encodeName(item.path).constData(), &st) != 0) {
        // The index keeps composed names; the disk may hold the decomposed twin.
        item.path = decomposed(absolutePath);
        if (item.path == absolutePath || ::stat(QFile::encodeName(item.path).constData(), &st) != 0)
            return item;
    }
    item.exists = true;
    item.isBook = S_ISDIR(st.st_mode);
    const QString plist =
        item.isBook ? item.path + u'/' + kBookProperties : store::tl_plistPath(item.path);
    for (const QVariant &tag : store::readPlistDictionary(plist).value(kTagsKey).toList())
        if (!item.tags.contains(tag.toString()))
            item.tags << tag.toString();
    return item;
}

QStringList verifiedTags(const QStringList &raw, const QStringList &available)
{
    QStringList verified;
    for (const QString &tag : raw)
        if (!verified.contains(tag) && holdsCanonically(available, tag))
            verified << tag;
    return verified;
}

void storeTags(const QString &path, const QStringList &tags)
{
    store::tl_setProperty(path, tags.isEmpty() ? QVariant() : QVariant(tags), kTagsKey);
}

bool collectTagsInPlist(TagStores &stores, const QString &path)
{
    const QString itemPath = itemOfPath(path);
    const ItemOnDisk item = readItem(itemPath);
    if (!item.exists)
        return false;
    const QString key = stores.normalized(itemPath);
    TagIndex &index = stores.index();
    bool changed = false;
    QStringList fresh;
    for (const QString &tag : item.tags) {
        if (tag != QLatin1String(keys::FavoriteTag) && !stores.isAvailable(tag) &&
            !fresh.contains(tag))
            fresh << tag;
        changed |= index.append(tag, key);
    }
    // Only the available tags are swept: the favourite mark is kept in step
    // by setting and clearing it.
    const QStringList available = stores.available();
    for (const QString &tag : available) {
        // Most entries never held the item: one hash lookup decides.
        if (!index.holdsComposed(tag, key) || holdsCanonically(item.tags, tag) ||
            index.remove(tag, key) < 0)
            continue;
        changed = true;
        if (index.paths(tag).isEmpty()) {
            index.removeKey(tag);
            stores.dropFromListIfManaged(tag);
        }
    }
    stores.available() << fresh;
    return changed;
}

bool updateContextsRemoving(TagStores &stores, const QString &path, const TagSet &removed,
                            const TagSet &added)
{
    const ItemOnDisk item = readItem(path);
    if (!item.exists)
        return false;
    TagSet tags(item.tags.cbegin(), item.tags.cend());
    if (tags == added)
        return false;
    tags.subtract(removed);
    tags.unite(added);
    storeTags(path, QStringList(tags.cbegin(), tags.cend()));
    return collectTagsInPlist(stores, path);
}

bool collectTagsFromText(TagStores &stores, const QString &path, const QString &text)
{
    const TagSet found = tl_extractTagsFromString(text);
    if (found.isEmpty())
        return false;
    return updateContextsRemoving(stores, path, {}, found);
}

void postContextsChanged(bool favorites)
{
    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.post(QLatin1String(events::ReloadContextSmartBook));
    if (favorites)
        center.post(QLatin1String(events::BookViewShouldUpdateFavorites));
}

} // namespace tl::contexts
