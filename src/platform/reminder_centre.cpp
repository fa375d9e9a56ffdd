#include "platform/reminder_centre.h"

#include <QDir>
#include <QStandardPaths>
#include <algorithm>

namespace tl::platform {

ReminderCentre::~ReminderCentre() = default;

void ReminderCentre::removeScheduled(const QString &identifier)
{
    scheduled_.removeIf([&](const Reminder &r) { return r.identifier == identifier; });
}

void ReminderCentre::setScheduled(const QList<Reminder> &reminders)
{
    scheduled_ = reminders;
    std::stable_sort(scheduled_.begin(), scheduled_.end(),
                     [](const auto &a, const auto &b) { return a.deliveryDate < b.deliveryDate; });
}

void ReminderCentre::removeDelivered(const QString &identifier)
{
    delivered_.removeIf([&](const Reminder &r) { return r.identifier == identifier; });
}

int ReminderCentre::deliverDue(const QDateTime &now)
{
    int count = 0;
    while (!scheduled_.isEmpty() && scheduled_.first().deliveryDate <= now) {
        const Reminder reminder = scheduled_.takeFirst();
        removeDelivered(reminder.identifier);
        present(reminder);
        delivered_ << reminder;
        ++count;
        if (didDeliver)
            didDeliver(reminder);
    }
    return count;
}

QDateTime ReminderCentre::nextDeliveryDate() const
{
    return scheduled_.isEmpty() ? QDateTime() : scheduled_.first().deliveryDate;
}

void ReminderCentre::present(const Reminder &)
{
}

void ReminderCentre::activate(const QString &identifier)
{
    const auto it = std::find_if(delivered_.cbegin(), delivered_.cend(),
                                 [&](const Reminder &r) { return r.identifier == identifier; });
    if (it != delivered_.cend() && didActivate)
        didActivate(*it);
}

QString reminderAgentLockPath()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QDir::tempPath();
    return folder + QStringLiteral("/tavelle-reminders.lock");
}

} // namespace tl::platform
