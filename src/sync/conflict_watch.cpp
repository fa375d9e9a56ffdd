#include "sync/conflict_watch.h"

#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/scheduler.h"
#include "store/library_root.h"
#include "sync/resolution.h"
#include "sync/sync_sources.h"

#include <QFileInfo>

namespace tl::sync {

namespace {

const QString kReportKey = QStringLiteral("tl_iCloudUpdateDocuments");

} // namespace

ConflictWatch::ConflictWatch(const QString &root)
    : m_root(root), m_client(syncClientOfLibrary(root)), m_source(syncSourceForLibrary(root))
{
    if (!m_client) {
        clearSyncState();
        return;
    }
    // What arrived while the program was not watching.
    scheduleReport();
}

ConflictWatch::~ConflictWatch()
{
    Scheduler::main().cancel(kReportKey);
}

void ConflictWatch::itemChanged(const QString &path)
{
    if (!m_client)
        return;
    const QString name = QFileInfo(path).fileName();
    if (parseConflictCopyName(*m_client, name) || placeholderTarget(*m_client, name))
        scheduleReport();
}

void ConflictWatch::scheduleReport()
{
    Scheduler::main().schedule(kReportKey, kReportDelaySeconds,
                               [this] { tl_fileListReceived(*m_source); });
}

void installConflictWatch()
{
    // The scheduler outlives the watch at exit, as the watch cancels its report.
    Scheduler::main();
    static std::unique_ptr<ConflictWatch> watch;
    const auto watchCurrentRoot = [] {
        watch.reset();
        watch = std::make_unique<ConflictWatch>(store::libraryRoot());
    };
    static ScopedObserver rootChanges(
        QLatin1String(events::NewTavelleRootSelected),
        [=](const QString &, const QVariantMap &) { watchCurrentRoot(); });
    static ScopedObserver changes(
        QLatin1String(events::LibraryItemChanged), [=](const QString &, const QVariantMap &report) {
            // The root is read afresh: a library opened without the root
            // event still gets its watch.
            if (watch->root() != store::libraryRoot())
                watchCurrentRoot();
            watch->itemChanged(report.value(QStringLiteral("path")).toString());
            if (report.contains(QStringLiteral("newPath")))
                watch->itemChanged(report.value(QStringLiteral("newPath")).toString());
        });
    watchCurrentRoot();
}

} // namespace tl::sync
