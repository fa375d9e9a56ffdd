#include "server/webdav/dav_files.h"

#include "foundation/path_string.h"
#include "platform/file_ops.h"

#include <QFile>
#include <fcntl.h>
#include <sys/stat.h>

namespace server {

namespace {

std::optional<DAVItemInfo> statItem(int directory, const char *name, bool followLinks)
{
    struct statx info;
    if ((!followLinks ||
         ::statx(directory, name, 0, STATX_BASIC_STATS | STATX_BTIME, &info) != 0) &&
        ::statx(directory, name, AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &info) != 0)
        return std::nullopt;
    DAVItemInfo item;
    item.isDirectory = S_ISDIR(info.stx_mode);
    item.size = info.stx_size;
    if (info.stx_mask & STATX_BTIME)
        item.creationDate = time_t(info.stx_btime.tv_sec);
    item.modificationDate = time_t(info.stx_mtime.tv_sec);
    return item;
}

} // namespace

std::optional<DAVItemInfo> davItemInfo(const QString &path)
{
    return statItem(AT_FDCWD, QFile::encodeName(path).constData(), true);
}

std::optional<DAVItemInfo> davItemInfoAt(int directory, const char *name, bool followLinks)
{
    return statItem(directory, name, followLinks);
}

bool isSymbolicLinkAt(int directory, const char *name)
{
    struct stat info;
    return ::fstatat(directory, name, &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(info.st_mode);
}

bool isSymbolicLinkAtPath(const QString &path)
{
    return isSymbolicLinkAt(AT_FDCWD, QFile::encodeName(path).constData());
}

bool itemExistsAtPath(const QString &path)
{
    struct stat info;
    return ::lstat(QFile::encodeName(path).constData(), &info) == 0;
}

bool isDirectoryAtPath(const QString &path)
{
    struct stat info;
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool parentIsDirectory(const QString &path)
{
    return isDirectoryAtPath(tl::path::deletingLastComponent(path));
}

bool writeFileIntoExistingFolder(const QString &path, const QByteArray &data)
{
    return parentIsDirectory(path) && tl::platform::writeFileAtomically(path, data);
}

} // namespace server
