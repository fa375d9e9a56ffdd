// Regular-expression engine costs, each against a peer measured in the same
// run: replaceAll against QRegularExpression doing the same replacement, and
// the replace-while-matching loop against one search of the whole text per
// round, which is what restarting from the beginning would cost.
#include "foundation/regex.h"

#include <QRegularExpression>
#include <benchmark/benchmark.h>
#include <chrono>

namespace {

QString sampleText(int paragraphs)
{
    QString text;
    for (int i = 0; i < paragraphs; ++i)
        text += QString("Paragraph %1 with **bold %1** words, a [link](note %1.md) and "
                        "some plain text that matches nothing at all.\n\n\n\n")
                    .arg(i);
    return text;
}

template <typename F> double secondsOf(F &&f, int64_t times)
{
    const auto start = std::chrono::steady_clock::now();
    for (int64_t i = 0; i < times; ++i)
        f();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BM_ReplaceAllAgainstQRegularExpression(benchmark::State &state)
{
    const QString text = sampleText(int(state.range(0)));
    const tl::Regex re(R"(\*\*(.+?)\*\*)");
    const QRegularExpression peer(R"(\*\*(.+?)\*\*)");
    int64_t runs = 0;
    double ours = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        QString out = re.replaceAll(text, "<b>$1</b>");
        ours += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        benchmark::DoNotOptimize(out);
        ++runs;
    }
    const double theirs = secondsOf(
        [&] {
            QString out = text;
            out.replace(peer, "<b>\\1</b>");
            benchmark::DoNotOptimize(out);
        },
        runs);
    state.counters["ratio_to_qregex"] = ours / theirs;
    state.SetBytesProcessed(int64_t(runs) * text.size() * 2);
}
BENCHMARK(BM_ReplaceAllAgainstQRegularExpression)->Arg(100)->Arg(10000);

void BM_ReplaceWhileMatchingAgainstOneSearchPerRound(benchmark::State &state)
{
    // Every paragraph ends in four line ends: one round per paragraph.
    const QString text = sampleText(int(state.range(0)));
    const tl::Regex re("\n\n\n");
    const qsizetype rounds = re.count(text);
    int64_t runs = 0;
    double ours = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        QString out = re.replaceWhileMatching(text, "\n\n");
        ours += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        benchmark::DoNotOptimize(out);
        ++runs;
    }
    const tl::Regex absent("\n\n\n\n\n");
    const double restart =
        secondsOf([&] { benchmark::DoNotOptimize(absent.isMatch(text)); }, runs * rounds);
    state.counters["rounds"] = double(rounds);
    state.counters["ratio_to_restarting"] = ours / restart;
}
BENCHMARK(BM_ReplaceWhileMatchingAgainstOneSearchPerRound)->Arg(10)->Arg(1000);

void BM_AllMatches(benchmark::State &state)
{
    const QString text = sampleText(int(state.range(0)));
    const tl::Regex re(R"(\[([^\]]+)\]\(([^)]+)\))");
    for (auto _ : state)
        benchmark::DoNotOptimize(re.allMatches(text));
    state.SetBytesProcessed(int64_t(state.iterations()) * text.size() * 2);
}
BENCHMARK(BM_AllMatches)->Arg(10000);

} // namespace

BENCHMARK_MAIN();
