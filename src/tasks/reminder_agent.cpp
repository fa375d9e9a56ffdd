#include "tasks/reminder_agent.h"

#include "foundation/clock.h"
#include "foundation/path_string.h"
#include "foundation/scheduler.h"
#include "platform/settings.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "tasks/reminder_rebuild.h"
#include "tasks/task_lists.h"

#include <sys/stat.h>

namespace tl::tasks {

namespace {

constexpr std::chrono::milliseconds kLongestWait{60'000};

QStringList watchedBooks()
{
    QStringList books = allTaskListBooks();
    books << store::libraryRoot();
    return books;
}

} // namespace

ReminderAgent::ReminderAgent(std::shared_ptr<platform::ReminderCentre> centre, QObject *parent)
    : QObject(parent), centre_(std::move(centre))
{
    useReminderCentre(centre_);
}

QByteArray ReminderAgent::libraryState() const
{
    QByteArray state = store::libraryRoot().toUtf8();
    for (const QString &book : watchedBooks()) {
        const QByteArray file =
            path::appendingComponent(book, QLatin1String(names::TasklistDetails)).toUtf8();
        struct stat info = {};
        if (::stat(file.constData(), &info) != 0)
            continue;
        state += '\0' + file + ' ' + QByteArray::number(qint64(info.st_ino)) + ' ' +
                 QByteArray::number(qint64(info.st_size)) + ' ' +
                 QByteArray::number(qint64(info.st_mtim.tv_sec)) + '.' +
                 QByteArray::number(qint64(info.st_mtim.tv_nsec));
    }
    return state;
}

std::chrono::milliseconds ReminderAgent::look()
{
    if (QByteArray state = libraryState(); state != state_) {
        state_ = std::move(state);
        rebuildReminders(*centre_);
    }
    const QDateTime now = clock().now();
    centre_->deliverDue(now);
    const QDateTime next = centre_->nextDeliveryDate();
    if (!next.isValid())
        return kLongestWait;
    return std::clamp(std::chrono::milliseconds(now.msecsTo(next)), std::chrono::milliseconds(0),
                      kLongestWait);
}

void ReminderAgent::start()
{
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &ReminderAgent::lookAndRearm);
    const auto soon = [this] {
        Scheduler::main().schedule(QStringLiteral("reminder agent look"), 0.5,
                                   [this] { lookAndRearm(); });
    };
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, soon);
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, soon);
    lookAndRearm();
}

void ReminderAgent::lookAndRearm()
{
    timer_.start(look());
    watchTaskLists();
}

void ReminderAgent::watchTaskLists()
{
    QStringList paths = watchedBooks();
    paths << platform::settings().filePath();
    const QStringList watched = watcher_.directories() + watcher_.files();
    if (QSet<QString>(paths.cbegin(), paths.cend()) ==
        QSet<QString>(watched.cbegin(), watched.cend()))
        return;
    if (!watched.isEmpty())
        watcher_.removePaths(watched);
    watcher_.addPaths(paths);
}

} // namespace tl::tasks
