#pragma once

#include "search/search_query.h"

#include <QString>
#include <QStringList>
#include <memory>

// The library's search index: an SQLite database of every searchable item's
// folded name and the words of its text, in the library's cache folder.
// Losing it costs only a rebuild; a database SQLite finds damaged is thrown
// away and built anew, never trusted. Safe to use from several threads:
// searches read while an update writes.
namespace tl::search {

class SearchIndex
{
public:
    // The index of the library below root, kept at databasePath.
    SearchIndex(const QString &root, const QString &databasePath);
    ~SearchIndex();
    SearchIndex(const SearchIndex &) = delete;
    SearchIndex &operator=(const SearchIndex &) = delete;

    // The index file of the current library, in its cache folder.
    static QString databasePathOfLibrary();

    // One walk of the library: new files and those whose modification date
    // or size changed are read, gone ones forgotten. False when the index
    // cannot be written.
    bool bringUpToDate();
    // Reads the item at path again, a folder with everything below it, or
    // forgets it when it is gone.
    void refreshItem(const QString &path);
    // Forgets everything and reads the whole library.
    bool rebuild();

    // Paths of the items below the scope folder that match the query, as
    // fresh as the index is.
    QStringList search(const Query &query, const QString &scope);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace tl::search
