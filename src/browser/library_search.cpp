// Running a search: from the index or by a walk, in the scope and fields the
// settings choose.
#include "browser/library_search.h"

#include "browser/browser_keys.h"
#include "platform/settings.h"
#include "search/search_index.h"
#include "search/search_walk.h"
#include "store/item_path.h"
#include "store/library_root.h"
#include "store/list_row.h"

#include <QFileInfo>
#include <QMutex>
#include <memory>

namespace tl::browser {

namespace S = keys::setting;

namespace {

QStringList searchHits(const search::Query &query, const QString &scope, SearchSource source)
{
    if (source == SearchSource::Walk)
        return search::walkSearch(query, scope);
    search::SearchIndex &index = searchIndexOfLibrary();
    if (source == SearchSource::FreshIndex)
        index.bringUpToDate();
    return index.search(query, scope);
}

} // namespace

search::Field searchFieldFromSettings()
{
    platform::Settings &settings = platform::settings();
    if (settings.boolValue(QLatin1String(S::SearchTitle)))
        return search::Field::Name;
    if (settings.boolValue(QLatin1String(S::SearchContent)))
        return search::Field::Content;
    return search::Field::NameOrContent;
}

QString searchScope(const QString &shownBook)
{
    if (!platform::settings().boolValue(QLatin1String(S::SearchAllBooks)) && !shownBook.isEmpty() &&
        store::tl_pathIsBook(shownBook) && QFileInfo(shownBook).isDir())
        return shownBook;
    return store::libraryRoot();
}

QStringList SearchOutcome::paths() const
{
    return pathsOfRows(rows);
}

search::SearchIndex &searchIndexOfLibrary()
{
    static QMutex guard;
    static std::unique_ptr<search::SearchIndex> index;
    static QString indexedRoot;
    const QMutexLocker lock(&guard);
    const QString root = store::libraryRoot();
    if (!index || indexedRoot != root) {
        index.reset();
        index = std::make_unique<search::SearchIndex>(root,
                                                      search::SearchIndex::databasePathOfLibrary());
        indexedRoot = root;
    }
    return *index;
}

SearchOutcome runLibrarySearch(const QString &searchText, const QString &scope, search::Field field,
                               SearchSource source)
{
    const QStringList hits =
        searchHits(search::Query{tl_arrayOfSearchTermsInString(searchText), field}, scope, source);
    SearchOutcome results;
    // Results are rows without their books' order lists.
    for (const QString &item : itemsForSearchHits(hits))
        results.rows << store::tl_rowForItem(item, store::BookOrder());
    store::tl_sortByParameter(results.rows, QStringLiteral("title"), false);
    writeResultFile(lastSearchResultsFile(), results.paths());
    results.title = searchResultsTitle(searchText, results.rows.size(), scope);
    return results;
}

} // namespace tl::browser
