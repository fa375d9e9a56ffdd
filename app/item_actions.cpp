#include "item_actions.h"

#include "contexts/tag_database.h"
#include "foundation/path_string.h"
#include "platform/alerts.h"
#include "platform/file_ops.h"
#include "store/custom_order.h"
#include "store/duplicate_as.h"
#include "store/item_operations.h"
#include "store/properties.h"
#include "store/safe_names.h"
#include "store/trash_operations.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUndoStack>
#include <QUrl>

namespace tl::app {

namespace {

// The items a trashing took away, put back by undo and away again by redo.
class TrashCommand : public QUndoCommand
{
public:
    explicit TrashCommand(QList<store::TrashedItem> items)
        : QUndoCommand(items.size() == 1
                           ? QStringLiteral("Move to Trash")
                           : QStringLiteral("Move %1 Items to Trash").arg(items.size())),
          m_items(std::move(items))
    {
    }

    void undo() override
    {
        for (const store::TrashedItem &item : m_items)
            store::tl_restoreTrashedItem(item);
    }

    void redo() override
    {
        if (m_first) {
            m_first = false;
            return;
        }
        for (store::TrashedItem &item : m_items)
            if (auto again = store::tl_moveItemToTrash(item.originalPath))
                item = *again;
    }

private:
    QList<store::TrashedItem> m_items;
    bool m_first = true;
};

} // namespace

ItemActions::ItemActions(QUndoStack *undoStack, QObject *parent)
    : QObject(parent), m_undo(undoStack)
{
}

QString ItemActions::newBook(const QString &parent)
{
    const QString path = store::tl_uniqueNameForFileatPath(QStringLiteral("New Book"), parent);
    return platform::makeFolder(path) ? path : QString();
}

bool ItemActions::rename(const QString &path, const QString &newName)
{
    const QString safe = store::tl_escapeIllegalCharacters(newName);
    const QString target = path::appendingComponent(path::deletingLastComponent(path), safe);
    if (QFileInfo::exists(target) && target.compare(path, Qt::CaseInsensitive) != 0) {
        platform::alerts().run({QStringLiteral("Cannot Rename"),
                                QStringLiteral("The name \"%1\" is already taken.").arg(safe),
                                {QStringLiteral("OK")}});
        return false;
    }
    return store::tl_moveItemToPath(path, target);
}

QString ItemActions::duplicate(const QString &path)
{
    return store::tl_duplicateItemAtPath(path);
}

QString ItemActions::duplicateAs(const QString &path, const QString &kind)
{
    if (kind == u"txt")
        return store::tl_duplicateItemAsPlaintext(path);
    if (kind == u"md")
        return store::tl_duplicateItemAsMarkdown(path);
    if (kind == u"html")
        return store::tl_duplicateItemAsFormattedDocument(path);
    if (kind == u"fountain")
        return store::tl_duplicateItemAsFountain(path);
    if (kind == u"tex")
        return store::tl_duplicateAsLatex(path);
    return store::tl_duplicateItemAs(path, kind);
}

void ItemActions::moveToTrash(const QStringList &paths)
{
    QList<store::TrashedItem> trashed = store::moveItemsToTrashAfterConfirmation(paths);
    if (!trashed.isEmpty())
        m_undo->push(new TrashCommand(std::move(trashed)));
}

void ItemActions::pin(const QString &path)
{
    store::tl_pinToTop(path);
}

void ItemActions::setColorLabel(const QStringList &paths, const QString &name)
{
    for (const QString &path : paths)
        store::tl_setColorLabel(path, name);
}

void ItemActions::toggleFavorite(const QStringList &paths)
{
    for (const QString &path : paths)
        contexts::tl_toggleFavorite(path);
}

void ItemActions::showInFileManager(const QString &path)
{
    // The file manager's own interface selects the item; without one the
    // folder opens.
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 3000);
    if (reply.type() != QDBusMessage::ReplyMessage)
        QDesktopServices::openUrl(QUrl::fromLocalFile(path::deletingLastComponent(path)));
}

void ItemActions::openWithDefaultApplication(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

} // namespace tl::app
