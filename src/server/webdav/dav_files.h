#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <ctime>
#include <optional>

namespace server {

// What a PROPFIND tells of an item. The creation date is there only where
// the file system records one.
struct DAVItemInfo
{
    bool isDirectory = false;
    uint64_t size = 0;
    std::optional<time_t> creationDate;
    time_t modificationDate = 0;
};

// Symbolic links are followed; a dangling one is described as itself.
std::optional<DAVItemInfo> davItemInfo(const QString &path);
// The same for an entry of an open directory; without followLinks a link is
// described as itself.
std::optional<DAVItemInfo> davItemInfoAt(int directory, const char *name, bool followLinks);
// Whether the entry of an open directory is a symbolic link.
bool isSymbolicLinkAt(int directory, const char *name);
bool isSymbolicLinkAtPath(const QString &path);

// Whether anything, even a dangling symbolic link, is at path.
bool itemExistsAtPath(const QString &path);
bool isDirectoryAtPath(const QString &path);
// Whether the folder that would hold path exists; a final "/" does not count
// as a level.
bool parentIsDirectory(const QString &path);

// Writes data atomically into an existing folder; the folder is never made.
bool writeFileIntoExistingFolder(const QString &path, const QByteArray &data);

} // namespace server
