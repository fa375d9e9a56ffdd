#include "store/task_records.h"

#include "foundation/clock.h"
#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/plist_file.h"

namespace tl::store {

QVariantMap readTaskDetails(const QString &bookPath)
{
    return readPlistDictionary(
        path::appendingComponent(bookPath, QLatin1String(names::TasklistDetails)));
}

std::optional<QString> taskRecordKeyForName(const QVariantMap &details, const QString &name)
{
    // Exact keys are the common case; the collator only runs for the rest.
    if (details.contains(name))
        return name;
    for (auto it = details.cbegin(); it != details.cend(); ++it)
        if (localizedCompare(it.key(), name) == 0)
            return it.key();
    return std::nullopt;
}

QVariantMap taskRecordForItem(const QString &itemPath)
{
    const QVariantMap details = readTaskDetails(path::deletingLastComponent(itemPath));
    const auto key = taskRecordKeyForName(details, path::lastComponent(itemPath));
    return key ? details.value(*key).toMap() : QVariantMap();
}

QString tl_taskIconForStateIsDue(const QString &state, bool due)
{
    if (state == u"no_task")
        return {};
    if (state == u"done" || state == u"canceled")
        return QStringLiteral("task-") + state;
    const QString base =
        state == u"started" ? QStringLiteral("task-started") : QStringLiteral("task-open");
    return due ? base + QStringLiteral("-due") : base;
}

bool tl_taskIsDoneOrCanceled(const QString &iconOrState)
{
    return iconOrState.contains(u"done") || iconOrState.contains(u"canceled");
}

QString tl_iconForTask(const QString &itemPath)
{
    const QString book = path::deletingLastComponent(itemPath);
    if (tl_pathIsBook(itemPath) || !tl_bookIsTasklist(book))
        return {};
    const QVariantMap details = readTaskDetails(book);
    const auto key = taskRecordKeyForName(details, path::lastComponent(itemPath));
    if (!key)
        return QStringLiteral("task-open");
    const QVariantMap record = details.value(*key).toMap();
    const QString state = record.value(QStringLiteral("State"), QStringLiteral("open")).toString();
    const QVariant dueDate = record.value(QStringLiteral("DueDate"));
    const bool due = dueDate.isValid() && dueDate.toDateTime() < clock().now();
    return tl_taskIconForStateIsDue(state, due);
}

bool tl_itemIsTask(const QString &itemPath)
{
    return !tl_iconForTask(itemPath).isEmpty();
}

} // namespace tl::store
