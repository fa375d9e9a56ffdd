#include "sync/merges.h"

#include "foundation/compare.h"
#include "foundation/dates.h"
#include "tasks/task_details.h"

#include <QFileInfo>

namespace tl::sync {

namespace {

QDateTime changedOf(const QVariant &record, const QDateTime &absent)
{
    const QDateTime changed = record.toMap().value(QStringLiteral("Changed")).toDateTime();
    return changed.isValid() ? changed : absent;
}

std::optional<QString> keyMatching(const QVariantMap &map, const QString &key)
{
    if (map.contains(key))
        return key;
    for (auto it = map.keyBegin(); it != map.keyEnd(); ++it)
        if (localizedStandardCompare(*it, key) == 0)
            return *it;
    return std::nullopt;
}

} // namespace

QVariantMap tl_dictionaryByMergingWithTaskDetails(const QVariantMap &a, const QVariantMap &b)
{
    QVariantMap merged = a;
    for (auto it = b.constBegin(); it != b.constEnd(); ++it) {
        if (tasks::isCounterKey(it.key()))
            continue;
        const std::optional<QString> ours = keyMatching(a, it.key());
        if (!ours) {
            merged.insert(it.key(), it.value());
            continue;
        }
        // Of two records without dates ours stays; of equal dates theirs wins.
        const QDateTime x = changedOf(a.value(*ours), distantPast().addSecs(1));
        const QDateTime y = changedOf(it.value(), distantPast());
        if (y >= x)
            merged.insert(*ours, it.value());
    }
    return merged;
}

QStringList tl_mergeTagListWithList(QStringList list, const QStringList &other)
{
    for (const QString &tag : other) {
        const bool held = std::any_of(list.cbegin(), list.cend(), [&](const QString &existing) {
            return localizedCompare(existing, tag) == 0;
        });
        if (!held)
            list.append(tag);
    }
    return list;
}

std::optional<qsizetype> newestVersionIndex(const QList<FileVersion> &versions)
{
    std::optional<qsizetype> newest;
    for (qsizetype i = 0; i < versions.size(); ++i) {
        if (!versions[i].modified)
            continue;
        if (!newest || *versions[i].modified > *versions[*newest].modified)
            newest = i;
    }
    return newest;
}

bool localVersionWins(const FileVersion &current, const FileVersion &newest)
{
    if (!newest.modified)
        return true;
    return current.modified && *current.modified >= *newest.modified;
}

bool bothComputerNamesEmpty(const FileVersion &current, const FileVersion &conflict)
{
    return current.computerName.isEmpty() && conflict.computerName.isEmpty();
}

bool needsChoice(const FileVersion &current, const FileVersion &conflict)
{
    // One empty name never equals a non-empty one.
    return !bothComputerNamesEmpty(current, conflict) &&
           localizedCompare(current.computerName, conflict.computerName) != 0;
}

QString keepBothFileName(const QString &documentName, const QString &suffix)
{
    if (suffix.isEmpty())
        return documentName;
    const QFileInfo info(documentName);
    const QString extension = info.suffix();
    const QString base = extension.isEmpty() ? documentName : info.completeBaseName();
    const QString named = base + QStringLiteral(" (%1)").arg(suffix);
    return extension.isEmpty() ? named : named + u'.' + extension;
}

QString syncStatusText(qint64 unsynced)
{
    if (unsynced <= 0)
        return {};
    if (unsynced == 1)
        return QStringLiteral("Syncing...");
    return QStringLiteral("Syncing %1 items").arg(unsynced);
}

} // namespace tl::sync
