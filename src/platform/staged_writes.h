#pragma once

// Many files replaced together, each whole, with two syncs in all rather
// than two for each file: every new content is written to a temporary file
// beside its target, all of them reach the disk with one sync of each file
// system, then each is renamed over its target, and the renames reach the
// disk with one more sync. Wherever a crash stops this, each target holds its
// old bytes or its new ones, never a part. Staging, replacing and discarding
// may run on several threads at once.

#include <QByteArray>
#include <QHash>
#include <QString>
#include <array>
#include <atomic>
#include <functional>
#include <mutex>

namespace tl::platform {

class StagedWrites
{
public:
    // `tag` (base-36 letters and digits; anything else gets a fresh one) names
    // the temporaries: a batch that runs again after a crash passes the same
    // tag, so what the first one left behind is replaced or discarded.
    explicit StagedWrites(QByteArray tag);
    // Removes the temporaries never renamed, unless the batch was interrupted.
    ~StagedWrites();
    StagedWrites(const StagedWrites &) = delete;
    StagedWrites &operator=(const StagedWrites &) = delete;

    // A fresh tag.
    static QByteArray newTag();

    // Writes the new content of `path` beside it. False (logged) when it
    // can't: the file keeps its content.
    bool stage(const QString &path, const QByteArray &data);
    // Removes a temporary of this tag left beside `path` by an interrupted run.
    void discardLeftover(const QString &path) const;
    // Every staged content on disk. False (logged) when the disk refused it:
    // nothing may then be renamed.
    bool sync();
    // Renames the staged content of `path` over it, after sync. False (logged)
    // when that fails: the file keeps its content.
    bool replace(const QString &path);
    // Drops the staged content of `path`: the file stays as it is.
    void discard(const QString &path);
    // The renames on disk.
    bool syncReplacements();

    // Whether the batch was stopped as a crash would stop it (in tests).
    bool interrupted() const { return interrupted_; }

    // The points at which a test may stop a batch.
    enum class Step { Stage, Sync, Replace, SyncReplacements, Done };
    // Tests stop batches as a crash would: before the step for which `stop`
    // answers true, given the step and how many of its kind ran before, the
    // batch stops touching the disk and leaves everything as it lies. Done
    // comes once the renames are on disk. Empty: no stops.
    static void setInterruptionForTesting(std::function<bool(Step, int)> stop);

private:
    // Counts the step and asks the test's stop; called with the mutex held.
    bool proceed(Step step);
    // One sync of each file system a staged file lies on; logs a failure.
    bool syncFileSystems() const;

    struct Staged
    {
        QByteArray target;
        QByteArray temporary;
    };

    QByteArray tag_;
    std::mutex mutex_;
    // Staged temporaries by the path given, and a folder on each file system
    // they lie on.
    QHash<QString, Staged> staged_;
    QHash<quint64, QByteArray> fileSystems_;
    std::array<int, 5> stepsRun_{};
    bool synced_ = false;
    std::atomic<bool> interrupted_ = false;
};

} // namespace tl::platform
