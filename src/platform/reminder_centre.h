#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <functional>

// The user-notification centre that reminders go through. This one keeps its
// list in memory and delivers by itself when asked with the time: the
// command and the tests use it as it is, and the desktop's notification
// service builds on it.
namespace tl::platform {

struct Reminder
{
    // The item path; one reminder per item.
    QString identifier;
    QString title;
    QString informativeText;
    QString actionTitle;
    // The item the reminder is about, as its user information.
    QString taskPath;
    QDateTime deliveryDate;
    // The platform's default sound; nothing when false.
    bool sound = false;
};

class ReminderCentre
{
public:
    virtual ~ReminderCentre();

    QList<Reminder> scheduled() const { return scheduled_; }
    void removeScheduled(const QString &identifier);
    // Replaces the whole scheduled list.
    void setScheduled(const QList<Reminder> &reminders);
    QList<Reminder> delivered() const { return delivered_; }
    virtual void removeDelivered(const QString &identifier);

    // Delivers, in date order, every scheduled reminder whose time has come;
    // answers how many.
    int deliverDue(const QDateTime &now);
    // The earliest delivery still scheduled, or an invalid date.
    QDateTime nextDeliveryDate() const;

    std::function<void(const Reminder &)> didDeliver;
    // The user asked to open the reminder's item.
    std::function<void(const Reminder &)> didActivate;

protected:
    // Shows the reminder to the user; nothing here.
    virtual void present(const Reminder &reminder);
    void activate(const QString &identifier);

private:
    QList<Reminder> scheduled_;
    QList<Reminder> delivered_;
};

// The lock the one reminder agent of the user holds while it runs.
QString reminderAgentLockPath();

} // namespace tl::platform
