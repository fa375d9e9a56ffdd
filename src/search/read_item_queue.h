#pragma once

#include "search/item_writer.h"

#include <condition_variable>
#include <mutex>
#include <vector>

namespace tl::search::detail {

// Items read on several threads, waiting for the one that writes them. A
// reader waits while many wait already, so a slow writer holds back reading
// rather than filling the memory. The writer, whose pace sets the build's,
// hands written items back for the readers to free.
class ReadItemQueue
{
public:
    void push(ReadItem item);
    // No more items come.
    void close();
    // Every item waiting, after waiting for one; none once closed and empty.
    // The items written since the last call come back to be freed.
    std::vector<ReadItem> takeAll(std::vector<ReadItem> written = {});

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<ReadItem> m_waiting;
    std::vector<std::vector<ReadItem>> m_written;
    bool m_closed = false;
};

} // namespace tl::search::detail
