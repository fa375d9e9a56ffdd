#include "browser/event_bridge.h"

#include "foundation/events.h"

#include <QHash>
#include <QMetaObject>
#include <functional>
#include <mutex>

namespace tl::browser {

namespace {

QString text(const QVariantMap &payload, const char *key)
{
    return payload.value(QLatin1String(key)).toString();
}

QStringList texts(const QVariantMap &payload, const char *key)
{
    return payload.value(QLatin1String(key)).toStringList();
}

using Emitter = std::function<void(EventBridge &, const QVariantMap &)>;

// Each known event and the typed signal it becomes.
const QHash<QString, Emitter> &emitters()
{
    static const QHash<QString, Emitter> table = {
        {events::NewBookSelected,
         [](EventBridge &b, const QVariantMap &p) {
             Q_EMIT b.newBookSelected(text(p, "path"), p.value("smartType").toInt());
         }},
        {events::NewDocumentSelected,
         [](EventBridge &b, const QVariantMap &p) {
             Q_EMIT b.newDocumentSelected(text(p, "path"), text(p, "searchkey"));
         }},
        {events::ShowItemAtPath,
         [](EventBridge &b, const QVariantMap &p) { Q_EMIT b.showItemAtPath(text(p, "path")); }},
        {events::ItemsSelectedInOutlineOrList,
         [](EventBridge &b, const QVariantMap &p) { Q_EMIT b.itemsSelected(texts(p, "paths")); }},
        {events::FileMoved,
         [](EventBridge &b, const QVariantMap &p) {
             Q_EMIT b.fileMoved(text(p, "originalPath"), text(p, "newPath"),
                                p.contains(QStringLiteral("silentReload")));
         }},
        {events::FileModifiedOnDisk,
         [](EventBridge &b, const QVariantMap &p) {
             Q_EMIT b.fileModifiedOnDisk(text(p, "path"));
         }},
        {events::FileDeletedFromDisk,
         [](EventBridge &b, const QVariantMap &p) {
             Q_EMIT b.fileDeletedFromDisk(text(p, "path"));
         }},
        {events::NewFileCreated,
         [](EventBridge &b, const QVariantMap &p) { Q_EMIT b.newFileCreated(text(p, "path")); }},
        {events::NewTavelleRootSelected,
         [](EventBridge &b, const QVariantMap &) { Q_EMIT b.newRootSelected(); }},
        {events::ReloadCurrentBook,
         [](EventBridge &b, const QVariantMap &p) { Q_EMIT b.reloadCurrentBook(text(p, "path")); }},
        {events::ReloadCurrentDocument,
         [](EventBridge &b, const QVariantMap &) { Q_EMIT b.reloadCurrentDocument(); }},
        {events::SaveCurrentDocument,
         [](EventBridge &b, const QVariantMap &) { Q_EMIT b.saveCurrentDocument(); }},
        {events::UpdateDefaultInbox,
         [](EventBridge &b, const QVariantMap &) { Q_EMIT b.updateDefaultInbox(); }},
        {events::UpdateAllTaskLists,
         [](EventBridge &b, const QVariantMap &) { Q_EMIT b.updateAllTaskLists(); }},
        {events::UpdateTaskIcon,
         [](EventBridge &b, const QVariantMap &p) { Q_EMIT b.updateTaskIcon(text(p, "object")); }},
        {events::ReloadContextSmartBook,
         [](EventBridge &b, const QVariantMap &) { Q_EMIT b.reloadContextSmartBook(); }},
        {events::ReorderContextSmartBook,
         [](EventBridge &b, const QVariantMap &) { Q_EMIT b.reorderContextSmartBook(); }},
        {events::BookViewShouldUpdateFavorites,
         [](EventBridge &b, const QVariantMap &) { Q_EMIT b.updateFavorites(); }},
        {events::OpenItemsInNewWindow,
         [](EventBridge &b, const QVariantMap &p) {
             Q_EMIT b.openItemsInNewWindow(texts(p, "paths"));
         }},
        {events::OpenItemsInNewTab,
         [](EventBridge &b, const QVariantMap &p) {
             Q_EMIT b.openItemsInNewTab(texts(p, "paths"));
         }},
        {events::OpenInfo,
         [](EventBridge &b, const QVariantMap &p) { Q_EMIT b.openInfo(text(p, "path")); }},
    };
    return table;
}

} // namespace

struct EventBridge::Target
{
    std::mutex mutex;
    EventBridge *bridge = nullptr;
};

EventBridge::EventBridge(NotificationCenter &center, QObject *parent)
    : QObject(parent), m_target(std::make_shared<Target>())
{
    m_target->bridge = this;
    // The observer may run on any thread: it only queues the delivery on the
    // bridge's own thread, where the signals go out.
    m_observer = std::make_unique<ScopedObserver>(
        QString(),
        [target = m_target](const QString &name, const QVariantMap &payload) {
            std::lock_guard lock(target->mutex);
            if (EventBridge *bridge = target->bridge)
                QMetaObject::invokeMethod(
                    bridge, [bridge, name, payload] { bridge->deliver(name, payload); },
                    Qt::QueuedConnection);
        },
        center);
}

EventBridge::~EventBridge()
{
    m_observer.reset();
    // An observer already running elsewhere finds no bridge; deliveries
    // queued before die with the object.
    std::lock_guard lock(m_target->mutex);
    m_target->bridge = nullptr;
}

void EventBridge::deliver(const QString &name, const QVariantMap &payload)
{
    const auto emitter = emitters().constFind(name);
    if (emitter != emitters().constEnd())
        (*emitter)(*this, payload);
    Q_EMIT eventPosted(name, payload);
}

} // namespace tl::browser
