#pragma once

#include "sync/conflict_names.h"
#include "sync/versions.h"

#include <QString>
#include <memory>
#include <optional>

namespace tl::platform {
class FileWatcher;
}

namespace tl::sync {

// A burst of arrivals ends in one report this long after the last.
inline constexpr double kReportDelaySeconds = 0.3;

// Settles conflicts as the sync client delivers them: a conflict copy or a
// placeholder appearing in the library brings a report a moment later.
// Without a client nothing runs, and any stale list goes.
class ConflictWatch
{
public:
    explicit ConflictWatch(const QString &root);
    ~ConflictWatch();
    ConflictWatch(const ConflictWatch &) = delete;
    ConflictWatch &operator=(const ConflictWatch &) = delete;

    bool isActive() const { return m_client.has_value(); }
    // One path the library's watcher reported.
    void itemChanged(const QString &path);

private:
    void scheduleReport();

    std::optional<SyncClient> m_client;
    std::unique_ptr<SyncStatusSource> m_source;
    std::unique_ptr<platform::FileWatcher> m_watcher;
};

// The desktop program's watch over the current library, made again when
// another root is chosen.
void installConflictWatch();

} // namespace tl::sync
