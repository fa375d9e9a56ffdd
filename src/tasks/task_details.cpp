#include "tasks/task_details.h"

#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "store/keys.h"
#include "store/plist_file.h"
#include "store/task_records.h"
#include "tasks/task_keys.h"

#include <QFileInfo>
#include <limits>

namespace tl::tasks {

TaskDetails TaskDetails::ofBook(const QString &book)
{
    TaskDetails details;
    details.book = book;
    details.exists = QFileInfo::exists(details.plistPath());
    if (details.exists)
        details.map = store::readPlistDictionary(details.plistPath());
    return details;
}

TaskDetails TaskDetails::ofItem(const QString &itemPath)
{
    return ofBook(path::deletingLastComponent(itemPath));
}

QString TaskDetails::plistPath() const
{
    return path::appendingComponent(book, QLatin1String(names::TasklistDetails));
}

std::optional<QString> TaskDetails::keyFor(const QString &itemPath) const
{
    return store::taskRecordKeyForName(map, path::lastComponent(itemPath));
}

QStringList TaskDetails::recordKeys() const
{
    QStringList keys;
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        if (!isCounterKey(it.key()))
            keys << it.key();
    return keys;
}

qint64 TaskDetails::counter(const char *key) const
{
    // Leading digits with an optional sign, clamped to 32 bits; anything
    // else reads 0.
    const QString text = map.value(QLatin1String(key)).toString().trimmed();
    qsizetype end = 0;
    if (end < text.size() && (text[end] == u'-' || text[end] == u'+'))
        ++end;
    while (end < text.size() && text[end].isDigit())
        ++end;
    bool ok = false;
    const qint64 value = text.left(end).toLongLong(&ok);
    if (!ok)
        return end > 1 ? (text[0] == u'-' ? std::numeric_limits<qint32>::min()
                                          : std::numeric_limits<qint32>::max())
                       : 0;
    return std::clamp<qint64>(value, std::numeric_limits<qint32>::min(),
                              std::numeric_limits<qint32>::max());
}

void TaskDetails::setCounter(const char *key, qint64 value)
{
    map.insert(QLatin1String(key), QString::number(quint64(value)));
}

bool TaskDetails::save(bool atomically) const
{
    return store::writePlistFile(plistPath(), map, atomically);
}

bool isCounterKey(const QString &key)
{
    return key == QLatin1String(keys::DueItemCount) || key == QLatin1String(keys::DoneItemCount);
}

bool isFinishedState(const QString &state)
{
    return state == QLatin1String(keys::Done) || state == QLatin1String(keys::Canceled) ||
           state == QLatin1String(keys::NoTask);
}

std::optional<QDateTime> dueDateOf(const QVariantMap &record)
{
    const QVariant date = record.value(QLatin1String(keys::DueDate));
    if (date.typeId() != QMetaType::QDateTime)
        return std::nullopt;
    return date.toDateTime();
}

void postFileModification(const QString &path)
{
    NotificationCenter::defaultCenter().post(QLatin1String(events::HandleFileModificationInstantly),
                                             {{QStringLiteral("path"), path}});
}

void postTaskIconUpdate(const QString &path)
{
    NotificationCenter::defaultCenter().post(QLatin1String(events::UpdateTaskIcon),
                                             {{QStringLiteral("object"), path}});
}

} // namespace tl::tasks
