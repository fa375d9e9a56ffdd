#pragma once

#include <QString>
#include <functional>
#include <string_view>

struct stat;

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

// The stamp of the item at path, as the file system describes it in st.
EncodedItemStamp encodedStamp(std::string_view path, const struct stat &st);

// Every item below the folder, the folder itself not included. Dot files, a
// sync client's conflict copies and the library's resources (but for its
// style sheets) are left out; packages and linked folders are items whose
// insides are not entered.
void forEachSearchableItem(const QString &folder,
                           const std::function<void(const ItemStamp &)> &visit);

// A plain file as the walk meets it, before anything is asked of it: its
// name in the folder open as `folder`, valid during the visit only.
struct FoundFile
{
    int folder = -1;
    const char *name = nullptr;
    std::string_view path;
};

// The same items, in no particular order, visited from several threads at
// once: folders are listed side by side. With visitFile, plain files go to it
// unlooked-at, for a visitor that opens them anyway and takes their stamps
// from the open files.
void forEachSearchableItemInParallel(const QString &folder,
                                     const std::function<void(const EncodedItemStamp &)> &visit,
                                     const std::function<void(const FoundFile &)> &visitFile = {});

// Whether the walk above, started at the root, would visit the path.
bool isSearchableItemPath(const QString &path);

} // namespace tl::search
