#include "platform/trash.h"

#include "platform/detail/sys.h"
#include "platform/file_ops.h"
#include "platform/folders.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <cerrno>
#include <fcntl.h>
#include <spdlog/spdlog.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tl::platform {

namespace {

using detail::childOf;
using detail::lastComponent;
using detail::nativePath;
using detail::parentOf;
using detail::systemError;
using detail::utf8;

constexpr char kInfoGroup[] = "[Trash Info]";
constexpr char kInfoSuffix[] = ".trashinfo";

// A trash folder with its "files" and "info" folders. topdir is set for the
// trash of another mount, whose info paths are relative to that mount.
struct TrashFolder
{
    QByteArray base;
    QByteArray topdir;
};

QByteArray uidText()
{
    return QByteArray::number(qulonglong(::getuid()));
}

bool makePrivateFolder(const QByteArray &path)
{
    return ::mkdir(path.constData(), 0700) == 0 || errno == EEXIST;
}

// A trash folder of ours: a real folder (not a link planted by someone else)
// owned by us, with its two subfolders.
bool preparePrivateTrash(const QByteArray &base)
{
    struct stat st;
    if (!makePrivateFolder(base) || ::lstat(base.constData(), &st) != 0 || !S_ISDIR(st.st_mode) ||
        st.st_uid != ::getuid())
        return false;
    return makePrivateFolder(childOf(base, "files")) && makePrivateFolder(childOf(base, "info"));
}

std::optional<TrashFolder> homeTrash()
{
    const QByteArray base = nativePath(dataHomeFolder() + "/Trash");
    if (!makeFolder(dataHomeFolder()) || !preparePrivateTrash(base)) {
        spdlog::warn("Cannot prepare the trash {}: {}", utf8(base), systemError(errno));
        return std::nullopt;
    }
    return TrashFolder{base, {}};
}

// The top folder of the mount that holds path.
QByteArray mountTop(const QByteArray &path, dev_t device)
{
    QByteArray top = path;
    while (top != "/") {
        const QByteArray parent = parentOf(top);
        struct stat st;
        if (::stat(parent.constData(), &st) != 0 || st.st_dev != device)
            break;
        top = parent;
    }
    return top;
}

std::optional<TrashFolder> mountTrash(const QByteArray &topdir)
{
    // The administrator's shared trash counts only as a sticky real folder.
    const QByteArray shared = childOf(topdir, ".Trash");
    struct stat st;
    if (::lstat(shared.constData(), &st) == 0 && S_ISDIR(st.st_mode) && (st.st_mode & S_ISVTX)) {
        const QByteArray mine = childOf(shared, uidText());
        if (preparePrivateTrash(mine))
            return TrashFolder{mine, topdir};
    }
    const QByteArray own = childOf(topdir, ".Trash-" + uidText());
    if (preparePrivateTrash(own))
        return TrashFolder{own, topdir};
    return std::nullopt;
}

std::optional<TrashFolder> trashFor(const QByteArray &item, dev_t device)
{
    const std::optional<TrashFolder> home = homeTrash();
    struct stat st;
    if (home && ::stat(home->base.constData(), &st) == 0 && st.st_dev == device)
        return home;
    if (auto own = mountTrash(mountTop(item, device)))
        return own;
    // No trash of its own on that mount: the home trash, by copying.
    return home;
}

QByteArray infoText(const QByteArray &item, const TrashFolder &trash)
{
    QByteArray original = item;
    if (!trash.topdir.isEmpty())
        original =
            item.mid(trash.topdir.endsWith('/') ? trash.topdir.size() : trash.topdir.size() + 1);
    const QByteArray date =
        QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd'T'hh:mm:ss")).toLatin1();
    return QByteArray(kInfoGroup) + "\nPath=" + original.toPercentEncoding("/") +
           "\nDeletionDate=" + date + "\n";
}

// Claims a free name by making its info file; the name is ours once that file
// exists and nothing of that name is among the trashed files.
std::optional<QByteArray> claimName(const TrashFolder &trash, const QByteArray &name,
                                    const QByteArray &info)
{
    for (int number = 1; number < 10000; ++number) {
        const QByteArray candidate = number == 1 ? name : name + "." + QByteArray::number(number);
        const QByteArray infoPath = childOf(childOf(trash.base, "info"), candidate + kInfoSuffix);
        const int fd = ::open(infoPath.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd < 0) {
            if (errno == EEXIST)
                continue;
            return std::nullopt;
        }
        struct stat st;
        if (::lstat(childOf(childOf(trash.base, "files"), candidate).constData(), &st) == 0) {
            ::close(fd);
            ::unlink(infoPath.constData());
            continue;
        }
        const bool written =
            detail::writeAll(fd, info.constData(), info.size()) && ::fsync(fd) == 0;
        if (::close(fd) != 0 || !written) {
            ::unlink(infoPath.constData());
            return std::nullopt;
        }
        return candidate;
    }
    errno = EEXIST;
    return std::nullopt;
}

// The original path recorded in an info file, or nothing.
std::optional<QByteArray> recordedPath(const QByteArray &info)
{
    bool inGroup = false;
    for (const QByteArray &rawLine : info.split('\n')) {
        const QByteArray line = rawLine.trimmed();
        if (line.startsWith('['))
            inGroup = line == kInfoGroup;
        else if (inGroup && line.startsWith("Path="))
            return QByteArray::fromPercentEncoding(line.mid(5));
    }
    return std::nullopt;
}

// The folder that relative info paths of this trash start from.
QByteArray topdirOf(const QByteArray &base)
{
    const QByteArray parent = parentOf(base);
    // $topdir/.Trash/$uid rather than $topdir/.Trash-$uid.
    if (lastComponent(parent) == ".Trash")
        return parentOf(parent);
    return parent;
}

} // namespace

