#include "search/read_item_queue.h"

namespace tl::search::detail {

namespace {

constexpr size_t kMostWaiting = 8192;

} // namespace

void ReadItemQueue::push(ReadItem item)
{
    std::vector<std::vector<ReadItem>> written;
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_waiting.size() < kMostWaiting; });
    m_waiting.push_back(std::move(item));
    if (m_waiting.size() == 1)
        m_changed.notify_all();
    written.swap(m_written);
    lock.unlock();
    // `written` goes here, outside the lock.
}

void ReadItemQueue::close()
{
    {
        const std::lock_guard lock(m_mutex);
        m_closed = true;
    }
    m_changed.notify_all();
}

std::vector<ReadItem> ReadItemQueue::takeAll(std::vector<ReadItem> written)
{
    std::unique_lock lock(m_mutex);
    if (!written.empty())
        m_written.push_back(std::move(written));
    m_changed.wait(lock, [this] { return !m_waiting.empty() || m_closed; });
    std::vector<ReadItem> items;
    items.swap(m_waiting);
    lock.unlock();
    m_changed.notify_all();
    return items;
}

} // namespace tl::search::detail
