#pragma once

#include <QString>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace tl {

// Work run one job at a time, in the order given, on a thread of its own
// started on first use. Jobs must not throw.
class SerialQueue
{
public:
    explicit SerialQueue(QString label);
    ~SerialQueue();
    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;

    const QString &label() const { return label_; }
    void post(std::function<void()> job);
    // Returns once every job posted before this call (and any they posted)
    // has run. Called on the queue's own thread it returns at once.
    void waitUntilIdle();

    // The program's one serial queue for rewriting links after moves and
    // other background jobs that must not overlap, "com.tavelle.app.serial".
    static SerialQueue &main();

private:
    void run();

    QString label_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> jobs_;
    bool busy_ = false;
    bool stopping_ = false;
    std::thread thread_;
};

} // namespace tl
