#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QVariant>
#include <functional>
#include <memory>
#include <optional>

// Slow work off the main thread with at most one job in flight and one
// waiting: a new request replaces the waiting one, so a burst of requests
// (keystrokes, file events) ends in one run of the newest. Results arrive
// on the thread the worker lives on (the main thread), each as its job
// ends, so a long burst still shows progress; the waiting job starts right
// after.
namespace tl::browser {

class CoalescingWorker : public QObject
{
    Q_OBJECT
public:
    using Job = std::function<QVariant()>;

    explicit CoalescingWorker(QObject *parent = nullptr);
    ~CoalescingWorker() override;

    // Runs the job on the thread pool now, or after the one in flight.
    void request(Job job);
    bool isBusy() const;
    // Blocks until nothing is in flight or waiting; for shutdown and tests.
    void waitForIdle();

Q_SIGNALS:
    void finished(const QVariant &result);

private:
    void start(Job job);
    void jobDone();

    QFutureWatcher<QVariant> m_watcher;
    std::optional<Job> m_pending;
    bool m_running = false;
};

} // namespace tl::browser
