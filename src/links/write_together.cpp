#include "links/write_together.h"

#include "foundation/concurrently.h"
#include "links/path_lock.h"
#include "platform/file_ops.h"
#include "platform/staged_writes.h"

#include <QFileInfo>
#include <algorithm>
#include <mutex>

namespace tl::links {

namespace {

constexpr int kConcurrentRenames = 4;

} // namespace

QString heldFileKey(const QString &path)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? path : canonical;
}

std::optional<QList<qsizetype>> writeTogether(const QByteArray &tag,
                                              const QList<const HeldFile *> &files,
                                              const QStringList &untouched,
                                              const std::function<void(qsizetype, bool)> &done)
{
    platform::StagedWrites writes(tag);
    for (const QString &path : untouched)
        writes.discardLeftover(path);
    QList<qsizetype> staged;
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (writes.stage(files[i]->path, files[i]->bytes))
            staged.append(i);
        else if (writes.interrupted())
            return std::nullopt;
        else
            done(i, false);
    }
    if (!writes.sync())
        return std::nullopt;
    // Each rename frees the replaced file's blocks, a wait on the disk: a few
    // at a time, those waits overlap.
    QList<qsizetype> changedMeanwhile;
    std::mutex changedMutex;
    forEachConcurrently(staged.size(), kConcurrentRenames, [&](qsizetype s) {
        const qsizetype i = staged[s];
        const HeldFile &file = *files[i];
        const auto lock = lockPath(file.path);
        if (platform::readFile(file.path) != file.original) {
            writes.discard(file.path);
            const std::lock_guard changed(changedMutex);
            changedMeanwhile.append(i);
        } else if (const bool replaced = writes.replace(file.path);
                   replaced || !writes.interrupted()) {
            done(i, replaced);
        }
    });
    if (writes.interrupted() || !writes.syncReplacements())
        return std::nullopt;
    std::sort(changedMeanwhile.begin(), changedMeanwhile.end());
    return changedMeanwhile;
}

} // namespace tl::links
