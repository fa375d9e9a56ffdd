#include "platform/staged_writes.h"

#include "platform/detail/sys.h"
#include "platform/detail/temporary_file.h"

#include <QRandomGenerator>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <spdlog/spdlog.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tl::platform {

namespace {

using detail::nativePath;
using detail::systemError;
using detail::utf8;

std::function<bool(StagedWrites::Step, int)> &interruption()
{
    static std::function<bool(StagedWrites::Step, int)> stop;
    return stop;
}

// One sync of the whole file system the folder lies on: for many files far
// cheaper than a sync of each, which commits the file system's journal once
// per file.
bool syncFileSystemOf(const QByteArray &folder)
{
    const int fd = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool synced = ::syncfs(fd) == 0;
    const int saved = errno;
    ::close(fd);
    errno = saved;
    return synced;
}

bool isTag(const QByteArray &tag)
{
    return !tag.isEmpty() && tag.size() <= 16 && std::all_of(tag.begin(), tag.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z');
    });
}

} // namespace

StagedWrites::StagedWrites(QByteArray tag)
    // A tag read back from elsewhere names files: only letters and digits.
    : tag_(isTag(tag) ? std::move(tag) : newTag())
{
}

StagedWrites::~StagedWrites()
{
    if (interrupted_)
        return;
    for (const Staged &staged : std::as_const(staged_))
        ::unlink(staged.temporary.constData());
}

QByteArray StagedWrites::newTag()
{
    return QByteArray::number(QRandomGenerator::global()->generate64(), 36);
}

void StagedWrites::setInterruptionForTesting(std::function<bool(Step, int)> stop)
{
    interruption() = std::move(stop);
}

bool StagedWrites::proceed(Step step)
{
    if (interrupted_)
        return false;
    const int before = stepsRun_[size_t(step)]++;
    if (interruption() && interruption()(step, before))
        interrupted_ = true;
    return !interrupted_;
}

bool StagedWrites::stage(const QString &path, const QByteArray &data)
{
    if (std::lock_guard lock(mutex_); !proceed(Step::Stage))
        return false;
    const QByteArray target = detail::writeTarget(nativePath(path));
    const std::optional<detail::TemporaryFile> temp =
        detail::writeTemporaryBeside(target, data, tag_);
    struct stat st;
    if (!temp || ::fstat(temp->fd, &st) != 0 || ::close(temp->fd) != 0) {
        const int saved = errno;
        if (temp)
            ::unlink(temp->path.constData());
        spdlog::warn("Cannot write {}: {}", utf8(target), systemError(saved));
        return false;
    }
    std::lock_guard lock(mutex_);
    fileSystems_.insert(quint64(st.st_dev), detail::parentOf(target));
    staged_.insert(path, {target, temp->path});
    return true;
}

void StagedWrites::discardLeftover(const QString &path) const
{
    if (!interrupted_)
        ::unlink(detail::temporaryBeside(detail::writeTarget(nativePath(path)), tag_).constData());
}

bool StagedWrites::syncFileSystems() const
{
    for (const QByteArray &folder : std::as_const(fileSystems_)) {
        if (!syncFileSystemOf(folder)) {
            spdlog::warn("Cannot flush the staged writes to disk below {}: {}", utf8(folder),
                         systemError(errno));
            return false;
        }
    }
    return true;
}

bool StagedWrites::sync()
{
    std::lock_guard lock(mutex_);
    synced_ = proceed(Step::Sync) && syncFileSystems();
    return synced_;
}

bool StagedWrites::replace(const QString &path)
{
    Staged staged;
    {
        std::lock_guard lock(mutex_);
        if (!synced_ || !staged_.contains(path) || !proceed(Step::Replace))
            return false;
        staged = staged_.take(path);
    }
    if (::rename(staged.temporary.constData(), staged.target.constData()) != 0) {
        const int saved = errno;
        ::unlink(staged.temporary.constData());
        spdlog::warn("Cannot write {}: {}", utf8(staged.target), systemError(saved));
        return false;
    }
    return true;
}

void StagedWrites::discard(const QString &path)
{
    std::lock_guard lock(mutex_);
    if (!interrupted_ && staged_.contains(path))
        ::unlink(staged_.take(path).temporary.constData());
}

bool StagedWrites::syncReplacements()
{
    std::lock_guard lock(mutex_);
    return proceed(Step::SyncReplacements) && syncFileSystems() && proceed(Step::Done);
}

} // namespace tl::platform
