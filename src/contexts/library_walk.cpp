#include "contexts/library_walk.h"

#include "foundation/compare.h"
#include "store/extensions.h"

#include <QFile>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace tl::contexts {

namespace {

bool isSkippedFolder(const QString &name)
{
    return name.startsWith(u'.') || name.contains(QLatin1String(".Trash")) ||
           name.contains(QLatin1String(".TLTrash")) ||
           store::packageExtensions().contains(store::lowerCasedExtension(name));
}

void walkFolder(int folderFd, const QString &folder, const WantedName &wanted,
                const FileVisitor &visit, const std::atomic_bool *stop)
{
    DIR *dir = ::fdopendir(folderFd);
    if (!dir) {
        ::close(folderFd);
        return;
    }
    while (const dirent *entry = ::readdir(dir)) {
        if (stop && stop->load(std::memory_order_relaxed))
            break;
        const char *raw = entry->d_name;
        if (raw[0] == '.' && (raw[1] == 0 || (raw[1] == '.' && raw[2] == 0)))
            continue;
        const QString name = QFile::decodeName(raw);
        bool isFolder = entry->d_type == DT_DIR;
        struct stat status
        {
        };
        if (entry->d_type == DT_UNKNOWN) {
            if (::fstatat(::dirfd(dir), raw, &status, AT_SYMLINK_NOFOLLOW) != 0)
                continue;
            isFolder = S_ISDIR(status.st_mode);
        }
        if (isFolder) {
            if (isSkippedFolder(name))
                continue;
            const int child = ::openat(::dirfd(dir), raw, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            if (child >= 0)
                walkFolder(child, folder + u'/' + name, wanted, visit, stop);
            continue;
        }
        if (!wanted(name))
            continue;
        if (entry->d_type != DT_UNKNOWN && ::fstatat(::dirfd(dir), raw, &status, 0) != 0)
            continue;
        visit(folder + u'/' + name, status);
    }
    ::closedir(dir);
}

} // namespace

void walkLibraryFiles(const QString &root, const WantedName &wanted, const FileVisitor &visit,
                      const std::atomic_bool *stop)
{
    if (root.isEmpty())
        return;
    const int fd = ::open(QFile::encodeName(root).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0)
        walkFolder(fd, root, wanted, visit, stop);
}

RootProbe::RootProbe(const QString &root)
    : m_fd(::open(QFile::encodeName(root).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
}

RootProbe::~RootProbe()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

bool RootProbe::exists(const QString &normalizedPath) const
{
    if (m_fd < 0)
        return false;
    const auto found = [this](const QString &path) {
        const QByteArray relative = QFile::encodeName(path.mid(1));
        struct stat status
        {
        };
        return ::fstatat(m_fd, relative.isEmpty() ? "." : relative.constData(), &status, 0) == 0;
    };
    // The index keeps composed names; a file system that keeps names as
    // given may hold the decomposed twin.
    if (found(normalizedPath))
        return true;
    const QString other = decomposed(normalizedPath);
    return other != normalizedPath && found(other);
}

} // namespace tl::contexts
