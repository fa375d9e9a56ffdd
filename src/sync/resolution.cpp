#include "sync/resolution.h"

#include "browser/browser_keys.h"
#include "contexts/context_keys.h"
#include "contexts/tag_stores.h"
#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "platform/settings.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/plist_file.h"
#include "store/safe_names.h"
#include "sync/merges.h"
#include "tasks/task_details.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace tl::sync {

namespace S = keys::setting;

namespace {

bool isRootFile(const QString &path, const QString &root, const char *relative)
{
    return canonicallyEqual(path, root + u'/' + QLatin1String(relative));
}

QStringList stringsOf(const QVariantList &list)
{
    QStringList strings;
    for (const QVariant &value : list)
        strings << value.toString();
    return strings;
}

// Marks every conflict version resolved and drops them.
void settleVersions(VersionStore &store, const QString &item, const QList<FileVersion> &versions)
{
    for (const FileVersion &version : versions)
        store.markResolved(item, version);
    store.removeOtherVersions(item);
}

} // namespace

ConflictKind conflictKindOf(const QString &path, const QString &root)
{
    const QString name = QFileInfo(path).fileName();
    if (name == QLatin1String("TLTasklistDetails.plist"))
        return ConflictKind::TaskDetails;
    if (isRootFile(path, root, contexts::keys::AvailableTagsFile))
        return ConflictKind::TagList;
    if (name.endsWith(QLatin1String(".plist")) || isRootFile(path, root, names::RecentItemsFile) ||
        isRootFile(path, root, contexts::keys::ExcludedTagsFile) ||
        isRootFile(path, root, names::SettingsFile))
        return ConflictKind::NewestWins;
    if (store::tl_pathIsExcludedFromDisplay(path))
        return ConflictKind::Ignored;
    return ConflictKind::Document;
}

QString conflictKindName(ConflictKind kind)
{
    switch (kind) {
    case ConflictKind::TaskDetails:
        return QStringLiteral("task details");
    case ConflictKind::TagList:
        return QStringLiteral("tags");
    case ConflictKind::NewestWins:
        return QStringLiteral("newest wins");
    case ConflictKind::Ignored:
        return QStringLiteral("ignored");
    case ConflictKind::Document:
        break;
    }
    return QStringLiteral("document");
}

bool resolveTaskDetails(VersionStore &store, const QString &item)
{
    logLine(QStringLiteral("resolving conflicting task details"));
    tasks::TaskDetails details = tasks::TaskDetails::ofBook(QFileInfo(item).path());
    const QList<FileVersion> versions = store.unresolvedConflictVersions(item);
    for (const FileVersion &version : versions)
        details.map = tl_dictionaryByMergingWithTaskDetails(
            details.map, store::readPlistDictionary(version.location));
    settleVersions(store, item, versions);
    return details.save(true);
}

bool resolveTagList(VersionStore &store, const QString &item)
{
    logLine(QStringLiteral("resolving conflicting tags list"));
    contexts::TagStores stores;
    const QList<FileVersion> versions = store.unresolvedConflictVersions(item);
    for (const FileVersion &version : versions)
        stores.available() = tl_mergeTagListWithList(
            stores.available(), stringsOf(store::readPlistArray(version.location)));
    settleVersions(store, item, versions);
    stores.commit();
    return true;
}

bool resolveNewestWins(VersionStore &store, const QString &item)
{
    const QList<FileVersion> versions = store.unresolvedConflictVersions(item);
    const std::optional<qsizetype> newest = newestVersionIndex(versions);
    if (!newest || localVersionWins(store.currentVersion(item), versions[*newest])) {
        logLine(QStringLiteral("resolving plist - local version wins"));
        settleVersions(store, item, versions);
        return true;
    }
    logLine(QStringLiteral("resolving plist - conflict version wins"));
    if (!store.replaceItem(item, versions[*newest]))
        return false;
    store.removeOtherVersions(item);
    for (const FileVersion &version : store.unresolvedConflictVersions(item))
        store.markResolved(item, version);
    return true;
}

bool tl_resolveConflictKeepingCurrentVersion(VersionStore &store, const QString &item)
{
    bool settled = true;
    for (const FileVersion &version : store.unresolvedConflictVersions(item)) {
        store.markResolved(item, version);
        settled = store.remove(item, version) && settled;
    }
    return settled;
}

bool tl_resolveConflictKeepingConflictVersion(VersionStore &store, const QString &item)
{
    const QList<FileVersion> versions = store.unresolvedConflictVersions(item);
    if (versions.isEmpty() || !store.replaceItem(item, versions.first()))
        return false;
    bool settled = true;
    for (const FileVersion &version : store.unresolvedConflictVersions(item)) {
        store.markResolved(item, version);
        if (!store.remove(item, version)) {
            logLine(QStringLiteral("error removing conflict version: %1").arg(version.location));
            settled = false;
        }
    }
    return settled;
}

