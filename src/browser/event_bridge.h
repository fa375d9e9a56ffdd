#pragma once

#include "foundation/notification_center.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <memory>

// The notification centre's events as Qt signals on the main thread. Events
// are posted on whatever thread does the work; the bridge hands each over to
// the thread it lives on (make it on the main thread) and emits it there,
// always queued, so a receiver never runs inside the poster's call. Connect
// with a context object, so a receiver that is gone is never called:
//
//     connect(&bridge, &EventBridge::fileMoved, pane, [pane](...) { ... });
namespace tl::browser {

class EventBridge : public QObject
{
    Q_OBJECT
public:
    explicit EventBridge(NotificationCenter &center = NotificationCenter::defaultCenter(),
                         QObject *parent = nullptr);
    ~EventBridge() override;

Q_SIGNALS:
    // Every event, by name, after its typed signal.
    void eventPosted(const QString &name, const QVariantMap &payload);

    void newBookSelected(const QString &path, int smartType);
    void newDocumentSelected(const QString &path, const QString &searchKey);
    void showItemAtPath(const QString &path);
    void itemsSelected(const QStringList &paths);
    void fileMoved(const QString &originalPath, const QString &newPath, bool silentReload);
    void fileModifiedOnDisk(const QString &path);
    void fileDeletedFromDisk(const QString &path);
    void newFileCreated(const QString &path);
    void newRootSelected();
    void reloadCurrentBook(const QString &path);
    void reloadCurrentDocument();
    void saveCurrentDocument();
    void updateDefaultInbox();
    void updateAllTaskLists();
    void updateTaskIcon(const QString &path);
    void reloadContextSmartBook();
    void reorderContextSmartBook();
    void updateFavorites();
    void openItemsInNewWindow(const QStringList &paths);
    void openItemsInNewTab(const QStringList &paths);
    void openInfo(const QString &path);

private:
    void deliver(const QString &name, const QVariantMap &payload);

    struct Target;
    // Shared with the observer, which may be running on another thread
    // while the bridge goes away.
    std::shared_ptr<Target> m_target;
    std::unique_ptr<ScopedObserver> m_observer;
};

} // namespace tl::browser
