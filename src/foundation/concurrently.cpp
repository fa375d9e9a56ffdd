#include "foundation/concurrently.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

namespace tl {

void forEachConcurrently(qsizetype count, int threads, const std::function<void(qsizetype)> &work)
{
    std::atomic<qsizetype> next{0};
    const auto drain = [&] {
        for (qsizetype i = next++; i < count; i = next++)
            work(i);
    };
    std::vector<std::thread> helpers;
    const qsizetype extra = std::min<qsizetype>(threads, count) - 1;
    for (qsizetype t = 0; t < extra; ++t) {
        try {
            helpers.emplace_back(drain);
        } catch (const std::system_error &) {
            break; // fewer threads do the same work
        }
    }
    drain();
    for (std::thread &helper : helpers)
        helper.join();
}

} // namespace tl
