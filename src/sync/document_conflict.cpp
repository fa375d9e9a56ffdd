#include "sync/document_conflict.h"

#include "browser/document_view_controller.h"
#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "foundation/scheduler.h"
#include "platform/alerts.h"
#include "store/library_root.h"
#include "store/log.h"
#include "sync/merges.h"
#include "sync/resolution.h"
#include "sync/sync_sources.h"
#include "tasks/date_texts.h"

namespace tl::sync {

namespace {

const QString kModifiedByYou = QStringLiteral("Modified by you");

QString versionName(const FileVersion &version, bool shared)
{
    if (version.hasOriginator())
        return QStringLiteral("%1 %2").arg(version.originatorGiven, version.originatorFamily);
    return shared ? kModifiedByYou : version.computerName;
}

QString buttonTitle(const QString &name, const FileVersion &version)
{
    return QStringLiteral("%1: %2").arg(
        name, version.modified ? tasks::tl_fancyWeekdayStringExact(*version.modified)
                               : QStringLiteral("Deleted"));
}

} // namespace

VersionTitles versionTitles(const FileVersion &current, const FileVersion &conflict, bool shared)
{
    QString currentName = versionName(current, shared);
    QString conflictName = versionName(conflict, shared);
    if (currentName.isEmpty())
        currentName = QStringLiteral("Version 1");
    if (conflictName.isEmpty())
        conflictName = QStringLiteral("Version 2");
    // Two of "you": the computers tell them apart, where their names are short.
    if (currentName == kModifiedByYou && conflictName == kModifiedByYou) {
        const auto computer = [](const FileVersion &version, const QString &otherwise) {
            const QString &name = version.computerName;
            return !name.isEmpty() && name.size() < 30 ? name : otherwise;
        };
        currentName = computer(current, currentName);
        conflictName = computer(conflict, conflictName);
    }
    return {buttonTitle(currentName, current), buttonTitle(conflictName, conflict)};
}

struct DocumentConflict::Observer
{
    std::unique_ptr<ScopedObserver> conflicts;
};

DocumentConflict::DocumentConflict(browser::TLKSDocumentViewController &controller, QObject *parent)
    : QObject(parent), m_controller(controller), m_observer(std::make_unique<Observer>())
{
    // Showing a document clears the flag; the check comes a moment later.
    connect(&controller, &browser::TLKSDocumentViewController::documentShown, this, [this] {
        Q_EMIT conflictChanged();
        scheduleCheck();
    });
    connect(&controller, &browser::TLKSDocumentViewController::unresolvedConflictCheckRequested,
            this, &DocumentConflict::tl_iCloudCheckUnresolvedConflict);
    // A conflict copy of the open document may arrive while it is on show.
    m_observer->conflicts = std::make_unique<ScopedObserver>(
        QLatin1String(events::ICloudNumberOfUnresolvedConflictsChanged),
        [this](const QString &, const QVariantMap &) {
            QMetaObject::invokeMethod(this, &DocumentConflict::scheduleCheck, Qt::QueuedConnection);
        });
}

DocumentConflict::~DocumentConflict()
{
    m_observer.reset();
    Scheduler::main().cancel(
        QStringLiteral("tl_iCloudCheckUnresolvedConflict %1").arg(quintptr(this)));
}

bool DocumentConflict::isUnresolved() const
{
    return m_controller.iCloudHaveUnresolvedConflict;
}

void DocumentConflict::scheduleCheck()
{
    if (m_controller.path.isEmpty())
        return;
    Scheduler::main().schedule(
        QStringLiteral("tl_iCloudCheckUnresolvedConflict %1").arg(quintptr(this)), kCheckDelay,
        [this] { tl_iCloudCheckUnresolvedConflict(); });
}

void DocumentConflict::tl_iCloudCheckUnresolvedConflict()
{
    const QString item = m_controller.path;
    const auto source = syncSourceForLibrary(store::libraryRoot());
    if (item.isEmpty() || source->name().isEmpty())
        return;
    VersionStore &store = source->versions();
    const QList<FileVersion> versions = store.unresolvedConflictVersions(item);
    if (versions.isEmpty()) {
        // Settled elsewhere: the document shows as it is now, editable.
        if (m_controller.iCloudHaveUnresolvedConflict) {
            m_controller.saveCurrentDocumentOffset();
            m_controller.showDocument();
            Q_EMIT conflictChanged();
        }
        return;
    }
    if (m_alertShowing) {
        logLine(QStringLiteral("already showing conflict alert, ignore"));
        m_controller.iCloudHaveUnresolvedConflict = true;
        return;
    }
    const FileVersion current = store.currentVersion(item);
    if (!needsChoice(current, versions.first())) {
        logLine(QStringLiteral("==> no localized computer name or names identical > "
                               "autoresolve\n%1\n%2")
                    .arg(current.computerName, versions.first().computerName));
        sync::tl_resolveConflictKeepingCurrentVersion(store, item);
        settled(item);
        return;
    }
    m_titles = versionTitles(current, versions.first(), false);
    m_controller.iCloudHaveUnresolvedConflict = true;
    Q_EMIT conflictChanged();

    m_alertShowing = true;
    const int answer = platform::alerts().run(
        {QLatin1String(kConflictAlertHeading),
         path::lastComponent(item),
         {m_titles.current, m_titles.conflict, QLatin1String(kKeepBothVersions),
          QLatin1String(kContinueInReadOnlyMode)}});
    m_alertShowing = false;
    switch (answer) {
    case 0:
        tl_resolveConflictKeepingCurrentVersion();
        break;
    case 1:
        tl_resolveConflictKeepingConflictVersion();
        break;
    case 2:
        tl_resolveConflictKeepingBothVersions();
        break;
    default:
        // Read-only; the first attempt at editing asks again.
        break;
    }
}

void DocumentConflict::tl_resolveConflictKeepingCurrentVersion()
{
    const QString item = m_controller.path;
    const auto source = syncSourceForLibrary(store::libraryRoot());
    sync::tl_resolveConflictKeepingCurrentVersion(source->versions(), item);
    settled(item);
}

void DocumentConflict::tl_resolveConflictKeepingConflictVersion()
{
    const QString item = m_controller.path;
    const auto source = syncSourceForLibrary(store::libraryRoot());
    sync::tl_resolveConflictKeepingConflictVersion(source->versions(), item);
    settled(item);
    m_controller.saveCurrentDocumentOffset();
    m_controller.showDocument();
}

void DocumentConflict::tl_resolveConflictKeepingBothVersions()
{
    const QString item = m_controller.path;
    const auto source = syncSourceForLibrary(store::libraryRoot());
    tl_resolveConflictKeepingBothVersionsIsShared(source->versions(), item, false);
    settled(item);
}

void DocumentConflict::settled(const QString &item)
{
    const bool wasUnresolved = m_controller.iCloudHaveUnresolvedConflict;
    m_controller.iCloudHaveUnresolvedConflict = false;
    forgetUnresolvedConflict(item);
    if (wasUnresolved)
        Q_EMIT conflictChanged();
}

} // namespace tl::sync
