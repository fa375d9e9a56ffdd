#include "browser/item_drops.h"

#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "importers/mime_pasteboard.h"
#include "store/item_operations.h"
#include "store/item_path.h"
#include "store/safe_names.h"

#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace tl::browser {

namespace {

DroppedFileImport &droppedFileImport()
{
    static DroppedFileImport import;
    return import;
}

// The files the import took are gone from the list; answers how many.
qsizetype handOverToImport(QStringList &paths, const QString &book)
{
    const DroppedFileImport &import = droppedFileImport();
    QStringList outside;
    for (const QString &path : std::as_const(paths))
        if (!store::tl_itemIsChildOfTavelle(path))
            outside << path;
    if (!import || outside.isEmpty())
        return 0;
    const QStringList left = import(outside, book);
    return paths.removeIf(
        [&](const QString &path) { return outside.contains(path) && !left.contains(path); });
}

} // namespace

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

bool canDropOnBook(const QMimeData *data)
{
    return data && (!droppedPaths(data).isEmpty() || importers::offersImportableFormat(*data));
}

QString addDocumentFromMimeData(const QMimeData &data, const QString &book)
{
    const importers::PastedDocument pasted =
        importers::tl_addDocumentFromPasteboard(book, importers::pasteboardFromMimeData(data));
    if (!pasted.path.isEmpty())
        NotificationCenter::defaultCenter().post(events::ShowItemAtPath, {{"path", pasted.path}});
    return pasted.path;
}

void setDroppedFileImport(DroppedFileImport import)
{
    droppedFileImport() = std::move(import);
}

bool dropOnBook(const QMimeData *data, const QString &book)
{
    if (!data)
        return false;
    QStringList paths = droppedPaths(data);
    if (!paths.isEmpty()) {
        const qsizetype imported = handOverToImport(paths, book);
        return bringItemsIntoBook(paths, book) > 0 || imported > 0;
    }
    return !addDocumentFromMimeData(*data, book).isEmpty();
}

} // namespace tl::browser
