#include "platform/file_watcher.h"

#include "foundation/clock.h"
#include "foundation/scheduler.h"
#include "platform/file_ops.h"

#include <QDebug>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>
#include <cerrno>
#include <cstring>
#include <limits>
#include <sys/inotify.h>
#include <unistd.h>

namespace tl::platform {

namespace {

constexpr quint32 kWatchMask = IN_CREATE | IN_DELETE | IN_CLOSE_WRITE | IN_ATTRIB | IN_MOVED_FROM |
                               IN_MOVED_TO | IN_DELETE_SELF | IN_ONLYDIR | IN_DONT_FOLLOW;

const char *const kKindNames[] = {"created", "modified",  "deleted",
                                  "moved",   "rescanned", "watchLimitReached"};

bool isBelow(const QString &path, const QString &folder)
{
    return path == folder || path.startsWith(folder + u'/');
}

} // namespace

QString FileWatchReport::kindName() const
{
    return QString::fromLatin1(kKindNames[int(kind)]);
}

QVariantMap FileWatchReport::toDictionary() const
{
    QVariantMap d{{"kind", kindName()}, {"path", path}};
    if (kind == Kind::Moved)
        d.insert("newPath", newPath);
    if (sourceIsNew)
        d.insert("sourceIsNew", true);
    if (isDirectory)
        d.insert("isDirectory", true);
    if (!message.isEmpty())
        d.insert("message", message);
    return d;
}

FileWatcher::FileWatcher(QObject *parent) : QObject(parent)
{
}

FileWatcher::~FileWatcher()
{
    stop();
}

bool FileWatcher::watch(const QString &root)
{
    stop();
    m_fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_fd < 0) {
        qWarning().noquote() << "FileWatcher: inotify unavailable:" << std::strerror(errno);
        return false;
    }
    m_root = QDir::cleanPath(root);
    m_notifier = std::make_unique<QSocketNotifier>(m_fd, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this,
            [this] { readEvents(Reading::OneBuffer); });
    watchTree(m_root, false);
    return true;
}

void FileWatcher::stop()
{
    Scheduler::main().cancel(QStringLiteral("FileWatcher %1").arg(quintptr(this)));
    m_notifier.reset();
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
    m_pathOfWatch.clear();
    m_watchOfPath.clear();
    m_pendingMoves.clear();
    m_createdAt.clear();
    m_limitReported = false;
}

void FileWatcher::addWatch(const QString &folder)
{
    const int wd = inotify_add_watch(m_fd, QFile::encodeName(folder).constData(), kWatchMask);
    if (wd >= 0) {
        m_pathOfWatch.insert(wd, folder);
        m_watchOfPath.insert(folder, wd);
        return;
    }
    if (errno == ENOSPC && !m_limitReported) {
        m_limitReported = true;
        FileWatchReport limit;
        limit.kind = FileWatchReport::Kind::WatchLimitReached;
        limit.path = folder;
        limit.message =
            QStringLiteral("The system's limit of file watches is reached after %1 folders: "
                           "changes made by other programs below %2 and further folders are not "
                           "followed. Raise fs.inotify.max_user_watches to follow them.")
                .arg(m_pathOfWatch.size())
                .arg(folder);
        qWarning().noquote() << limit.message;
        onReport(limit);
    }
}

void FileWatcher::watchTree(const QString &folder, bool reportContents)
{
    addWatch(folder);
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString entry = it.next();
        const QFileInfo info = it.fileInfo();
        const bool isFolder = info.isDir() && !info.isSymLink();
        if (isFolder)
            addWatch(entry);
        // Items made in a new folder before its watch existed.
        if (reportContents)
            report(FileWatchReport::Kind::Created, entry, isFolder);
    }
}

void FileWatcher::forgetWatchesBelow(const QString &folder)
{
    for (auto it = m_watchOfPath.begin(); it != m_watchOfPath.end();) {
        if (isBelow(it.key(), folder)) {
            inotify_rm_watch(m_fd, it.value());
            m_pathOfWatch.remove(it.value());
            it = m_watchOfPath.erase(it);
        } else {
            ++it;
        }
    }
}

void FileWatcher::renameWatchesBelow(const QString &from, const QString &to)
{
    QHash<QString, int> renamed;
    for (auto it = m_watchOfPath.begin(); it != m_watchOfPath.end();) {
        if (isBelow(it.key(), from)) {
            const QString now = to + it.key().mid(from.size());
            m_pathOfWatch.insert(it.value(), now);
            renamed.insert(now, it.value());
            it = m_watchOfPath.erase(it);
        } else {
            ++it;
        }
    }
    m_watchOfPath.insert(renamed);
}

void FileWatcher::readEvents(Reading reading)
{
    if (m_fd < 0)
        return;
    // A few hundred events: what the receivers handle between two repaints.
    alignas(struct inotify_event) char buffer[16 * 1024];
    for (bool more = true; more; more = reading == Reading::Everything) {
        const ssize_t length = ::read(m_fd, buffer, sizeof buffer);
        if (length <= 0)
            break;
        for (ssize_t offset = 0; offset < length;) {
            const auto *event = reinterpret_cast<const struct inotify_event *>(buffer + offset);
            const QString name =
                event->len ? QFile::decodeName(QByteArray(event->name)) : QString();
            handleEvent(event->wd, event->mask, event->cookie, name);
            offset += ssize_t(sizeof(struct inotify_event) + event->len);
        }
    }
    // Items stop being new once their moment has passed.
    const double now = clock().monotonicSeconds();
    m_createdAt.removeIf(
        [now](const auto &created) { return now - created.value() >= kNewItemSeconds; });
    // A moved-from left over from this batch may still meet its moved-to in
    // the next one; past the grace period it is a deletion. The kernel queues
    // the two halves of a rename together, so the next buffer holds the
    // moved-to of one torn between buffers.
    flushPendingMoves(now);
    schedulePendingFlush();
}

