#pragma once

#include "sync/conflict_names.h"
#include "sync/versions.h"

#include <QString>
#include <memory>
#include <optional>

namespace tl::sync {

// A burst of arrivals ends in one report this long after the last.
inline constexpr double kReportDelaySeconds = 0.3;

// Settles conflicts as the sync client delivers them: a conflict copy or a
// placeholder appearing in the library brings a report a moment later.
// Without a client nothing runs, and any stale list goes. It watches
// nothing itself: the library's one watcher tells it of each change.
class ConflictWatch
{
public:
    explicit ConflictWatch(const QString &root);
    ~ConflictWatch();
    ConflictWatch(const ConflictWatch &) = delete;
    ConflictWatch &operator=(const ConflictWatch &) = delete;

    bool isActive() const { return m_client.has_value(); }
    QString root() const { return m_root; }
    // One path the library's watcher reported.
    void itemChanged(const QString &path);

private:
    void scheduleReport();

    QString m_root;
    std::optional<SyncClient> m_client;
    std::unique_ptr<SyncStatusSource> m_source;
};

// The desktop program's watch over the current library: it follows the
// watcher's reports (TLKSLibraryItemChangedNotification) and is made again
// for another root.
void installConflictWatch();

} // namespace tl::sync
