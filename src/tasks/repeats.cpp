#include "tasks/repeats.h"

#include "foundation/clock.h"
#include "foundation/path_string.h"
#include "foundation/scheduler.h"
#include "platform/file_ops.h"
#include "store/plist_file.h"
#include "store/safe_names.h"
#include "tasks/calendar_steps.h"
#include "tasks/date_texts.h"
#include "tasks/reminder_rebuild.h"
#include "tasks/task_details.h"
#include "tasks/task_keys.h"

#include <QFileInfo>

namespace tl::tasks {

namespace {

// The finished instance's name: "Name - stamp.ext", free in the book.
QString archivePath(const QString &itemPath, const QDateTime &now)
{
    QString stamp = tl_shortDateTimeString(now);
    stamp.replace(u'/', u'.').replace(u':', u'.');
    const QString name = path::lastComponent(itemPath);
    const QString extension = path::extension(name);
    const QString archived = path::deletingExtension(name) + QStringLiteral(" - ") + stamp +
                             (extension.isEmpty() ? QString() : u'.' + extension);
    return store::tl_uniqueNameForFileatPath(archived, path::deletingLastComponent(itemPath));
}

} // namespace

void tl_addRepeatingTask(const QString &itemPath)
{
    TaskDetails details = TaskDetails::ofItem(itemPath);
    const auto key = details.keyFor(itemPath);
    if (!details.exists || !key)
        return;
    QVariantMap record = details.record(*key);
    // Reopened again before the repeat came round: nothing to archive.
    if (record.value(QLatin1String(keys::State)) != QLatin1String(keys::Done))
        return;
    const QDateTime now = clock().now();
    const QString unit = record.value(QLatin1String(keys::RepeatUnit)).toString();
    QDateTime due = dueDateOf(record).value_or(now);
    if (record.value(QLatin1String(keys::RepeatType)) == QLatin1String(keys::WhenDone))
        due = atTimeOfDay(now, unit == u"hour" ? now : due);
    const RepeatStep step = RepeatStep::of(
        unit, record.value(QLatin1String(keys::RepeatFactor)).toString().toLongLong());
    // A unit the controls never offer gives no next date: the task stays done.
    const std::optional<QDateTime> next = firstStepAfter(due, step, now);
    if (!next)
        return;

    const QString copy = archivePath(itemPath, now);
    if (platform::copyItem(itemPath, copy)) {
        const QString sidecar = store::propertiesFilePath(itemPath);
        if (QFileInfo::exists(sidecar))
            platform::copyItem(sidecar, store::propertiesFilePath(copy));
    }
    details.map.insert(
        path::lastComponent(copy),
        QVariantMap{{QLatin1String(keys::DueDate), due},
                    {QLatin1String(keys::State), record.value(QLatin1String(keys::State))},
                    {QLatin1String(keys::Changed), now}});
    record.insert(QLatin1String(keys::DueDate), *next);
    record.remove(QLatin1String(keys::State));
    details.map.insert(*key, record);
    details.save(false);
    postFileModification(copy);
    postFileModification(details.plistPath());
    tl_repostAllNotifications();
}

void scheduleRepeatingTask(const QString &itemPath)
{
    Scheduler::main().schedule(QStringLiteral("tl_addRepeatingTask:") + itemPath, 0.3,
                               [itemPath] { tl_addRepeatingTask(itemPath); });
}

} // namespace tl::tasks
