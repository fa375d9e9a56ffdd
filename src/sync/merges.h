#pragma once

#include "sync/versions.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <optional>

// The rules that settle a conflict without asking: task details merged per
// record, tag lists united, other files by their newest version.
namespace tl::sync {

// `a` with the records of `b` folded in: a record of `b` replaces `a`'s when
// its "Changed" is later or equal (an absent date is the distant past, and
// one second later for `a`), records only in `b` are added, and the
// counters stay `a`'s for the next recount to correct.
QVariantMap tl_dictionaryByMergingWithTaskDetails(const QVariantMap &a, const QVariantMap &b);
// Appends each entry of `other` the list does not hold, locale-aware.
QStringList tl_mergeTagListWithList(QStringList list, const QStringList &other);

// The conflict version with the latest date; among equal dates the earliest
// in the list. Nothing when no version has a date.
std::optional<qsizetype> newestVersionIndex(const QList<FileVersion> &versions);
// Whether the current version stands against that newest one: it does
// unless it is earlier, so a tie keeps the local file.
bool localVersionWins(const FileVersion &current, const FileVersion &newest);

// A library report lists every document conflict but those whose versions
// both lack a computer name; an open document also settles equal names.
bool bothComputerNamesEmpty(const FileVersion &current, const FileVersion &conflict);
// Whether the open document's conflict needs the user: not when both
// computer names are empty or equal.
bool needsChoice(const FileVersion &current, const FileVersion &conflict);
// The name a kept conflict version takes beside the document:
// "Base (Suffix).ext", or the document's own name without a suffix.
QString keepBothFileName(const QString &documentName, const QString &suffix);

// The status line: empty at 0, "Syncing..." at 1, "Syncing %lu items" above.
QString syncStatusText(qint64 unsynced);

} // namespace tl::sync
