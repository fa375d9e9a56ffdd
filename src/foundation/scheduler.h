#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>
#include <map>
#include <mutex>

namespace tl {

// Keyed timers on the main thread: scheduling a key again cancels what is
// pending under it, so a burst of events ends in one run. Time comes from the
// process clock; tests advance a ManualClock and call runDue().
class Scheduler : public QObject
{
    Q_OBJECT
public:
    static Scheduler &main();

    void schedule(const QString &key, double delaySeconds, std::function<void()> work);
    void cancel(const QString &key);
    bool isPending(const QString &key) const;

    // Runs, in due order, every task whose time has come; returns how many ran.
    int runDue();

private:
    explicit Scheduler(QObject *parent = nullptr);
    void rearm();

    struct Task
    {
        double due;
        quint64 sequence;
        std::function<void()> work;
    };
    mutable std::mutex m_mutex;
    std::map<QString, Task> m_tasks;
    quint64 m_sequence = 0;
    QTimer m_timer;
};

} // namespace tl
