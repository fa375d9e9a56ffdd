// The reading-order walk against its floor: a plain walk that stats every
// entry and reads every properties file once. Reported as a ratio.
#include "library_generator.h"
#include "ratio_reporter.h"
#include "store/library_root.h"
#include "store/reading_order.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

constexpr int kBooks = 100;
constexpr int kDocumentsPerBook = 100;

// 10,000 documents in 100 books, each document with a properties file and
// each book with an order list.
QString library()
{
    static QTemporaryDir dir;
    static const bool made = [] {
        for (int b = 0; b < kBooks; ++b)
            bench::makeBook(dir.path() + QStringLiteral("/Book %1").arg(b), kDocumentsPerBook,
                            {{"Tags", QVariantList{"work"}}, {"cellColor", "blue"}});
        return true;
    }();
    (void)made;
    return dir.path();
}

void BM_PlainWalkFloor(benchmark::State &state)
{
    const QString root = library();
    for (auto _ : state)
        benchmark::DoNotOptimize(bench::plainWalk(root));
}

void BM_ReadingOrderWalk(benchmark::State &state)
{
    const QString root = library();
    tl::store::setLibraryRootOverride(root);
    for (auto _ : state) {
        const QStringList all = tl::store::tl_sortedListOfAllItemsInHierarchy(root);
        if (all.size() != kBooks * kDocumentsPerBook)
            state.SkipWithError("walk lost documents");
        benchmark::DoNotOptimize(all);
    }
}

BENCHMARK(BM_PlainWalkFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadingOrderWalk)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    return runBenchmarksWithRatios(
        argc, argv,
        {{"BM_ReadingOrderWalk", "BM_PlainWalkFloor", "reading-order walk", "plain walk", 1.5}});
}