QStringList tl_resolveConflictKeepingBothVersionsIsShared(VersionStore &store, const QString &item,
                                                          bool shared)
{
    QStringList kept;
    const QFileInfo info(item);
    for (const FileVersion &version : store.unresolvedConflictVersions(item)) {
        QString suffix = shared ? QString() : version.computerName;
        if (version.hasOriginator())
            suffix = QStringLiteral("%1 %2").arg(version.originatorGiven, version.originatorFamily);
        const QString target = store::tl_uniqueNameForFileatPath(
            keepBothFileName(info.fileName(), suffix), info.path());
        QFile source(version.location);
        QSaveFile copy(target);
        if (!source.open(QIODevice::ReadOnly) || !copy.open(QIODevice::WriteOnly) ||
            copy.write(source.readAll()) < 0 || !copy.commit()) {
            logLine(
                QStringLiteral("could not keep version %1 as %2").arg(version.location, target));
            continue;
        }
        kept << target;
        store.markResolved(item, version);
        store.remove(item, version);
    }
    return kept;
}

namespace {

using Resolution = bool (*)(VersionStore &, const QString &);

Resolution automaticResolution(ConflictKind kind)
{
    switch (kind) {
    case ConflictKind::TaskDetails:
        return resolveTaskDetails;
    case ConflictKind::TagList:
        return resolveTagList;
    default:
        return resolveNewestWins;
    }
}

// Settles a file of the program's own, or lists a document; answers
// whether the conflict stays for the user.
bool settleConflict(VersionStore &store, const QString &path, const QString &root,
                    ReportOutcome &outcome, bool settle)
{
    const ConflictKind kind = conflictKindOf(path, root);
    if (kind == ConflictKind::Ignored) {
        ++outcome.ignored;
        return false;
    }
    if (kind != ConflictKind::Document) {
        if (settle)
            automaticResolution(kind)(store, path);
        outcome.settled << path;
        return false;
    }
    const QList<FileVersion> versions = store.unresolvedConflictVersions(path);
    if (versions.isEmpty())
        return false;
    if (!bothComputerNamesEmpty(store.currentVersion(path), versions.first()))
        return true;
    logLine(QStringLiteral("conflicting versions; there is no computer name, so remove "
                           "other version and mark as resolved"));
    if (settle) {
        store.markResolved(path, versions.first());
        if (!store.remove(path, versions.first()))
            logLine(QStringLiteral("error: %1").arg(versions.first().location));
    }
    outcome.settled << path;
    return false;
}

} // namespace

ReportOutcome tl_fileListReceived(SyncStatusSource &source, bool settle)
{
    const QList<ItemStatus> items = source.report();
    logLine(QStringLiteral("docs reported: %1").arg(items.size()));
    const QString root = store::libraryRoot();
    ReportOutcome outcome;
    for (const ItemStatus &item : items) {
        if (item.hasConflict) {
            if (settleConflict(source.versions(), item.path, root, outcome, settle))
                outcome.conflicts << store::tl_normalizedPath(item.path);
            continue;
        }
        if (item.isFolder || isRootFile(item.path, root, names::RecentItemsFile) ||
            item.downloaded) {
            ++outcome.ignored;
            continue;
        }
        outcome.downloads << item.path;
        if (++outcome.queued == kDownloadsPerReport) {
            logLine(QStringLiteral("have %1 docs and counter %2, stopping here")
                        .arg(items.size())
                        .arg(outcome.queued));
            break;
        }
    }
    outcome.unsynced = items.size() - outcome.ignored - outcome.conflicts.size();
    if (!settle)
        return outcome;

    auto &center = NotificationCenter::defaultCenter();
    center.post(QLatin1String(events::ICloudNumberOfUnsyncedItemsChanged),
                {{QStringLiteral("object"), outcome.unsynced}});
    platform::settings().set(QLatin1String(S::ICloudSyncProgress), outcome.unsynced);
    for (auto it = outcome.downloads.crbegin(); it != outcome.downloads.crend(); ++it)
        source.requestDownload(*it);
    const qsizetype stored =
        platform::settings().array(QLatin1String(S::ICloudArrayOfUnresolvedConflicts)).size();
    if (!outcome.conflicts.isEmpty() || outcome.conflicts.size() != stored) {
        logLine(QStringLiteral("post update about %1 unresolved documents")
                    .arg(outcome.conflicts.size()));
        platform::settings().set(
            QLatin1String(S::ICloudArrayOfUnresolvedConflicts),
            QVariantList(outcome.conflicts.cbegin(), outcome.conflicts.cend()));
        center.post(QLatin1String(events::ICloudNumberOfUnresolvedConflictsChanged));
    }
    return outcome;
}

void forgetUnresolvedConflict(const QString &item)
{
    const QString key = QLatin1String(S::ICloudArrayOfUnresolvedConflicts);
    QVariantList list = platform::settings().array(key);
    const QString normalized = store::tl_normalizedPath(item);
    if (list.removeIf([&](const QVariant &entry) {
            return canonicallyEqual(entry.toString(), normalized);
        }) == 0)
        return;
    platform::settings().set(key, list);
    NotificationCenter::defaultCenter().post(
        QLatin1String(events::ICloudNumberOfUnresolvedConflictsChanged));
}

void clearSyncState()
{
    platform::settings().remove(QLatin1String(S::ICloudArrayOfUnresolvedConflicts));
    platform::settings().remove(QLatin1String(S::ICloudSyncProgress));
}

} // namespace tl::sync
