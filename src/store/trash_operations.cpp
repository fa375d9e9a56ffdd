#include "store/trash_operations.h"

#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "platform/trash.h"
#include "store/item_operations.h"
#include "store/item_path.h"
#include "store/log.h"

#include <QFileInfo>

namespace tl::store {

namespace {

const char kSuppressWarningBeforeDelete[] = "SuppressWarningBeforeDelete";

bool userConfirmsTrashing(const QStringList &paths)
{
    if (platform::settings().boolValue(kSuppressWarningBeforeDelete))
        return true;
    const QString message =
        paths.size() == 1 ? QStringLiteral("Delete \"%1\"?").arg(path::lastComponent(paths[0]))
                          : QStringLiteral("Delete selected Items?");
    const platform::Alert alert{
        message,
        QStringLiteral("The selected items will be moved to the Finder's trash."),
        {QStringLiteral("Delete"), QStringLiteral("Cancel")}};
    return platform::alerts().run(alert) == 0;
}

bool userConfirmsPermanentDeletion()
{
    const platform::Alert alert{
        QStringLiteral("Permanently delete?"),
        QStringLiteral("Items cannot be moved to the trash, so they will be permanently "
                       "deleted.\nYou cannot undo this action."),
        {QStringLiteral("Delete"), QStringLiteral("Cancel")}};
    return platform::alerts().run(alert) == 0;
}

} // namespace

std::optional<TrashedItem> tl_moveItemToTrash(const QString &path)
{
    const std::optional<QString> trashed = platform::trashItem(path);
    if (!trashed)
        return std::nullopt;
    TrashedItem item{path, *trashed, {}};
    if (QFileInfo::exists(tl_plistPath(path)))
        item.propertiesInTrash = platform::trashItem(tl_plistPath(path)).value_or(QString());
    NotificationCenter::defaultCenter().post(events::FileDeletedFromDisk, {{"path", path}});
    return item;
}

bool tl_restoreTrashedItem(const TrashedItem &item)
{
    if (!platform::restoreItem(item.itemInTrash))
        return false;
    if (!item.propertiesInTrash.isEmpty())
        platform::restoreItem(item.propertiesInTrash);
    NotificationCenter::defaultCenter().post(events::HandleFileModificationInstantly,
                                             {{"path", item.originalPath}});
    return true;
}

QList<TrashedItem> moveItemsToTrashAfterConfirmation(const QStringList &paths)
{
    QList<TrashedItem> trashed;
    if (paths.isEmpty() || !userConfirmsTrashing(paths))
        return trashed;
    for (const QString &path : paths) {
        if (std::optional<TrashedItem> item = tl_moveItemToTrash(path)) {
            trashed << *item;
            continue;
        }
        logLine(QStringLiteral("Cannot move to trash. (%1)").arg(path));
        if (userConfirmsPermanentDeletion())
            tl_deleteItemAtPath(path);
    }
    return trashed;
}

} // namespace tl::store
