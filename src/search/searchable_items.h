#pragma once

#include <QString>
#include <functional>
#include <string_view>

// The items a search looks at, found by one walk that reads no file.
namespace tl::search {

struct ItemStamp
{
    QString path;
    // Nanoseconds since the epoch.
    qint64 modified = 0;
    qint64 size = 0;
    bool isFolder = false;
};

// An item as the walk meets it, its path in the file system's encoding: a
// walk that only compares stamps need not make a string of every path.
struct EncodedItemStamp
{
    std::string_view path;
    qint64 modified = 0;
    qint64 size = 0;
    bool isFolder = false;

    ItemStamp decoded() const;
};

// Every item below the folder, the folder itself not included. Dot files and
// the library's resources (but for its style sheets) are left out; packages
// and linked folders are items whose insides are not entered.
void forEachSearchableItem(const QString &folder,
                           const std::function<void(const ItemStamp &)> &visit);

// The same items, in no particular order, visited from several threads at
// once: folders are listed side by side.
void forEachSearchableItemInParallel(const QString &folder,
                                     const std::function<void(const EncodedItemStamp &)> &visit);

// Whether the walk above, started at the root, would visit the path.
bool isSearchableItemPath(const QString &path);

} // namespace tl::search
