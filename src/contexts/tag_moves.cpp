#include "contexts/context_keys.h"
#include "contexts/item_tags.h"
#include "contexts/tag_database.h"
#include "contexts/tag_stores.h"
#include "foundation/compare.h"
#include "store/item_path.h"

#include <QFileInfo>

namespace tl::contexts {

// Runs before the item moves and also after it, when the source is gone.
void tl_changePathInTagDBToPath(const QString &source, const QString &movedTo)
{
    // An item leaving the library or going into a trash leaves the index.
    const bool stays = !movedTo.isEmpty() && store::tl_itemIsChildOfTavelle(movedTo) &&
                       !store::tl_itemIsTrashed(movedTo);
    const QString target = stays ? movedTo : QString();
    TagStores stores;
    TagIndex &index = stores.index();
    const ItemOnDisk from = readItem(source);
    const ItemOnDisk to = target.isEmpty() ? ItemOnDisk() : readItem(target);
    const bool isBook =
        (from.exists ? from.isBook : to.isBook) || QFileInfo(source).suffix().isEmpty();

    // A document names its own keys; a book's descendants may stand under
    // any key, and so may an item that is gone.
    QStringList keys;
    if (from.exists && !isBook) {
        for (const QString &tag : from.tags)
            if (const QString key = index.findKey(tag); !key.isEmpty())
                keys << key;
    } else {
        keys = index.keys();
    }
    const QStringList keptTags = from.exists ? from.tags : to.tags;

    const QString oldPath = stores.normalized(source);
    const QString newPath = target.isEmpty() ? QString() : stores.normalized(target);
    bool favorites = false;
    for (const QString &key : keys) {
        favorites |= key == QLatin1String(keys::FavoriteTag);
        const qsizetype position = index.remove(key, oldPath);
        if (isBook)
            index.replacePrefix(key, oldPath + u'/',
                                newPath.isEmpty() ? QString() : newPath + u'/');
        if (!newPath.isEmpty() && position >= 0 && (!isBook || holdsCanonically(keptTags, key)))
            index.insert(key, position, newPath);
        if (index.paths(key).isEmpty()) {
            index.removeKey(key);
            stores.dropFromListIfManaged(key);
        }
    }
    stores.commit();
    postContextsChanged(favorites);
}

} // namespace tl::contexts
