#include "contexts/tag_collection.h"

#include "contexts/context_keys.h"
#include "contexts/item_tags.h"
#include "contexts/library_walk.h"
#include "contexts/tag_files.h"
#include "contexts/tag_stores.h"
#include "foundation/clock.h"
#include "foundation/dates.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"

#include <QStringList>

namespace tl::contexts {

namespace {

std::atomic_bool busy{false};

bool isCollected(QStringView name)
{
    return name.endsWith(QLatin1String(".plist")) &&
           !name.startsWith(QLatin1String(names::TasklistDetails).chopped(6));
}

qint64 modifiedMs(const struct stat &status)
{
    return qint64(status.st_mtim.tv_sec) * 1000 + status.st_mtim.tv_nsec / 1000000;
}

QStringList plistsChangedAfter(const QString &root, const QDateTime &date,
                               const std::atomic_bool *stop)
{
    const qint64 after = date.toMSecsSinceEpoch();
    QStringList plists;
    walkLibraryFiles(
        root, isCollected,
        [&](const QString &path, const struct stat &status) {
            if (modifiedMs(status) > after)
                plists << path;
        },
        stop);
    return plists;
}

// A favourite synchronised from another device lies in the index but not
// yet in the item's property.
void restoreFavorites(TagStores &stores)
{
    const QString favorite = QLatin1String(keys::FavoriteTag);
    for (const QString &path : stores.index().paths(favorite)) {
        const ItemOnDisk item = readItem(stores.absolute(path));
        if (item.exists && !item.tags.contains(favorite))
            storeTags(item.path, item.tags + QStringList{favorite});
    }
}

} // namespace

CollectionResult collectNewContexts(const std::atomic_bool *stop)
{
    CollectionResult result;
    if (busy.exchange(true))
        return result;
    result.ran = true;
    const QDateTime last = autocollectDate();
    logLine(
        QStringLiteral("collecting contexts, last check was %1").arg(last.toString(Qt::ISODate)));
    const QString root = store::libraryRoot();
    const QStringList plists = plistsChangedAfter(root, last, stop);
    result.plists = plists.size();
    logLine(QStringLiteral("modified plists: %1").arg(plists.size()));
    const bool wasEmpty = readAvailableTagsHealing().isEmpty();
    forEachInBatches(
        plists.size(),
        [&](TagStores &stores, qsizetype i) { collectTagsInPlist(stores, plists.at(i)); }, stop);
    {
        TagStores stores;
        restoreFavorites(stores);
        result.listFilledFromEmpty = wasEmpty && !stores.available().isEmpty();
    }
    // The date moves on only when the run is through.
    if (!stop || !stop->load())
        setAutocollectDate(clock().now());
    if (result.plists > 0)
        postContextsChanged(true);
    logLine(QStringLiteral("done collecting plists"));
    busy = false;
    return result;
}

CollectionResult tl_refreshContexts(const std::atomic_bool *stop)
{
    if (collectionIsBusy())
        return {};
    {
        TagStores stores;
        const QString favorite = QLatin1String(keys::FavoriteTag);
        const QStringList favorites = stores.index().paths(favorite);
        for (const QString &key : stores.index().keys())
            stores.index().removeKey(key);
        if (!favorites.isEmpty())
            stores.index().setPaths(favorite, favorites);
        stores.commit();
    }
    setAutocollectDate(distantPast());
    return collectNewContexts(stop);
}

bool collectionIsBusy()
{
    return busy.load();
}

} // namespace tl::contexts
