#pragma once

#include "platform/reminder_centre.h"

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>
#include <chrono>
#include <memory>

// Keeps the reminders of the chosen library on time while no window is
// open: rebuilds them whenever a task list changed, and delivers each at its
// moment on the process clock.
namespace tl::tasks {

class ReminderAgent : public QObject
{
    Q_OBJECT
public:
    explicit ReminderAgent(std::shared_ptr<platform::ReminderCentre> centre,
                           QObject *parent = nullptr);

    // One look: a rebuild when the library or one of its task lists changed
    // since the last look, then the delivery of what has come due. Answers
    // how long to wait before the next look: until the next delivery, at
    // most a minute, so a sleeping machine or a changed clock is caught up.
    std::chrono::milliseconds look();
    // Looks now and then again and again on a timer, and soon after a task
    // list or the settings change on disk.
    void start();

private:
    // The library root and the identity of every task list's file.
    QByteArray libraryState() const;
    void lookAndRearm();
    void watchTaskLists();

    std::shared_ptr<platform::ReminderCentre> centre_;
    QByteArray state_;
    QTimer timer_;
    QFileSystemWatcher watcher_;
};

} // namespace tl::tasks
