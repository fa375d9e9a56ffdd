// Contexts of a library of 100,000 documents of which 20,000 carry tags: the
// first collection against a plain walk that reads every property file once,
// and the listing of a tag's 5,000 items.
#include "contexts/tag_collection.h"
#include "contexts/tag_database.h"
#include "contexts/tag_files.h"
#include "foundation/dates.h"
#include "isolated_home.h"
#include "library_generator.h"
#include "platform/file_ops.h"
#include "ratio_reporter.h"
#include "store/library_root.h"

#include <QTemporaryDir>

namespace {

constexpr int kBooks = 1000;
constexpr int kDocumentsPerBook = 100;
// The first books' documents carry tags: each one of twenty contexts, and
// the first fifty books also "@big".
constexpr int kTaggedBooks = 200;
constexpr int kBigBooks = 50;

QString library()
{
    static QTemporaryDir dir;
    static const bool made = [] {
        for (int b = 0; b < kBooks; ++b) {
            QVariantMap properties;
            if (b < kTaggedBooks) {
                QStringList tags{QStringLiteral("@ctx%1").arg(b % 20)};
                if (b < kBigBooks)
                    tags << QStringLiteral("@big");
                properties.insert(QStringLiteral("Tags"), tags);
            }
            bench::makeBook(dir.path() + QStringLiteral("/Area %1/Book %2").arg(b / 50).arg(b),
                            kDocumentsPerBook, properties);
        }
        return true;
    }();
    (void)made;
    tl::store::setLibraryRootOverride(dir.path());
    return dir.path();
}

// A machine that never collected: no index, no list, no date.
void forgetContexts()
{
    tl::platform::removeItem(tl::contexts::tagDBPath());
    tl::platform::removeItem(tl::contexts::availableTagsPath());
    tl::contexts::setAutocollectDate(tl::distantPast());
}

void BM_PlainWalk(benchmark::State &state)
{
    const QString root = library();
    for (auto _ : state)
        benchmark::DoNotOptimize(bench::plainWalk(root));
}

void BM_FirstCollection(benchmark::State &state)
{
    library();
    for (auto _ : state) {
        state.PauseTiming();
        forgetContexts();
        state.ResumeTiming();
        const tl::contexts::CollectionResult result = tl::contexts::collectNewContexts();
        if (result.plists < kBooks * kDocumentsPerBook)
            state.SkipWithError("property files missed");
    }
    if (tl::contexts::tl_numberOfItemsForTag(QStringLiteral("@big")) !=
        kBigBooks * kDocumentsPerBook)
        state.SkipWithError("items of @big lost");
}

void BM_ItemsOfTag(benchmark::State &state)
{
    library();
    if (tl::contexts::tl_numberOfItemsForTag(QStringLiteral("@big")) == 0)
        tl::contexts::collectNewContexts();
    for (auto _ : state) {
        if (tl::contexts::tl_listOfAllItemsForTag(QStringLiteral("@big")).size() !=
            kBigBooks * kDocumentsPerBook)
            state.SkipWithError("items of @big lost");
    }
}

BENCHMARK(BM_PlainWalk)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_FirstCollection)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ItemsOfTag)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    const IsolatedHome home;
    return runBenchmarksWithRatios(
        argc, argv,
        {{"BM_FirstCollection/iterations:3", "BM_PlainWalk/iterations:3", "first collection",
          "plain walk reading every property file", 1.5}},
        {{"BM_ItemsOfTag", "items of a tag with 5,000 items", 50}});
}