void FileWatcher::handleEvent(int wd, quint32 mask, quint32 cookie, const QString &name)
{
    if (mask & IN_Q_OVERFLOW) {
        rescan();
        return;
    }
    if (mask & IN_IGNORED) {
        m_watchOfPath.remove(m_pathOfWatch.value(wd));
        m_pathOfWatch.remove(wd);
        return;
    }
    const auto folder = m_pathOfWatch.constFind(wd);
    if (folder == m_pathOfWatch.constEnd() || name.isEmpty())
        return;
    const QString path = *folder + u'/' + name;
    const bool isDirectory = mask & IN_ISDIR;
    const bool isOwnTemporary = !isDirectory && isAtomicWriteTemporary(name);

    if (mask & IN_MOVED_FROM) {
        m_pendingMoves.push_back({cookie, path, isDirectory,
                                  clock().monotonicSeconds() + kMoveGraceSeconds, isOwnTemporary});
    } else if (mask & IN_MOVED_TO) {
        const auto from =
            std::find_if(m_pendingMoves.begin(), m_pendingMoves.end(),
                         [cookie](const PendingMove &m) { return m.cookie == cookie; });
        if (isOwnTemporary) {
            // Nothing is reported under such a name; an item taking it is gone.
            if (from != m_pendingMoves.end()) {
                const PendingMove source = *from;
                m_pendingMoves.erase(from);
                if (!source.isOwnTemporary)
                    report(FileWatchReport::Kind::Deleted, source.path, source.isDirectory);
            }
        } else if (from != m_pendingMoves.end()) {
            const PendingMove source = *from;
            m_pendingMoves.erase(from);
            if (isDirectory)
                renameWatchesBelow(source.path, path);
            // An atomic write of this program: the target changed, or is new.
            if (source.isOwnTemporary) {
                report(FileWatchReport::Kind::Modified, path, isDirectory);
                return;
            }
            FileWatchReport r;
            r.kind = FileWatchReport::Kind::Moved;
            r.path = source.path;
            r.newPath = path;
            r.isDirectory = isDirectory;
            r.sourceIsNew = takeIsNew(source.path);
            onReport(r);
        } else {
            report(FileWatchReport::Kind::Created, path, isDirectory);
            if (isDirectory)
                watchTree(path, true);
        }
    } else if (isOwnTemporary) {
        return;
    } else if (mask & IN_CREATE) {
        report(FileWatchReport::Kind::Created, path, isDirectory);
        if (isDirectory)
            watchTree(path, true);
    } else if (mask & IN_DELETE) {
        report(FileWatchReport::Kind::Deleted, path, isDirectory);
    } else if (mask & (IN_CLOSE_WRITE | IN_ATTRIB)) {
        report(FileWatchReport::Kind::Modified, path, isDirectory);
    }
}

void FileWatcher::flushPendingMoves(double dueBy)
{
    std::vector<PendingMove> expired;
    std::erase_if(m_pendingMoves, [&](const PendingMove &m) {
        if (m.due > dueBy)
            return false;
        expired.push_back(m);
        return true;
    });
    for (const PendingMove &m : expired) {
        if (m.isDirectory)
            forgetWatchesBelow(m.path);
        if (!m.isOwnTemporary)
            report(FileWatchReport::Kind::Deleted, m.path, m.isDirectory);
    }
}

void FileWatcher::schedulePendingFlush()
{
    if (m_pendingMoves.empty())
        return;
    Scheduler::main().schedule(QStringLiteral("FileWatcher %1").arg(quintptr(this)),
                               kMoveGraceSeconds, [this] {
                                   // The moved-to may be queued already.
                                   readEvents(Reading::OneBuffer);
                               });
}

void FileWatcher::rescan()
{
    // Events were lost: moves can no longer be paired, and every folder is
    // watched afresh; the receiver rereads what it shows.
    flushPendingMoves(std::numeric_limits<double>::infinity());
    watchTree(m_root, false);
    report(FileWatchReport::Kind::Rescanned, m_root, true);
}

bool FileWatcher::takeIsNew(const QString &path)
{
    const auto created = m_createdAt.constFind(path);
    const bool isNew = created != m_createdAt.constEnd() &&
                       clock().monotonicSeconds() - *created < kNewItemSeconds;
    m_createdAt.remove(path);
    return isNew;
}

void FileWatcher::report(FileWatchReport::Kind kind, const QString &path, bool isDirectory,
                         const QString &newPath)
{
    if (kind == FileWatchReport::Kind::Created)
        m_createdAt.insert(path, clock().monotonicSeconds());
    FileWatchReport r;
    r.kind = kind;
    r.path = path;
    r.newPath = newPath;
    r.isDirectory = isDirectory;
    onReport(r);
}

} // namespace tl::platform