QString trashFilesFolder()
{
    return dataHomeFolder() + "/Trash/files";
}

std::optional<QString> trashItem(const QString &path)
{
    if (path.isEmpty())
        return std::nullopt;
    const QByteArray item = nativePath(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    struct stat st;
    if (::lstat(item.constData(), &st) != 0) {
        spdlog::warn("Cannot move to trash {}: {}", utf8(item), systemError(errno));
        return std::nullopt;
    }
    const std::optional<TrashFolder> trash = trashFor(item, st.st_dev);
    if (!trash)
        return std::nullopt;
    // The info file comes first, so a trashed item is never without one.
    const std::optional<QByteArray> name =
        claimName(*trash, lastComponent(item), infoText(item, *trash));
    if (!name) {
        spdlog::warn("Cannot move to trash {}: {}", utf8(item), systemError(errno));
        return std::nullopt;
    }
    const QString trashed = QFile::decodeName(childOf(childOf(trash->base, "files"), *name));
    if (!moveItem(QFile::decodeName(item), trashed)) {
        ::unlink(childOf(childOf(trash->base, "info"), *name + kInfoSuffix).constData());
        return std::nullopt;
    }
    return trashed;
}

bool restoreItem(const QString &trashedPath)
{
    const QByteArray trashed =
        nativePath(QDir::cleanPath(QFileInfo(trashedPath).absoluteFilePath()));
    const QByteArray files = parentOf(trashed);
    const QByteArray base = parentOf(files);
    const QByteArray infoPath =
        childOf(childOf(base, "info"), lastComponent(trashed) + kInfoSuffix);
    const std::optional<QByteArray> info =
        lastComponent(files) == "files" ? readFile(QFile::decodeName(infoPath)) : std::nullopt;
    const std::optional<QByteArray> recorded = info ? recordedPath(*info) : std::nullopt;
    if (!recorded || recorded->isEmpty()) {
        spdlog::warn("Cannot restore {}: no trash information", utf8(trashed));
        return false;
    }
    const QByteArray original =
        recorded->startsWith('/') ? *recorded : childOf(topdirOf(base), *recorded);
    struct stat st;
    if (::lstat(original.constData(), &st) == 0) {
        spdlog::warn("Cannot restore {}: {} exists", utf8(trashed), utf8(original));
        return false;
    }
    if (!makeFolder(QFile::decodeName(parentOf(original))) ||
        !moveItem(QFile::decodeName(trashed), QFile::decodeName(original)))
        return false;
    if (::unlink(infoPath.constData()) != 0)
        spdlog::warn("Cannot remove trash information {}: {}", utf8(infoPath), systemError(errno));
    return true;
}

} // namespace tl::platform
