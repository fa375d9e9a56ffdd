#pragma once

#include "sync/versions.h"

#include <QString>
#include <QStringList>

// Settling conflicts: the files the program owns on its own, documents by
// the user's choice.
namespace tl::sync {

// How a conflicting file is settled, by its path in the library.
enum class ConflictKind {
    TaskDetails, // records merged by date
    TagList,     // lists united
    NewestWins,  // other property files and lists
    Ignored,     // excluded from display
    Document,    // the user chooses, unless no computer names tell them apart
};
ConflictKind conflictKindOf(const QString &path, const QString &root);
// "task details", "tags", "newest wins", "ignored", "document".
QString conflictKindName(ConflictKind kind);

// The automatic resolutions; each answers whether the item is settled.
bool resolveTaskDetails(VersionStore &store, const QString &item);
bool resolveTagList(VersionStore &store, const QString &item);
bool resolveNewestWins(VersionStore &store, const QString &item);

// The user's choices for a document.
bool tl_resolveConflictKeepingCurrentVersion(VersionStore &store, const QString &item);
bool tl_resolveConflictKeepingConflictVersion(VersionStore &store, const QString &item);
// Answers the paths the kept versions were saved to.
QStringList tl_resolveConflictKeepingBothVersionsIsShared(VersionStore &store, const QString &item,
                                                          bool shared);

// Evaluating one report of the sync client.
struct ReportOutcome
{
    QStringList downloads;
    // Normalized paths of documents awaiting a choice.
    QStringList conflicts;
    // Absolute paths of files settled automatically.
    QStringList settled;
    qint64 ignored = 0;
    qint64 queued = 0;
    qint64 unsynced = 0;
};
// At most this many downloads are requested a report; later reports take
// the rest.
inline constexpr qint64 kDownloadsPerReport = 51;

// Goes through the report: settles what the rules settle, lists the
// documents, stores the progress and the list, posts their signals and
// requests the downloads. With `settle` false nothing is changed and only
// the outcome is answered.
ReportOutcome tl_fileListReceived(SyncStatusSource &source, bool settle = true);
// A document settled by the user leaves the list of unresolved ones.
void forgetUnresolvedConflict(const QString &item);
// Without a sync client nothing runs, and any stale list goes.
void clearSyncState();

} // namespace tl::sync
