#include "server/core/serial_queue.h"

#include <asio/executor_work_guard.hpp>
#include <asio/post.hpp>

#include <pthread.h>

#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace server {

struct SerialQueue::Impl
{
    asio::io_context context{1};
    std::optional<asio::executor_work_guard<asio::io_context::executor_type>> guard;
    std::thread thread;
    bool manual = false;
};

SerialQueue::SerialQueue(std::shared_ptr<Impl> impl) : m_impl(std::move(impl)) {}

std::shared_ptr<SerialQueue> SerialQueue::create(const std::string &name)
{
    auto impl = std::make_shared<Impl>();
    impl->guard.emplace(impl->context.get_executor());
    // The thread keeps the Impl alive, so that a queue released from one of its
    // own tasks can let its thread run out instead of joining itself.
    impl->thread = std::thread([impl, name]() mutable {
        pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
        impl->context.run();
        impl.reset();
    });
    return std::shared_ptr<SerialQueue>(new SerialQueue(std::move(impl)));
}

std::shared_ptr<SerialQueue> SerialQueue::createManual()
{
    auto impl = std::make_shared<Impl>();
    impl->manual = true;
    impl->guard.emplace(impl->context.get_executor());
    return std::shared_ptr<SerialQueue>(new SerialQueue(std::move(impl)));
}

SerialQueue::~SerialQueue()
{
    m_impl->guard.reset();
    m_impl->context.stop();
    if (m_impl->thread.joinable()) {
        if (m_impl->thread.get_id() == std::this_thread::get_id())
            m_impl->thread.detach();
        else
            m_impl->thread.join();
    }
}

asio::io_context &SerialQueue::context() { return m_impl->context; }

void SerialQueue::post(std::function<void()> task) { asio::post(m_impl->context, std::move(task)); }

void SerialQueue::sync(const std::function<void()> &task)
{
    if (m_impl->manual || isCurrent()) {
        task();
        return;
    }
    // The state outlives both sides: the waiter may return before the queue's
    // thread has left the task.
    struct Done
    {
        std::mutex mutex;
        std::condition_variable signal;
        bool finished = false;
    };
    auto done = std::make_shared<Done>();
    post([&task, done] {
        task();
        std::lock_guard lock(done->mutex);
        done->finished = true;
        done->signal.notify_all();
    });
    std::unique_lock lock(done->mutex);
    done->signal.wait(lock, [&] { return done->finished; });
}

bool SerialQueue::isCurrent() const { return m_impl->context.get_executor().running_in_this_thread(); }

bool SerialQueue::isManual() const { return m_impl->manual; }

size_t SerialQueue::drain()
{
    size_t total = 0;
    for (;;) {
        if (m_impl->context.stopped())
            m_impl->context.restart();
        const size_t ran = m_impl->context.poll();
        if (ran == 0)
            break;
        total += ran;
    }
    return total;
}

} // namespace server
