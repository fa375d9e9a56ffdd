#include "platform/file_ops.h"

#include "platform/detail/sys.h"
#include "platform/detail/temporary_file.h"
#include "platform/detail/xattr_copy.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <spdlog/spdlog.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <vector>

namespace tl::platform {

namespace {

using detail::childOf;
using detail::nativePath;
using detail::parentOf;
using detail::systemError;
using detail::utf8;
using detail::writeAll;

QByteArray absoluteNative(const QString &path)
{
    return nativePath(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
}

bool exists(const QByteArray &path)
{
    struct stat st;
    return ::lstat(path.constData(), &st) == 0;
}

bool copyData(int in, int out)
{
    std::vector<char> buffer(128 * 1024);
    for (;;) {
        const ssize_t got = ::read(in, buffer.data(), buffer.size());
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (got == 0)
            return true;
        if (!writeAll(out, buffer.data(), got))
            return false;
    }
}

// Closes fd, keeping the errno of an earlier failure.
bool closeKeepingError(int fd, bool ok)
{
    const int saved = errno;
    const bool closed = ::close(fd) == 0;
    if (!ok)
        errno = saved;
    return ok && closed;
}

// rename(2) that never replaces an existing item.
bool renameNoReplace(const QByteArray &from, const QByteArray &to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // File systems without RENAME_NOREPLACE: check first, then rename.
    if (exists(to)) {
        errno = EEXIST;
        return false;
    }
    return ::rename(from.constData(), to.constData()) == 0;
}

bool removeTree(const QByteArray &path, bool forceWritable)
{
    struct stat st;
    if (::lstat(path.constData(), &st) != 0)
        return false;
    if (!S_ISDIR(st.st_mode))
        return ::unlink(path.constData()) == 0;
    // A partial copy, or a source already copied, may hold read-only folders.
    if (forceWritable)
        ::chmod(path.constData(), 0700);
    DIR *dir = ::opendir(path.constData());
    if (!dir)
        return false;
    // Names first: removing entries while reading a folder is unspecified.
    std::vector<QByteArray> names;
    while (const dirent *entry = ::readdir(dir)) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..")
            names.push_back(name);
    }
    ::closedir(dir);
    bool ok = true;
    int firstError = 0;
    for (const QByteArray &name : names) {
        if (!removeTree(childOf(path, name), forceWritable) && ok) {
            ok = false;
            firstError = errno;
        }
    }
    if (!ok) {
        errno = firstError;
        return false;
    }
    return ::rmdir(path.constData()) == 0;
}

bool copyTree(const QByteArray &from, const QByteArray &to, bool &created);

bool copySymlink(const QByteArray &from, const QByteArray &to, const struct stat &st, bool &created)
{
    QByteArray target(st.st_size > 0 ? st.st_size + 1 : 4096, Qt::Uninitialized);
    const ssize_t length = ::readlink(from.constData(), target.data(), size_t(target.size()));
    if (length < 0)
        return false;
    if (length >= target.size()) {
        errno = ENAMETOOLONG;
        return false;
    }
    target.truncate(length);
    if (::symlink(target.constData(), to.constData()) != 0)
        return false;
    created = true;
    const timespec times[2] = {st.st_atim, st.st_mtim};
    return ::utimensat(AT_FDCWD, to.constData(), times, AT_SYMLINK_NOFOLLOW) == 0;
}

bool copyRegularFile(const QByteArray &from, const QByteArray &to, const struct stat &st,
                     bool &created)
{
    const int in = ::open(from.constData(), O_RDONLY | O_CLOEXEC);
    if (in < 0)
        return false;
    const int out = ::open(to.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (out < 0)
        return closeKeepingError(in, false);
    created = true;
    const timespec times[2] = {st.st_atim, st.st_mtim};
    // Attributes before the mode: a read-only mode would refuse them. The data
    // goes to disk before the caller may delete the source.
    bool ok = copyData(in, out) && detail::copyUserAttributes(from, to, true) &&
              ::fchmod(out, st.st_mode & 07777) == 0 && ::futimens(out, times) == 0 &&
              ::fsync(out) == 0;
    ok = closeKeepingError(out, ok);
    return closeKeepingError(in, ok);
}

bool copyFolder(const QByteArray &from, const QByteArray &to, const struct stat &st, bool &created)
{
    if (::mkdir(to.constData(), 0700) != 0)
        return false;
    created = true;
    DIR *dir = ::opendir(from.constData());
    if (!dir)
        return false;
    bool ok = true;
    for (;;) {
        errno = 0;
        const dirent *entry = ::readdir(dir);
        if (!entry) {
            ok = errno == 0;
            break;
        }
        const QByteArray name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        bool childCreated = false;
        if (!copyTree(childOf(from, name), childOf(to, name), childCreated)) {
            ok = false;
            break;
        }
    }
    const int saved = errno;
    ::closedir(dir);
    errno = saved;
    // The mode and dates last: adding children changes the folder's date, and a
    // read-only mode would refuse them.
    const timespec times[2] = {st.st_atim, st.st_mtim};
    return ok && detail::copyUserAttributes(from, to, true) &&
           ::chmod(to.constData(), st.st_mode & 07777) == 0 &&
           ::utimensat(AT_FDCWD, to.constData(), times, 0) == 0;
}

bool copyTree(const QByteArray &from, const QByteArray &to, bool &created)
{
    struct stat st;
    if (::lstat(from.constData(), &st) != 0)
        return false;
    if (S_ISLNK(st.st_mode))
        return copySymlink(from, to, st, created);
    if (S_ISREG(st.st_mode))
        return copyRegularFile(from, to, st, created);
    if (S_ISDIR(st.st_mode))
        return copyFolder(from, to, st, created);
    // Devices, pipes and sockets have no place in a library.
    spdlog::warn("Cannot copy special file: {}", utf8(from));
    errno = ENOTSUP;
    return false;
}

// Copies the whole item to a destination that must not exist; removes what it
// made when any part fails.
bool copyWhole(const QByteArray &from, const QByteArray &to)
{
    if (exists(to)) {
        errno = EEXIST;
        return false;
    }
    if (to.startsWith(from + '/')) {
        errno = EINVAL;
        return false;
    }
    bool created = false;
    if (copyTree(from, to, created))
        return true;
    const int saved = errno;
    if (created && !removeTree(to, true))
        spdlog::warn("Cannot remove partial copy {}: {}", utf8(to), systemError(errno));
    errno = saved;
    return false;
}

timespec toTimespec(const QDateTime &date)
{
    const qint64 ms = date.toMSecsSinceEpoch();
    qint64 seconds = ms / 1000;
    qint64 rest = ms % 1000;
    if (rest < 0) {
        rest += 1000;
        seconds -= 1;
    }
    return timespec{time_t(seconds), long(rest * 1000000)};
}

QDateTime fromTimestamp(qint64 seconds, qint64 nanoseconds)
{
    return QDateTime::fromMSecsSinceEpoch(seconds * 1000 + nanoseconds / 1000000);
}

} // namespace

bool makeFolder(const QString &path)
{
    if (path.isEmpty())
        return false;
    const QFileInfo info(path);
    if (info.isDir())
        return true;
    if (!QDir().mkpath(path) || !QFileInfo(path).isDir()) {
        spdlog::warn("Cannot make folder {}", utf8(path));
        return false;
    }
    return true;
}

bool isAtomicWriteTemporary(const QString &fileName)
{
    const QLatin1String prefix(detail::kTemporaryPrefix), suffix(detail::kTemporarySuffix);
    if (!fileName.startsWith(prefix) || !fileName.endsWith(suffix))
        return false;
    const QStringView middle =
        QStringView(fileName).mid(prefix.size(), fileName.size() - prefix.size() - suffix.size());
    const qsizetype dot = middle.lastIndexOf(u'.');
    if (dot <= 0 || dot == middle.size() - 1)
        return false;
    return std::all_of(middle.begin() + dot + 1, middle.end(), [](QChar c) {
        return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z');
    });
}

namespace {

bool writeThroughTemporary(const QString &path, const QByteArray &data, bool durable)
{
    if (path.isEmpty())
        return false;
    const QByteArray requested = absoluteNative(path);
    if (!makeFolder(QFile::decodeName(parentOf(requested))))
        return false;
    const QByteArray target = detail::writeTarget(requested);
    const std::optional<detail::TemporaryFile> temp = detail::writeTemporaryBeside(target, data);
    if (!temp) {
        spdlog::warn("Cannot write {}: {}", utf8(target), systemError(errno));
        return false;
    }
    bool ok = !durable || ::fsync(temp->fd) == 0;
    ok = closeKeepingError(temp->fd, ok);
    ok = ok && ::rename(temp->path.constData(), target.constData()) == 0;
    if (!ok) {
        const int saved = errno;
        ::unlink(temp->path.constData());
        spdlog::warn("Cannot write {}: {}", utf8(target), systemError(saved));
        return false;
    }
    // Make the rename itself durable; a failure here loses nothing.
    const int folder =
        durable ? ::open(parentOf(target).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
    return true;
}

} // namespace

bool writeFileAtomically(const QString &path, const QByteArray &data)
{
    return writeThroughTemporary(path, data, true);
}

bool writeCopyAtomically(const QString &path, const QByteArray &data)
{
    return writeThroughTemporary(path, data, false);
}

bool writeFileInPlace(const QString &path, const QByteArray &data)
{
    if (path.isEmpty())
        return false;
    const QByteArray target = absoluteNative(path);
    if (!makeFolder(QFile::decodeName(parentOf(target))))
        return false;
    const int fd = ::open(target.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0 || !closeKeepingError(fd, writeAll(fd, data.constData(), data.size()))) {
        spdlog::warn("Cannot write {}: {}", utf8(target), systemError(errno));
        return false;
    }
    return true;
}

std::optional<QByteArray> readFile(const QString &path)
{
    const QByteArray native = nativePath(path);
    const int fd = ::open(native.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        if (errno != ENOENT)
            spdlog::warn("Cannot read {}: {}", utf8(path), systemError(errno));
        return std::nullopt;
    }
    struct stat st;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return std::nullopt;
    }
    QByteArray content;
    content.reserve(st.st_size);
    char buffer[64 * 1024];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            spdlog::warn("Cannot read {}: {}", utf8(path), systemError(errno));
            ::close(fd);
            return std::nullopt;
        }
        if (got == 0)
            break;
        content.append(buffer, got);
    }
    ::close(fd);
    return content;
}

