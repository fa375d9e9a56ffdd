#include "contexts/tag_database.h"

#include "contexts/context_keys.h"
#include "contexts/item_tags.h"
#include "contexts/library_walk.h"
#include "contexts/tag_stores.h"
#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "platform/settings.h"
#include "store/library_root.h"
#include "store/task_records.h"

#include <algorithm>
#include <future>

namespace tl::contexts {

namespace {

const QString kFavorite = QLatin1String(keys::FavoriteTag);

QStringList withoutFavorite(QStringList tags)
{
    tags.removeAll(kFavorite);
    return tags;
}

// The verified list, with the favourite mark carried over so that it is not
// lost from the item when the list is stored.
QStringList verifiedKeepingFavorite(const ItemOnDisk &item, const QStringList &available)
{
    QStringList tags = verifiedTags(item.tags, available);
    if (item.tags.contains(kFavorite))
        tags << kFavorite;
    return tags;
}

// Every item read from disk; a long list in two halves at once, as the
// reads wait on the disk more than they compute.
QList<ItemOnDisk> readItems(const TagStores &stores, const QStringList &paths)
{
    const auto readRange = [&](qsizetype from, qsizetype to) {
        QList<ItemOnDisk> items;
        items.reserve(to - from);
        for (qsizetype i = from; i < to; ++i)
            items << readItem(stores.absolute(paths[i]));
        return items;
    };
    constexpr qsizetype kSplitAbove = 256;
    if (paths.size() <= kSplitAbove)
        return readRange(0, paths.size());
    const qsizetype half = paths.size() / 2;
    auto second = std::async(std::launch::async, readRange, half, paths.size());
    QList<ItemOnDisk> items = readRange(0, half);
    items << second.get();
    return items;
}

// The favourites' event for the favourite mark, the contexts' for any other.
void postFor(const QString &tag)
{
    if (tag == kFavorite)
        NotificationCenter::defaultCenter().post(
            QLatin1String(events::BookViewShouldUpdateFavorites));
    else
        postContextsChanged(false);
}

} // namespace

QStringList tl_unfilteredListOfAllTags()
{
    return withoutFavorite(readAvailableTagsHealing());
}

QStringList tl_listOfAllAvailableTags()
{
    TagStores stores;
    const QStringList before = stores.available();
    const RootProbe probe(stores.root());
    TagIndex &index = stores.index();
    qsizetype dropped = 0;
    for (const QString &tag : before) {
        const QString key = index.findKey(tag);
        const QStringList paths = index.paths(key);
        QStringList kept;
        for (const QString &path : paths)
            probe.exists(path) ? void(kept << path) : void(++dropped);
        if (kept.isEmpty()) {
            index.removeKey(key);
            stores.dropFromListIfManaged(tag);
        } else if (kept.size() != paths.size()) {
            index.setPaths(key, kept);
        }
    }
    // A list that came with the library may name tags whose items this
    // machine has not collected yet: only a purge that found gone items
    // writes.
    if (dropped == 0)
        return withoutFavorite(before);
    if (stores.commit())
        postContextsChanged(false);
    return withoutFavorite(stores.available());
}

QStringList tl_verifiedTagList(const QString &path)
{
    const ItemOnDisk item = readItem(path);
    if (item.tags.isEmpty())
        return {};
    return verifiedTags(item.tags, readAvailableTagsHealing());
}

QStringList tl_listOfAllItemsForTag(const QString &tag)
{
    TagStores stores;
    TagIndex &index = stores.index();
    const QString key = index.findKey(tag);
    if (key.isEmpty())
        return {};
    const QStringList paths = index.paths(key);
    // The item's own list is the authority, and it counts only tags that are
    // available, but for the favourite mark.
    const bool counts = tag == kFavorite || stores.isAvailable(tag);
    QStringList kept;
    QStringList items;
    const QList<ItemOnDisk> read = counts ? readItems(stores, paths) : QList<ItemOnDisk>();
    for (qsizetype i = 0; i < read.size(); ++i) {
        if (!read[i].exists || !holdsCanonically(read[i].tags, tag))
            continue;
        kept << paths[i];
        items << read[i].path;
    }
    if (kept.size() < paths.size()) {
        index.setPaths(key, kept);
        stores.commit();
    }
    return items;
}

QStringList itemsBearingAllTags(const QStringList &tags)
{
    QStringList items;
    bool first = true;
    for (const QString &tag : tags) {
        if (tag.isEmpty())
            continue;
        const QStringList bearing = tl_listOfAllItemsForTag(tag);
        if (first) {
            items = bearing;
            first = false;
            continue;
        }
        const QSet<QString> set(bearing.cbegin(), bearing.cend());
        items.removeIf([&](const QString &path) { return !set.contains(path); });
    }
    return items;
}

int tl_numberOfItemsForTag(const QString &tag)
{
    const TagIndex index = loadIndex();
    const QStringList paths = index.paths(index.findKey(tag));
    if (!platform::settings().boolValue(QLatin1String(keys::HideDoneTasks)))
        return int(paths.size());
    const QString root = store::libraryRoot();
    return int(std::count_if(paths.cbegin(), paths.cend(), [&](const QString &path) {
        return !store::tl_taskIsDoneOrCanceled(store::tl_iconForTask(root + path));
    }));
}

void tl_setTag(const QString &path, const QString &tag)
{
    TagStores stores;
    const ItemOnDisk item = readItem(path);
    if (!item.exists || tag.isEmpty())
        return;
    QStringList tags = verifiedKeepingFavorite(item, stores.available());
    if (!tags.contains(tag)) {
        tags << tag;
        storeTags(item.path, tags);
    }
    if (stores.index().append(tag, stores.normalized(item.path)) && stores.commit())
        postFor(tag);
}

void tl_clearTag(const QString &path, const QString &tag)
{
    TagStores stores;
    const ItemOnDisk item = readItem(path);
    if (!item.exists)
        return;
    QStringList tags = verifiedKeepingFavorite(item, stores.available());
    if (tags.removeAll(tag) > 0)
        storeTags(item.path, tags);
    if (stores.index().remove(stores.index().findKey(tag), stores.normalized(item.path)) >= 0 &&
        stores.commit())
        postFor(tag);
}

void tl_clearAllTags(const QString &path)
{
    TagStores stores;
    const ItemOnDisk item = readItem(path);
    const QStringList tags = verifiedTags(item.tags, stores.available());
    if (tags.isEmpty())
        return;
    const QString key = stores.normalized(item.path);
    for (const QString &tag : tags)
        stores.index().remove(stores.index().findKey(tag), key);
    storeTags(item.path, item.tags.contains(kFavorite) ? QStringList{kFavorite} : QStringList());
    stores.commit();
    postContextsChanged(false);
}

bool tl_tagIsManagedAutomatically(const QString &tag)
{
    return !tag.isEmpty() && contextMarkers().contains(tag.front());
}

void tl_collectTagsInPlist(const QString &path)
{
    TagStores stores;
    collectTagsInPlist(stores, path);
    if (stores.commit())
        postContextsChanged(true);
}

void tl_collectTagsInPlists(const QStringList &paths)
{
    if (forEachInBatches(
            paths.size(),
            [&paths](TagStores &stores, qsizetype i) { collectTagsInPlist(stores, paths[i]); },
            nullptr))
        postContextsChanged(true);
}

void tl_updateContextsRemoving(const QString &path, const TagSet &removed, const TagSet &added)
{
    TagStores stores;
    updateContextsRemoving(stores, path, removed, added);
    if (stores.commit())
        postContextsChanged(true);
}

void tl_collectTagsFromText(const QString &path, const QString &text)
{
    TagStores stores;
    collectTagsFromText(stores, path, text);
    if (stores.commit())
        postContextsChanged(true);
}

bool tl_isFavorite(const QString &path)
{
    return readItem(path).tags.contains(kFavorite);
}

void tl_setFavorite(const QString &path)
{
    tl_setTag(path, kFavorite);
}

void tl_clearFavorite(const QString &path)
{
    tl_clearTag(path, kFavorite);
}

void tl_toggleFavorite(const QString &path)
{
    tl_isFavorite(path) ? tl_clearFavorite(path) : tl_setFavorite(path);
}

QStringList listOfFavorites()
{
    return tl_listOfAllItemsForTag(kFavorite);
}

bool installDefaultContexts()
{
    TagStores stores;
    if (!withoutFavorite(stores.available()).isEmpty())
        return false;
    stores.available() = {QStringLiteral("@Home"),    QStringLiteral("@Office"),
                          QStringLiteral("@Errands"), QStringLiteral("@Waiting"),
                          QStringLiteral("@Phone"),   QStringLiteral("@Computer")};
    stores.commit();
    postContextsChanged(false);
    return true;
}

} // namespace tl::contexts
