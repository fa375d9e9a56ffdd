#pragma once

#include "search/search_query.h"
#include "store/list_row.h"

#include <QString>
#include <QStringList>

namespace tl::search {
class SearchIndex;
}

// Full-text search of the library: terms out of the search text, the fields
// and scope the settings choose, hits turned into items, and the result
// files the Search Results and Recently Modified smart books list.
namespace tl::browser {

// Typographic quotation marks count as straight ones; quoted parts are
// phrases kept whole, the rest is split on blanks; an unclosed quotation mark
// makes the rest a phrase.
QStringList tl_arrayOfSearchTermsInString(const QString &text);

// searchTitle: names only; searchContent: contents only; neither: both.
search::Field searchFieldFromSettings();
// The shown book when searchAllBooks is off and it exists, else the root.
QString searchScope(const QString &shownBook);

// A hit in BookProperties.plist stands for its book, one in NAME.plist for
// NAME when that exists; other property lists are dropped. Each path once.
QStringList itemsForSearchHits(const QStringList &hits);
// "Search: TEXT - N Hits", with "BOOK ⟩ " in front for a search of one book.
QString searchResultsTitle(const QString &searchText, qsizetype hits, const QString &scope);

// Where the index or the walk answers from.
enum class SearchSource {
    // The index as it stands: the window keeps it current from file events.
    Index,
    // The index after one walk brings it up to date: for the command.
    FreshIndex,
    // Every item read anew, with no index.
    Walk,
};

struct SearchOutcome
{
    // The items' rows, sorted by title.
    QList<store::ListRow> rows;
    QString title;
    QStringList paths() const;
};
// Runs a search and writes its items to the last search's result file.
SearchOutcome runLibrarySearch(const QString &searchText, const QString &scope, search::Field field,
                               SearchSource source);

// The index of the current library, made on first use and anew after a
// change of root.
search::SearchIndex &searchIndexOfLibrary();

// The result files in the temporary folder.
QString lastSearchResultsFile();
QString recentlyModifiedItemsFile();
// A result file: a property-list array of full paths, written whole and not
// atomically, as derived lists are.
void writeResultFile(const QString &file, const QStringList &paths);
QStringList readResultFile(const QString &file);
// The last search's items, in result order.
QStringList lastSearchResults();
// Documents modified within recentlyModifiedSince × 7 + 7 days, newest first,
// also written to the Recently Modified result file.
QList<store::ListRow> tl_recentlyModifiedItems(qint64 recentlyModifiedSince);
QStringList pathsOfRows(const QList<store::ListRow> &rows);

} // namespace tl::browser
