#include "tasks/task_list.h"

#include "foundation/clock.h"
#include "foundation/path_string.h"
#include "platform/file_ops.h"
#include "store/keys.h"
#include "store/log.h"
#include "store/plist_file.h"
#include "store/task_records.h"
#include "tasks/reminder_rebuild.h"
#include "tasks/repeats.h"
#include "tasks/state_mirror.h"
#include "tasks/task_details.h"
#include "tasks/task_keys.h"

#include <QFile>
#include <QFileInfo>

namespace tl::tasks {

namespace {

const QString kState = QLatin1String(keys::State);
const QString kChanged = QLatin1String(keys::Changed);

bool passed(const std::optional<QDateTime> &date)
{
    return date && *date < clock().now();
}

// Stores the details atomically and tells the views about the item.
void saveAndAnnounce(const TaskDetails &details, const QString &itemPath)
{
    details.save(true);
    postTaskIconUpdate(itemPath);
    postFileModification(details.plistPath());
}

} // namespace

void tl_toggleTasklistKeepingDetails(const QString &book, bool keep)
{
    const QString active = path::appendingComponent(book, QLatin1String(names::TasklistDetails));
    const QString inactive =
        path::appendingComponent(book, QLatin1String(names::TasklistDetailsInactive));
    if (QFileInfo::exists(active)) {
        if (keep) {
            QFile::remove(inactive);
            QFile::rename(active, inactive);
        } else {
            QFile::remove(active);
        }
    } else if (QFileInfo::exists(inactive)) {
        QFile::rename(inactive, active);
    } else {
        store::writePlistFile(active, QVariantMap(), false);
    }
    postFileModification(active);
    postFileModification(inactive);
    tl_repostAllNotifications();
}

void tl_resetTasklist(const QString &book)
{
    TaskDetails details = TaskDetails::ofBook(book);
    details.map.clear();
    details.save(true);
    postFileModification(details.plistPath());
    postTaskIconUpdate(book);
    tl_repostAllNotifications();
}

void tl_toggleItemIsTask(const QString &itemPath)
{
    TaskDetails details = TaskDetails::ofItem(itemPath);
    const auto key = details.keyFor(itemPath);
    QVariantMap record;
    if (!key || details.record(*key).value(kState) != QLatin1String(keys::NoTask))
        record.insert(kState, QLatin1String(keys::NoTask));
    record.insert(kChanged, clock().now());
    details.map.insert(key.value_or(path::lastComponent(itemPath)), record);
    details.save(true);
    tl_correctTaskCountAtPath(details.book);
}

QString tl_toggleTask(const QString &itemPath)
{
    return tl_toggleTaskWithDate(itemPath, clock().now());
}

QString tl_toggleTaskWithDate(const QString &itemPath, const QDateTime &date)
{
    TaskDetails details = TaskDetails::ofItem(itemPath);
    const QString started = QLatin1String(keys::Started);
    if (!details.exists)
        return store::tl_taskIconForStateIsDue(started, false);
    const auto key = details.keyFor(itemPath);
    if (!key) {
        details.map.insert(path::lastComponent(itemPath),
                           QVariantMap{{kState, started}, {kChanged, clock().now()}});
        saveAndAnnounce(details, itemPath);
        return store::tl_taskIconForStateIsDue(started, false);
    }

    QVariantMap record = details.record(*key);
    const QString state = record.value(kState).toString();
    const std::optional<QDateTime> due = dueDateOf(record);
    qint64 done = details.counter(keys::DoneItemCount);
    qint64 overdue = details.counter(keys::DueItemCount);
    QString next;
    bool dueIcon = false;
    bool repeat = false;
    if (state == started) {
        next = QLatin1String(keys::Done);
        ++done;
        if (passed(due) && overdue > 0)
            --overdue;
        repeat = !record.value(QLatin1String(keys::RepeatType)).toString().isEmpty();
    } else if (state == QLatin1String(keys::Done)) {
        next = QLatin1String(keys::Canceled);
    } else if (state == QLatin1String(keys::Canceled)) {
        next = QStringLiteral("open");
        if (done > 0)
            --done;
        if (passed(due))
            ++overdue;
        dueIcon = passed(due);
    } else {
        next = started;
        dueIcon = passed(due);
    }
    if (next == u"open")
        record.remove(kState);
    else
        record.insert(kState, next);
    record.insert(kChanged, date);
    if (record.isEmpty())
        details.map.remove(*key);
    else
        details.map.insert(*key, record);
    details.setCounter(keys::DoneItemCount, done);
    details.setCounter(keys::DueItemCount, overdue);
    saveAndAnnounce(details, itemPath);

    if (due && next != QLatin1String(keys::Canceled))
        tl_repostAllNotifications();
    if (repeat)
        scheduleRepeatingTask(itemPath);
    if (next != started)
        mirrorTaskStateIntoSource(itemPath, next);
    return store::tl_taskIconForStateIsDue(next, dueIcon);
}

std::optional<QVariantMap> tl_getAllTaskDetails(const QString &itemPath)
{
    const TaskDetails details = TaskDetails::ofItem(itemPath);
    const auto key = details.keyFor(itemPath);
    if (!key)
        return std::nullopt;
    return details.record(*key);
}

void tl_setTaskDetails(const QString &itemPath, const QVariantMap &record)
{
    TaskDetails details = TaskDetails::ofItem(itemPath);
    if (!details.exists)
        return;
    if (const auto key = details.keyFor(itemPath))
        details.map.remove(*key);
    details.map.insert(path::lastComponent(itemPath), record);
    saveAndAnnounce(details, itemPath);
    tl_repostAllNotifications();
}

void tl_moveTaskToPath(const QString &oldPath, const QString &newPath)
{
    TaskDetails details = TaskDetails::ofItem(oldPath);
    const auto key = details.keyFor(oldPath);
    if (!details.exists || !key)
        return;
    const QVariantMap record = details.record(*key);
    details.map.remove(*key);
    details.save(true);
    if (!newPath.isEmpty())
        tl_setTaskDetails(newPath, record);
}

void tl_copyTaskDetailsToPath(const QString &source, const QString &target)
{
    if (const auto record = tl_getAllTaskDetails(source))
        tl_setTaskDetails(target, *record);
}

qint64 tl_correctTaskCountAtPathWithCleanup(const QString &book, bool cleanup)
{
    TaskDetails details = TaskDetails::ofBook(book);
    qint64 done = 0;
    qint64 overdue = 0;
    QStringList orphans;
    for (const QString &key : details.recordKeys()) {
        if (!QFileInfo::exists(path::appendingComponent(book, key))) {
            orphans << key;
            continue;
        }
        const QVariantMap record = details.record(key);
        if (isFinishedState(record.value(kState).toString()))
            ++done;
        else if (passed(dueDateOf(record)))
            ++overdue;
    }
    const bool unchanged = orphans.isEmpty() && done == details.counter(keys::DoneItemCount) &&
                           overdue == details.counter(keys::DueItemCount);
    if (details.exists && !unchanged) {
        if (cleanup)
            for (const QString &key : orphans)
                details.map.remove(key);
        details.setCounter(keys::DoneItemCount, done);
        details.setCounter(keys::DueItemCount, overdue);
        if (!details.save(false)) {
            logLine(QStringLiteral("could not save task details for %1").arg(book));
        } else {
            postFileModification(details.plistPath());
            logLine(QStringLiteral("writing task details for %1").arg(book));
        }
    }
    scheduleReminderRebuild();
    return overdue;
}

qint64 tl_correctTaskCountAtPath(const QString &book)
{
    return tl_correctTaskCountAtPathWithCleanup(book, true);
}

} // namespace tl::tasks
