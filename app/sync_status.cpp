#include "sync_status.h"

#include "browser/event_bridge.h"
#include "browser/outline_controller.h"
#include "browser/smart_books.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "platform/settings.h"
#include "store/keys.h"
#include "sync/merges.h"

namespace tl::app {

SyncStatusLabel::SyncStatusLabel(browser::EventBridge &bridge, QWidget *parent) : QLabel(parent)
{
    setObjectName(QStringLiteral("syncStatus"));
    setText(sync::syncStatusText(
        platform::settings().integer(QLatin1String(keys::setting::ICloudSyncProgress))));
    connect(&bridge, &browser::EventBridge::eventPosted, this,
            [this](const QString &name, const QVariantMap &payload) {
                if (name == QLatin1String(events::ICloudNumberOfUnsyncedItemsChanged))
                    setText(
                        sync::syncStatusText(payload.value(QStringLiteral("object")).toLongLong()));
            });
}

void followUnresolvedConflicts(browser::EventBridge &bridge,
                               browser::TLKSOutlineViewController &outline, QObject *owner)
{
    QObject::connect(
        &bridge, &browser::EventBridge::eventPosted, owner, [&outline](const QString &name) {
            if (name != QLatin1String(events::ICloudNumberOfUnresolvedConflictsChanged))
                return;
            outline.updateSmartBookOfType(browser::ICloudConflicts);
            NotificationCenter::defaultCenter().post(QLatin1String(events::ReloadCurrentBook));
        });
}

} // namespace tl::app
