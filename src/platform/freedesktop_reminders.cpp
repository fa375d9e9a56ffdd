#include "platform/freedesktop_reminders.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

namespace tl::platform {

namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kInterface = QStringLiteral("org.freedesktop.Notifications");
// The action the service runs when the notification itself is clicked.
const QString kDefaultAction = QStringLiteral("default");

QDBusMessage call(const QString &method)
{
    return QDBusMessage::createMethodCall(kService, kPath, kInterface, method);
}

} // namespace

FreedesktopReminderCentre::FreedesktopReminderCentre(QObject *parent, QDBusConnection bus)
    : QObject(parent), bus_(std::move(bus))
{
    bus_.connect(kService, kPath, kInterface, QStringLiteral("ActionInvoked"), this,
                 SLOT(actionInvoked(uint, QString)));
    bus_.connect(kService, kPath, kInterface, QStringLiteral("NotificationClosed"), this,
                 SLOT(notificationClosed(uint, uint)));
}

bool FreedesktopReminderCentre::available(const QDBusConnection &bus)
{
    return bus.isConnected() && bus.interface() &&
           bus.interface()->isServiceRegistered(kService).value();
}

void FreedesktopReminderCentre::present(const Reminder &reminder)
{
    QVariantMap hints{{QStringLiteral("desktop-entry"), QStringLiteral("com.tavelle.app")},
                      {QStringLiteral("category"), QStringLiteral("x-tavelle.reminder")}};
    if (reminder.sound)
        hints.insert(QStringLiteral("sound-name"), QStringLiteral("message-new-instant"));
    else
        hints.insert(QStringLiteral("suppress-sound"), true);
    QDBusMessage message = call(QStringLiteral("Notify"));
    message << QStringLiteral("Tavelle") << uint(shown_.value(reminder.identifier))
            << QStringLiteral("com.tavelle.app") << reminder.title << reminder.informativeText
            << QStringList{kDefaultAction, reminder.actionTitle, QStringLiteral("open"),
                           reminder.actionTitle}
            << hints << qint32(-1);
    const QDBusReply<uint> reply = bus_.call(message);
    if (reply.isValid())
        shown_.insert(reminder.identifier, reply.value());
}

void FreedesktopReminderCentre::removeDelivered(const QString &identifier)
{
    if (const uint id = shown_.take(identifier)) {
        QDBusMessage message = call(QStringLiteral("CloseNotification"));
        message << id;
        bus_.send(message);
    }
    ReminderCentre::removeDelivered(identifier);
}

void FreedesktopReminderCentre::actionInvoked(uint id, const QString &)
{
    // Both the click on the notification and its "Open" button open the item.
    if (const QString identifier = shown_.key(id); !identifier.isEmpty())
        activate(identifier);
}

void FreedesktopReminderCentre::notificationClosed(uint id, uint)
{
    if (const QString identifier = shown_.key(id); !identifier.isEmpty())
        shown_.remove(identifier);
}

} // namespace tl::platform
