// Hits into items, the title of a search, and the result files.
#include "browser/library_search.h"
#include "foundation/clock.h"
#include "foundation/path_string.h"
#include "foundation/plist.h"
#include "platform/folders.h"
#include "search/searchable_items.h"
#include "store/document_file.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/list_row.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace tl::browser {

QStringList readResultFile(const QString &file)
{
    const std::optional<QByteArray> bytes = store::tl_dataWithContentsOfFile(file);
    const std::optional<QVariant> value = bytes ? plist::parse(*bytes) : std::nullopt;
    QStringList paths;
    if (value)
        for (const QVariant &entry : value->toList())
            paths << entry.toString();
    return paths;
}

void writeResultFile(const QString &file, const QStringList &paths)
{
    QDir().mkpath(path::deletingLastComponent(file));
    store::tl_writeToFile(plist::toXml(QVariantList(paths.cbegin(), paths.cend())), file, false);
}

QStringList itemsForSearchHits(const QStringList &hits)
{
    QStringList items;
    QSet<QString> seen;
    for (const QString &hit : hits) {
        QString item = hit;
        if (hit.endsWith(u".plist")) {
            if (path::lastComponent(hit) == QLatin1String(names::BookProperties))
                item = path::deletingLastComponent(hit);
            else if (const QString named = path::deletingExtension(hit); QFileInfo::exists(named))
                item = named;
            else
                continue;
        }
        if (!seen.contains(item)) {
            seen.insert(item);
            items << item;
        }
    }
    return items;
}

QString searchResultsTitle(const QString &searchText, qsizetype hits, const QString &scope)
{
    const QString search = QStringLiteral("%1: %2 - %3 %4")
                               .arg(QStringLiteral("Search"), searchText)
                               .arg(hits)
                               .arg(QStringLiteral("Hits"));
    if (scope.isEmpty() || scope == store::libraryRoot())
        return search;
    return QStringLiteral("%1 ⟩ %2").arg(path::lastComponent(scope), search);
}

QString lastSearchResultsFile()
{
    return platform::temporaryFolder() + QStringLiteral("/LastSearchresultsItemsPath.txt");
}

QString recentlyModifiedItemsFile()
{
    return platform::temporaryFolder() + QStringLiteral("/RecentlyModifiedItems.txt");
}

QStringList lastSearchResults()
{
    return readResultFile(lastSearchResultsFile());
}

QStringList pathsOfRows(const QList<store::ListRow> &rows)
{
    QStringList paths;
    for (const store::ListRow &row : rows)
        paths << row.path;
    return paths;
}

QList<store::ListRow> tl_recentlyModifiedItems(qint64 recentlyModifiedSince)
{
    const qint64 since =
        clock().now().addSecs(-(recentlyModifiedSince * 604800 + 604800)).toMSecsSinceEpoch() *
        1000000;
    QList<store::ListRow> rows;
    search::forEachSearchableItem(store::libraryRoot(), [&](const search::ItemStamp &item) {
        if (!item.isFolder && item.modified > since &&
            !store::tl_pathIsExcludedFromRecentlyModified(item.path))
            rows << store::tl_rowForItem(item.path);
    });
    store::tl_sortByParameter(rows, QStringLiteral("modDate"), true);
    writeResultFile(recentlyModifiedItemsFile(), pathsOfRows(rows));
    return rows;
}

} // namespace tl::browser