bool moveItem(const QString &source, const QString &destination)
{
    const QByteArray from = absoluteNative(source);
    const QByteArray to = absoluteNative(destination);
    if (source.isEmpty() || destination.isEmpty() || !exists(from)) {
        spdlog::warn("Move failed: {}: no such item", utf8(source));
        return false;
    }
    if (renameNoReplace(from, to))
        return true;
    if (errno != EXDEV) {
        spdlog::warn("Move failed: {} to {}: {}", utf8(from), utf8(to), systemError(errno));
        return false;
    }
    // Another device: copy, and only then remove the source. Check first that
    // the source may be removed at all, so the copy isn't made in vain.
    if (::access(parentOf(from).constData(), W_OK | X_OK) != 0 || !copyWhole(from, to)) {
        spdlog::warn("Move failed: {} to {}: {}", utf8(from), utf8(to), systemError(errno));
        return false;
    }
    // The copy holds the item now, read-only folders included: removing the
    // source must not stop at a folder merely marked read-only.
    if (removeTree(from, true))
        return true;
    const int saved = errno;
    struct stat st;
    if (::lstat(from.constData(), &st) == 0 && !S_ISDIR(st.st_mode)) {
        // Nothing of the source is gone yet: undo the copy.
        removeTree(to, true);
        spdlog::warn("Move failed: {} to {}: {}", utf8(from), utf8(to), systemError(saved));
        return false;
    }
    // The copy is complete; what is left of the source is a duplicate.
    spdlog::warn("Moved {} to {}, but parts of the source remain: {}", utf8(from), utf8(to),
                 systemError(saved));
    return true;
}

