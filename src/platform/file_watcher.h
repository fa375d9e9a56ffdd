#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <vector>

class QSocketNotifier;

// Change reports for everything below a folder, through inotify: the folder
// and every folder that appears below it later are watched. A rename inside
// the tree arrives as one move; an item moved out counts as deleted, one
// moved in as created. The temporary files of the program's own atomic writes
// are never reported: their rename over the target arrives as a change of the
// target. Reports are delivered on the thread that owns the watcher (the main
// thread), from its event loop.
namespace tl::platform {

struct FileWatchReport
{
    enum class Kind { Created, Modified, Deleted, Moved, Rescanned, WatchLimitReached };
    Kind kind = Kind::Modified;
    QString path;
    // The target of a move.
    QString newPath;
    // A move whose source appeared moments before (kNewItemSeconds): a file
    // written under a passing name and renamed into place.
    bool sourceIsNew = false;
    bool isDirectory = false;
    // What the user should be told (the watch limit).
    QString message;

    QString kindName() const;
    QVariantMap toDictionary() const;
};

class FileWatcher : public QObject
{
public:
    // How long a moved-from event waits for its moved-to before it counts as
    // a deletion, in seconds of the process clock.
    static constexpr double kMoveGraceSeconds = 0.05;
    // An item whose creation was reported less than this long ago is new.
    static constexpr double kNewItemSeconds = 2.0;

    explicit FileWatcher(QObject *parent = nullptr);
    ~FileWatcher() override;

    // Starts watching the tree below root; false (and logged) when inotify
    // is not available. Reaching the watch limit still answers true: the
    // folders watched so far keep reporting.
    bool watch(const QString &root);
    void stop();
    QString root() const { return m_root; }
    qsizetype numberOfWatchedFolders() const { return m_pathOfWatch.size(); }

    std::function<void(const FileWatchReport &)> onReport = [](const FileWatchReport &) {};

    // Reads and reports what the kernel has queued. The socket notifier reads
    // one buffer at a time and fires again while more waits, so a burst of
    // changes leaves the event loop room between buffers; tests may drain
    // the queue at once.
    enum class Reading { OneBuffer, Everything };
    void readEvents(Reading reading = Reading::Everything);

private:
    struct PendingMove
    {
        quint32 cookie;
        QString path;
        bool isDirectory;
        double due;
        bool isOwnTemporary;
    };

    void watchTree(const QString &folder, bool reportContents);
    void addWatch(const QString &folder);
    void forgetWatchesBelow(const QString &folder);
    void renameWatchesBelow(const QString &from, const QString &to);
    void handleEvent(int wd, quint32 mask, quint32 cookie, const QString &name);
    // Reports the moved-froms due by then as deletions.
    void flushPendingMoves(double dueBy);
    void schedulePendingFlush();
    void rescan();
    void report(FileWatchReport::Kind kind, const QString &path, bool isDirectory,
                const QString &newPath = {});
    bool takeIsNew(const QString &path);

    QString m_root;
    int m_fd = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QHash<int, QString> m_pathOfWatch;
    QHash<QString, int> m_watchOfPath;
    std::vector<PendingMove> m_pendingMoves;
    // Creation time (process clock) of the items created moments ago.
    QHash<QString, double> m_createdAt;
    bool m_limitReported = false;
};

} // namespace tl::platform
