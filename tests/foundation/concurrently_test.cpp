#include "foundation/concurrently.h"

#include <atomic>
#include <gtest/gtest.h>
#include <vector>

namespace tl {
namespace {

TEST(Concurrently, RunsEachIndexOnceWhateverTheThreads)
{
    for (const int threads : {1, 4, 50}) {
        std::vector<std::atomic<int>> runs(20);
        forEachConcurrently(qsizetype(runs.size()), threads, [&](qsizetype i) { ++runs[i]; });
        for (const std::atomic<int> &count : runs)
            EXPECT_EQ(count, 1) << threads << " threads";
    }
    forEachConcurrently(0, 4, [](qsizetype) { ADD_FAILURE() << "nothing to run"; });
}

} // namespace
} // namespace tl