bool copyItem(const QString &source, const QString &destination)
{
    const QByteArray from = absoluteNative(source);
    const QByteArray to = absoluteNative(destination);
    if (source.isEmpty() || destination.isEmpty() || !copyWhole(from, to)) {
        spdlog::warn("Copy failed: {} to {}: {}", utf8(from), utf8(to), systemError(errno));
        return false;
    }
    return true;
}

bool removeItem(const QString &path)
{
    if (path.isEmpty())
        return false;
    const QByteArray native = absoluteNative(path);
    if (!removeTree(native, false)) {
        spdlog::warn("Cannot remove {}: {}", utf8(native), systemError(errno));
        return false;
    }
    return true;
}

std::optional<QDateTime> creationDate(const QString &path)
{
    struct statx stx;
    if (::statx(AT_FDCWD, nativePath(path).constData(), 0, STATX_BTIME, &stx) != 0 ||
        !(stx.stx_mask & STATX_BTIME))
        return std::nullopt;
    return fromTimestamp(stx.stx_btime.tv_sec, stx.stx_btime.tv_nsec);
}

std::optional<QDateTime> modificationDate(const QString &path)
{
    struct stat st;
    if (::stat(nativePath(path).constData(), &st) != 0)
        return std::nullopt;
    return fromTimestamp(st.st_mtim.tv_sec, st.st_mtim.tv_nsec);
}

bool setModificationDate(const QString &path, const QDateTime &date)
{
    if (!date.isValid())
        return false;
    const timespec times[2] = {timespec{0, UTIME_OMIT}, toTimespec(date)};
    if (::utimensat(AT_FDCWD, nativePath(path).constData(), times, 0) != 0) {
        spdlog::warn("Cannot set the date of {}: {}", utf8(path), systemError(errno));
        return false;
    }
    return true;
}

bool folderMayIgnoreCase(const QString &folder)
{
    const QByteArray native = detail::nativePath(folder);
    struct statfs fs
    {
    };
    if (::statfs(native.constData(), &fs) != 0)
        return true;
    // Magic numbers of the file systems that compare names without case.
    constexpr unsigned long kExfat = 0x2011BAB0UL, kNtfs = 0x5346544EUL, kCifs = 0xFF534D42UL,
                            kSmb2 = 0xFE534D42UL;
    switch (static_cast<unsigned long>(fs.f_type)) {
    case MSDOS_SUPER_MAGIC:
    case kExfat:
    case kNtfs:
    case kCifs:
    case kSmb2:
    case SMB_SUPER_MAGIC:
        return true;
    default:
        break;
    }
    if (static_cast<unsigned long>(fs.f_type) != EXT4_SUPER_MAGIC)
        return false;
    const int fd = ::open(native.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return true;
    // The flag ext4 sets on a folder created with case folding.
    constexpr long kCasefoldFlag = 0x40000000L;
    long flags = 0;
    const bool asked = ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    ::close(fd);
    return !asked || (flags & kCasefoldFlag) != 0;
}

} // namespace tl::platform
