#pragma once

#include "platform/reminder_centre.h"

#include <QHash>
#include <QObject>

// Reminders shown by the desktop's notification service
// (org.freedesktop.Notifications on the session bus), with an "Open" action.
namespace tl::platform {

class FreedesktopReminderCentre : public QObject, public ReminderCentre
{
    Q_OBJECT
public:
    explicit FreedesktopReminderCentre(QObject *parent = nullptr);

    // Whether a session bus with a notification service is there.
    static bool available();

    void removeDelivered(const QString &identifier) override;

protected:
    void present(const Reminder &reminder) override;

private Q_SLOTS:
    void actionInvoked(uint id, const QString &action);
    void notificationClosed(uint id, uint reason);

private:
    // The service's numbers of the notifications shown, by identifier.
    QHash<QString, uint> shown_;
};

} // namespace tl::platform
