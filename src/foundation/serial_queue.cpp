#include "foundation/serial_queue.h"

namespace tl {

SerialQueue::SerialQueue(QString label) : label_(std::move(label))
{
}

SerialQueue::~SerialQueue()
{
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable())
        thread_.join();
}

SerialQueue &SerialQueue::main()
{
    static SerialQueue queue(QStringLiteral("com.tavelle.app.serial"));
    return queue;
}

void SerialQueue::post(std::function<void()> job)
{
    {
        std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
        if (!thread_.joinable())
            thread_ = std::thread([this] { run(); });
    }
    changed_.notify_all();
}

void SerialQueue::waitUntilIdle()
{
    if (thread_.joinable() && std::this_thread::get_id() == thread_.get_id())
        return;
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return jobs_.empty() && !busy_; });
}

void SerialQueue::run()
{
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
        if (jobs_.empty())
            return;
        std::function<void()> job = std::move(jobs_.front());
        jobs_.pop_front();
        busy_ = true;
        lock.unlock();
        job();
        lock.lock();
        busy_ = false;
        changed_.notify_all();
    }
}

} // namespace tl
