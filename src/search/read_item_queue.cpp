#include "search/read_item_queue.h"

#include <iterator>

namespace tl::search::detail {

namespace {

constexpr size_t kMostWaiting = 8192;
// A taker waits for this many, not for each one: a quick writer would
// otherwise sleep and be woken for every item.
constexpr size_t kFewestTaken = 256;

} // namespace

void ReadItemQueue::push(ReadItem item)
{
    std::vector<std::vector<ReadItem>> written;
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_waiting.size() < kMostWaiting; });
    m_waiting.push_back(std::move(item));
    if (m_waiting.size() == kFewestTaken)
        m_changed.notify_all();
    written.swap(m_written);
    lock.unlock();
    // `written` goes here, outside the lock.
}

void ReadItemQueue::pushAll(std::vector<ReadItem> items)
{
    if (items.empty())
        return;
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_waiting.size() < kMostWaiting; });
    const bool wasFew = m_waiting.size() < kFewestTaken;
    if (m_waiting.empty())
        m_waiting.swap(items);
    else
        m_waiting.insert(m_waiting.end(), std::make_move_iterator(items.begin()),
                         std::make_move_iterator(items.end()));
    if (wasFew && m_waiting.size() >= kFewestTaken)
        m_changed.notify_all();
}

void ReadItemQueue::close()
{
    {
        const std::lock_guard lock(m_mutex);
        m_closed = true;
    }
    m_changed.notify_all();
}

std::vector<ReadItem> ReadItemQueue::takeAll()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_waiting.size() >= kFewestTaken || m_closed; });
    std::vector<ReadItem> items;
    items.swap(m_waiting);
    m_waiting.reserve(kFewestTaken);
    lock.unlock();
    m_changed.notify_all();
    return items;
}

void ReadItemQueue::handBack(std::vector<ReadItem> written)
{
    const std::lock_guard lock(m_mutex);
    m_written.push_back(std::move(written));
}

} // namespace tl::search::detail
