#include "store/item_operations.h"

#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "platform/file_ops.h"
#include "platform/settings.h"
#include "store/custom_order.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/log.h"
#include "store/open_documents.h"
#include "store/properties_carry.h"
#include "store/safe_names.h"
#include "store/side_jobs.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace tl::store {

namespace {

// A move from a view on screen leaves attachments and links to the view.
enum class MoveScope { Everything, LeavingAttachmentsAndLinks };

void postEvent(const char *name, const QVariantMap &payload)
{
    NotificationCenter::defaultCenter().post(QLatin1String(name), payload);
}

// Everything a move owes the rest of the library once the item is at the
// target, in this order.
void followMove(const QString &source, const QString &target, MoveScope scope)
{
    movePropertiesFile(source, target);
    tl_changePathInTagDBToPath(source, target);
    if (tl_bookIsTasklist(path::deletingLastComponent(source)))
        tl_moveTaskToPath(source, target);
    tl_changeSortOrderToPath(source, target);
    if (scope == MoveScope::Everything) {
        tl_copyEmbeddedPhotosToPath(source, target);
        if (platform::settings().boolValue(keys::setting::ManageLinks) &&
            !tl_itemIsTrashed(target)) {
            if (tl_pathIsBook(target))
                tl_renameAllLinksFrom(source, target);
            else
                tl_adjustLinksAndBacklinksAfterRenameFrom(source, target);
        }
    }
    // What the file coordinator tells presenters on other platforms.
    postEvent(events::FileMoved, {{"originalPath", source}, {"newPath", target}});
    if (QFileInfo::exists(tl_plistPath(target)))
        postEvent(events::FileMoved,
                  {{"originalPath", tl_plistPath(source)}, {"newPath", tl_plistPath(target)}});
}

} // namespace

bool tl_moveItemToPath(const QString &source, const QString &target)
{
    if (documentIsShown(source)) {
        tl_moveItemToPathAsync(source, target);
        return true;
    }
    if (!platform::moveItem(source, target)) {
        logLine(QStringLiteral("Move failed: %1").arg(source));
        return false;
    }
    followMove(source, target, MoveScope::Everything);
    return true;
}

void tl_moveItemToPathAsync(const QString &source, const QString &target)
{
    const auto move = [source, target] {
        if (!platform::moveItem(source, target)) {
            logLine(QStringLiteral("..Move failed: %1").arg(source));
            return;
        }
        followMove(source, target, MoveScope::LeavingAttachmentsAndLinks);
    };
    if (QCoreApplication *app = QCoreApplication::instance())
        QMetaObject::invokeMethod(app, move, Qt::QueuedConnection);
    else
        move();
}

bool tl_copyItemToPath(const QString &source, const QString &target)
{
    if (!platform::copyItem(source, target)) {
        logLine(QStringLiteral("Copy failed: %1").arg(source));
        return false;
    }
    if (tl_itemIsChildOfTavelle(source) && tl_itemIsChildOfTavelle(target)) {
        copyPropertiesFile(source, target);
        tl_copyEmbeddedPhotosToPath(source, target);
    }
    tl_copyTaskDetailsToPath(source, target);
    postEvent(events::HandleFileModificationInstantly, {{"path", target}});
    return true;
}

bool tl_deleteItemAtPath(const QString &path)
{
    if (!platform::removeItem(path))
        return false;
    const QString propertiesFile = tl_plistPath(path);
    if (QFileInfo::exists(propertiesFile))
        platform::removeItem(propertiesFile);
    postEvent(events::FileDeletedFromDisk, {{"path", path}});
    return true;
}

QString tl_duplicateItemAtPath(const QString &path)
{
    const QString copyWord = QCoreApplication::translate("tavelle", "copy");
    const QString extension = path::extension(path);
    const QString name =
        QFileInfo(path).isDir() || extension.isEmpty()
            ? QStringLiteral("%1 %2").arg(path::lastComponent(path), copyWord)
            : QStringLiteral("%1 %2.%3")
                  .arg(path::lastComponent(path::deletingExtension(path)), copyWord, extension);
    const QString target = tl_uniqueNameForFileatPath(name, path::deletingLastComponent(path));
    return tl_copyItemToPath(path, target) ? target : QString();
}

} // namespace tl::store
