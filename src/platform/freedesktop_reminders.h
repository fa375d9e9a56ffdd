#pragma once

#include "platform/reminder_centre.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>

// Reminders shown by the desktop's notification service
// (org.freedesktop.Notifications on the session bus), with an "Open" action.
namespace tl::platform {

class FreedesktopReminderCentre : public QObject, public ReminderCentre
{
    Q_OBJECT
public:
    // The bus is the session's unless a test hands in a private one.
    explicit FreedesktopReminderCentre(QObject *parent = nullptr,
                                       QDBusConnection bus = QDBusConnection::sessionBus());

    // Whether the bus is there with a notification service on it.
    static bool available(const QDBusConnection &bus = QDBusConnection::sessionBus());

    void removeDelivered(const QString &identifier) override;

protected:
    void present(const Reminder &reminder) override;

private Q_SLOTS:
    void actionInvoked(uint id, const QString &action);
    void notificationClosed(uint id, uint reason);

private:
    QDBusConnection bus_;
    // The service's numbers of the notifications shown, by identifier.
    QHash<QString, uint> shown_;
};

} // namespace tl::platform
