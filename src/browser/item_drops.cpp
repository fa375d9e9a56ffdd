#include "browser/item_drops.h"

#include "foundation/path_string.h"
#include "store/item_operations.h"
#include "store/item_path.h"
#include "store/safe_names.h"

#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace tl::browser {

QStringList droppedPaths(const QMimeData *data)
{
    QStringList paths;
    if (!data)
        return paths;
    for (const QUrl &url : data->urls())
        if (url.isLocalFile())
            paths << QFileInfo(url.toLocalFile()).absoluteFilePath();
    return paths;
}

int bringItemsIntoBook(const QStringList &paths, const QString &book)
{
    int arrived = 0;
    for (const QString &source : paths) {
        if (!QFileInfo::exists(source) || path::deletingLastComponent(source) == book ||
            source == book || book.startsWith(source + u'/'))
            continue;
        const QString target = store::tl_uniqueNameForFileatPath(path::lastComponent(source), book);
        const bool done = store::tl_itemIsChildOfTavelle(source)
                              ? store::tl_moveItemToPath(source, target)
                              : store::tl_copyItemToPath(source, target);
        if (done)
            ++arrived;
    }
    return arrived;
}

} // namespace tl::browser
