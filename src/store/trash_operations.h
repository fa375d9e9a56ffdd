#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

// Moving items to the freedesktop trash, with their properties files, and
// back again for undo.
namespace tl::store {

struct TrashedItem
{
    QString originalPath;
    QString itemInTrash;
    // Empty when the item had no properties file beside it.
    QString propertiesInTrash;
};

// Trashes the item and then its properties file.
std::optional<TrashedItem> tl_moveItemToTrash(const QString &path);
// The undo of a trashing: both files back where they were.
bool tl_restoreTrashedItem(const TrashedItem &item);

// The Move to Trash command: asks first unless SuppressWarningBeforeDelete
// is on, and offers to delete for good what can't be trashed. Answers what
// went to the trash, for the undo step.
QList<TrashedItem> moveItemsToTrashAfterConfirmation(const QStringList &paths);

} // namespace tl::store
