#include "platform/detail/temporary_file.h"

#include "platform/detail/sys.h"
#include "platform/detail/xattr_copy.h"

#include <QRandomGenerator>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tl::platform::detail {

namespace {

// A new file for the temporary: a free random name, or the tag's own name.
std::optional<TemporaryFile> openTemporary(const QByteArray &target, const QByteArray &tag)
{
    if (!tag.isEmpty()) {
        const QByteArray path = temporaryBeside(target, tag);
        const int fd =
            ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0666);
        return fd >= 0 ? std::optional(TemporaryFile{path, fd}) : std::nullopt;
    }
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QByteArray path =
            temporaryBeside(target, QByteArray::number(QRandomGenerator::global()->generate(), 36));
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0)
            return TemporaryFile{path, fd};
        if (errno != EEXIST)
            return std::nullopt;
    }
    return std::nullopt;
}

} // namespace

QByteArray writeTarget(const QByteArray &path)
{
    struct stat st;
    if (::lstat(path.constData(), &st) == 0 && S_ISLNK(st.st_mode)) {
        if (char *resolved = ::realpath(path.constData(), nullptr)) {
            QByteArray target(resolved);
            std::free(resolved);
            return target;
        }
    }
    return path;
}

QByteArray temporaryBeside(const QByteArray &target, const QByteArray &tag)
{
    // Leave room for the tag within the usual 255-byte name limit.
    const QByteArray name = lastComponent(target).left(200);
    return childOf(parentOf(target), kTemporaryPrefix + name + "." + tag + kTemporarySuffix);
}

std::optional<TemporaryFile> writeTemporaryBeside(const QByteArray &target, const QByteArray &data,
                                                  const QByteArray &tag)
{
    struct stat old;
    const bool replacing = ::stat(target.constData(), &old) == 0;
    if (replacing && !S_ISREG(old.st_mode)) {
        errno = S_ISDIR(old.st_mode) ? EISDIR : EINVAL;
        return std::nullopt;
    }
    std::optional<TemporaryFile> temp = openTemporary(target, tag);
    if (!temp)
        return std::nullopt;
    bool ok = writeAll(temp->fd, data.constData(), data.size());
    if (ok && replacing) {
        ok = copyUserAttributes(target, temp->path, false) &&
             ::fchmod(temp->fd, old.st_mode & 07777) == 0;
        // Keeping the owner only works with the privilege to do so.
        if (ok && (old.st_uid != ::geteuid() || old.st_gid != ::getegid()))
            (void)!::fchown(temp->fd, old.st_uid, old.st_gid);
    }
    if (!ok) {
        const int saved = errno;
        ::close(temp->fd);
        ::unlink(temp->path.constData());
        errno = saved;
        return std::nullopt;
    }
    return temp;
}

} // namespace tl::platform::detail
