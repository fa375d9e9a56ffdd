#pragma once

#include "search/item_writer.h"

#include <condition_variable>
#include <mutex>
#include <vector>

namespace tl::search::detail {

// Items read on several threads, waiting for the one that writes them, or
// written rows waiting for their words to be written. A pusher waits while
// many wait already, so a slow writer holds back reading rather than filling
// the memory. The last writer hands written items back for the readers to
// free, off its own thread, whose pace sets the build's.
class ReadItemQueue
{
public:
    void push(ReadItem item);
    void pushAll(std::vector<ReadItem> items);
    // No more items come.
    void close();
    // Every item waiting, after waiting for a good number of them; none once
    // closed and empty.
    std::vector<ReadItem> takeAll();
    // Written items, freed by the next push.
    void handBack(std::vector<ReadItem> written);

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<ReadItem> m_waiting;
    std::vector<std::vector<ReadItem>> m_written;
    bool m_closed = false;
};

} // namespace tl::search::detail
