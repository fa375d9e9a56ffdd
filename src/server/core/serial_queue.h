#pragma once

#include <asio/io_context.hpp>

#include <functional>
#include <memory>
#include <string>

namespace server {

// A serial queue: tasks run one after the other, in the order posted. It is an
// Asio io_context, so sockets and timers deliver their completions on it.
//
// A queue made by create() runs on a thread of its own with the given name.
// A queue made by createManual() has no thread: whoever owns it runs the tasks
// with drain(); the tests drive connections this way.
class SerialQueue
{
public:
    static std::shared_ptr<SerialQueue> create(const std::string &name);
    static std::shared_ptr<SerialQueue> createManual();
    ~SerialQueue();

    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;

    asio::io_context &context();

    void post(std::function<void()> task);

    // Runs the task on the queue and waits for it. Runs it at once when
    // called from the queue itself, or on a manual queue.
    void sync(const std::function<void()> &task);

    bool isCurrent() const;
    bool isManual() const;

    // Manual queues: runs every task that is ready, including the ones those
    // tasks post, until none is left. Returns how many ran.
    size_t drain();

private:
    struct Impl;
    explicit SerialQueue(std::shared_ptr<Impl> impl);
    std::shared_ptr<Impl> m_impl;
};

} // namespace server
