// Search on a library of 100,000 small documents and a few large ones: the
// index built from nothing against ripgrep scanning the same folder once, a
// two-term search in the running program, and the same search through the
// command with its freshness walk.
#include "browser/library_search.h"
#include "isolated_home.h"
#include "library_generator.h"
#include "ratio_reporter.h"
#include "search/search_index.h"
#include "store/library_root.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cmath>

namespace {

constexpr int kBooks = 100;
constexpr int kDocumentsPerBook = 1000;
constexpr int kLargeDocuments = 4;
constexpr int kVocabulary = 5000;
constexpr int kWordsPerDocument = 150;

QString vocabularyWord(int index)
{
    static const char *const syllables[] = {"ka", "lo", "mi",  "ne",  "ru",  "sa",  "te", "vi",
                                            "zo", "pe", "qui", "bra", "dre", "fli", "gro"};
    QString word;
    for (int n = index + 1; n > 0; n /= 15)
        word += QLatin1String(syllables[n % 15]);
    return word;
}

// Common words often, rare words seldom.
QString someWords(QRandomGenerator &random, int count)
{
    QString text;
    for (int i = 0; i < count; ++i) {
        const double u = random.generateDouble();
        text += vocabularyWord(int(kVocabulary * u * u * u)) + (i % 12 == 11 ? ".\n" : " ");
    }
    return text;
}

const QString &library()
{
    static QTemporaryDir dir;
    static const QString root = [] {
        QRandomGenerator random(17);
        for (int b = 0; b < kBooks; ++b) {
            const QString book = dir.path() + QStringLiteral("/Book %1").arg(b);
            QDir().mkpath(book);
            for (int d = 0; d < kDocumentsPerBook; ++d)
                bench::writeBytes(
                    book +
                        QStringLiteral("/Note %1 %2.md").arg(d).arg(someWords(random, 2).trimmed()),
                    someWords(random, kWordsPerDocument).toUtf8());
        }
        for (int l = 0; l < kLargeDocuments; ++l)
            bench::writeBytes(dir.path() + QStringLiteral("/Large %1.txt").arg(l),
                              someWords(random, 600000).toUtf8());
        return dir.path();
    }();
    tl::store::setLibraryRootOverride(root);
    return root;
}

const QStringList kTerms{vocabularyWord(900), vocabularyWord(1300)};

// The peer: ripgrep listing the files that hold a word no file holds, so it
// reads every file once.
void BM_RipgrepScan(benchmark::State &state)
{
    const QString root = library();
    const QString rg = QStandardPaths::findExecutable(QStringLiteral("rg"));
    if (rg.isEmpty()) {
        state.SkipWithError("rg is not installed");
        return;
    }
    for (auto _ : state) {
        QProcess process;
        process.start(rg, {"-l", "--no-messages", "qqqxxyyzz", root});
        process.waitForFinished(-1);
    }
}

void BM_BuildIndexFromNothing(benchmark::State &state)
{
    const QString root = library();
    const QString database = tl::search::SearchIndex::databasePathOfLibrary();
    for (auto _ : state) {
        for (const char *suffix : {"", "-wal", "-shm", "-words"})
            QFile::remove(database + QLatin1String(suffix));
        tl::search::SearchIndex index(root, database);
        if (!index.bringUpToDate())
            state.SkipWithError("index not written");
    }
}

void BM_TwoTermSearchInProgram(benchmark::State &state)
{
    const QString root = library();
    tl::browser::searchIndexOfLibrary().bringUpToDate();
    qsizetype hits = 0;
    for (auto _ : state)
        hits =
            tl::browser::runLibrarySearch(kTerms.join(u' '), root, tl::search::Field::NameOrContent,
                                          tl::browser::SearchSource::Index)
                .rows.size();
    state.counters["hits"] = double(hits);
}

// The index's part of the search above: the hits, before rows are made.
void BM_TwoTermIndexQuery(benchmark::State &state)
{
    const QString root = library();
    tl::search::SearchIndex &index = tl::browser::searchIndexOfLibrary();
    index.bringUpToDate();
    for (auto _ : state)
        benchmark::DoNotOptimize(index.search({kTerms, tl::search::Field::NameOrContent}, root));
}

void BM_TwoTermSearchThroughCommand(benchmark::State &state)
{
    const QString root = library();
    tl::browser::searchIndexOfLibrary().bringUpToDate();
    for (auto _ : state) {
        QProcess process;
        process.start(QStringLiteral(TAVELLE_COMMAND),
                      QStringList{"--library", root, "search"} + kTerms);
        process.waitForFinished(-1);
        if (process.exitCode() != 0)
            state.SkipWithError("the command failed");
    }
}

BENCHMARK(BM_RipgrepScan)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_BuildIndexFromNothing)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_TwoTermSearchInProgram)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TwoTermIndexQuery)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TwoTermSearchThroughCommand)->Unit(benchmark::kMillisecond)->Iterations(10);

} // namespace

int main(int argc, char **argv)
{
    const IsolatedHome home;
    return runBenchmarksWithRatios(
        argc, argv,
        {{"BM_BuildIndexFromNothing/iterations:1", "BM_RipgrepScan/iterations:3",
          "index built from nothing", "rg -l over the same folder", 3.0}},
        {{"BM_TwoTermSearchInProgram", "two-term search in the program", 20},
         {"BM_TwoTermSearchThroughCommand/iterations:10", "two-term search through the command",
          300}});
}
