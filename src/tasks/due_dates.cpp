#include "tasks/due_dates.h"

#include "foundation/clock.h"
#include "foundation/dates.h"
#include "foundation/path_string.h"
#include "tasks/task_details.h"
#include "tasks/task_keys.h"
#include "tasks/task_list.h"

#include <QTimeZone>
#include <cmath>

namespace tl::tasks {

namespace {

const QString kState = QLatin1String(keys::State);
const QString kChanged = QLatin1String(keys::Changed);
const QString kDueDate = QLatin1String(keys::DueDate);
const QStringList kRepeatKeys{QLatin1String(keys::RepeatType), QLatin1String(keys::RepeatUnit),
                              QLatin1String(keys::RepeatFactor)};

bool passed(const std::optional<QDateTime> &date)
{
    return date && *date < clock().now();
}

void finishDateChange(const TaskDetails &details, const QString &itemPath)
{
    details.save(true);
    postTaskIconUpdate(itemPath);
    tl_correctTaskCountAtPath(details.book);
    postFileModification(details.plistPath());
}

} // namespace

void tl_setDueDate(const QString &itemPath, const QDateTime &date)
{
    TaskDetails details = TaskDetails::ofItem(itemPath);
    if (!details.exists)
        return;
    const QDateTime due = QDateTime::fromSecsSinceEpoch(
        qint64(std::floor(double(date.toSecsSinceEpoch()) / 60.0)) * 60, QTimeZone::utc());
    const QDateTime now = clock().now();
    const qint64 stored = details.counter(keys::DueItemCount);
    qint64 count = stored;
    const auto key = details.keyFor(itemPath);
    QVariantMap record;
    if (!key) {
        count += due < now ? 1 : 0;
    } else {
        record = details.record(*key);
        const QString state = record.value(kState).toString();
        if (!record.contains(kState) || state == QLatin1String(keys::Started)) {
            count -= passed(dueDateOf(record)) ? 1 : 0;
            count += due < now ? 1 : 0;
        }
    }
    record.insert(kDueDate, due);
    record.insert(kChanged, now);
    details.map.insert(key.value_or(path::lastComponent(itemPath)), record);
    count = std::max<qint64>(count, 0);
    if (count != stored)
        details.setCounter(keys::DueItemCount, count);
    finishDateChange(details, itemPath);
}

void tl_clearDueDate(const QString &itemPath)
{
    TaskDetails details = TaskDetails::ofItem(itemPath);
    const auto key = details.keyFor(itemPath);
    if (!details.exists || !key)
        return;
    QVariantMap record = details.record(*key);
    const QString state = record.value(kState).toString();
    const qint64 count = details.counter(keys::DueItemCount);
    if (passed(dueDateOf(record)) && state != QLatin1String(keys::Done) &&
        state != QLatin1String(keys::Canceled) && count >= 1)
        details.setCounter(keys::DueItemCount, count - 1);
    record.remove(kDueDate);
    for (const QString &repeatKey : kRepeatKeys)
        record.remove(repeatKey);
    record.insert(kChanged, clock().now());
    details.map.insert(*key, record);
    finishDateChange(details, itemPath);
}

QDateTime tl_dueDateForTask(const QString &itemPath)
{
    const QVariantMap record = tl_getAllTaskDetails(itemPath).value_or(QVariantMap());
    if (const auto due = dueDateOf(record))
        return *due;
    return record.value(kState) == QLatin1String(keys::NoTask) ? distantPast() : distantFuture();
}

QDateTime tl_doneDateForTask(const QString &itemPath)
{
    const QVariant changed = tl_getAllTaskDetails(itemPath).value_or(QVariantMap()).value(kChanged);
    return changed.typeId() == QMetaType::QDateTime ? changed.toDateTime() : distantFuture();
}

std::optional<QStringList> tl_repeatDetails(const QString &itemPath)
{
    const QVariantMap record = tl_getAllTaskDetails(itemPath).value_or(QVariantMap());
    if (!record.contains(kRepeatKeys[0]))
        return std::nullopt;
    QStringList details;
    for (const QString &repeatKey : kRepeatKeys)
        details << record.value(repeatKey).toString();
    return details;
}

void tl_setRepeatDetails(const QString &itemPath, const QStringList &repeat)
{
    TaskDetails details = TaskDetails::ofItem(itemPath);
    if (!details.exists)
        return;
    const bool none = repeat.size() != 3;
    const auto key = details.keyFor(itemPath);
    if (!key && none) {
        postFileModification(details.plistPath());
        return;
    }
    QVariantMap record = key ? details.record(*key) : QVariantMap();
    for (qsizetype i = 0; i < kRepeatKeys.size(); ++i) {
        if (none)
            record.remove(kRepeatKeys[i]);
        else
            record.insert(kRepeatKeys[i], repeat[i]);
    }
    details.map.insert(key.value_or(path::lastComponent(itemPath)), record);
    details.save(true);
    // Setting a repeat is followed by setting the date, which announces both.
    if (none)
        postFileModification(details.plistPath());
}

bool tl_dueDateHasAlertTime(const QDateTime &date)
{
    if (date == distantPast() || date == distantFuture() || !date.isValid())
        return false;
    return date.toLocalTime().time().toString(QStringLiteral("HHmmss")) != u"000100";
}

QDateTime tl_thatDayMidnight(const QDateTime &date)
{
    return QDateTime(date.toLocalTime().date(), QTime(0, 0), Qt::LocalTime).toUTC();
}

QDateTime dateWithoutAlertTime(const QDate &day)
{
    return QDateTime(day, QTime(0, 1), Qt::LocalTime).toUTC();
}

} // namespace tl::tasks
