// Each pathological shape of Markdown at 1 MB (or at the shape's own
// bound where Discount is the one that cannot go faster), turned into a
// page: the time per megabyte of each, beside that of an ordinary note of
// the same size measured in the same run. Backquotes that open no code span,
// in one run and in runs of growing length, are stated as ratios to the
// note.
#include "convert/markdown_to_html.h"
#include "pathological_markdown.h"
#include "platform/settings.h"
#include "ratio_reporter.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdlib>

namespace {

constexpr qsizetype kMegabyte = 1024 * 1024;

void convertPerMegabyte(benchmark::State &state, const QString &text)
{
    tl::platform::settings().set(QStringLiteral("MarkdownConverter"), int(state.range(0)));
    double seconds = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        QString page = tl::convert::tl_markdownToHTML(text);
        seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        benchmark::DoNotOptimize(page);
    }
    state.counters["ms_per_MB"] =
        seconds * 1000.0 / double(state.iterations()) * double(kMegabyte) / double(text.size());
    state.SetBytesProcessed(int64_t(state.iterations()) * text.size());
}

// An ordinary note: paragraphs, a list and a heading, for comparison.
QString ordinaryText()
{
    const QString piece = QStringLiteral("## A heading\n\nSome *text* with a [link](x.md) and "
                                         "`code`.\n\n- one\n- two\n\n");
    return piece.repeated(kMegabyte / piece.size());
}

// Runs of one, two, three... backquotes: none closes an earlier one.
QString growingBackquoteRuns()
{
    QString text;
    for (int length = 1; text.size() < kMegabyte; ++length)
        text += QString(length, u'`') + u' ';
    return text;
}

} // namespace

int main(int argc, char **argv)
{
    // The settings, caches and work files of a run stay in a folder of its own.
    QTemporaryDir home;
    for (const char *variable :
         {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "TMPDIR"})
        setenv(variable, home.path().toUtf8().constData(), 1);
    QCoreApplication app(argc, argv);
    benchmark::RegisterBenchmark("ordinary note", convertPerMegabyte, ordinaryText())
        ->Arg(0)
        ->Arg(1)
        ->Unit(benchmark::kMillisecond);
    for (const tltest::PathologicalShape &shape : tltest::pathologicalShapes()) {
        benchmark::RegisterBenchmark(shape.name, convertPerMegabyte,
                                     tltest::pathologicalText(shape, kMegabyte))
            ->Arg(0)
            ->Arg(1)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RegisterBenchmark("growing backquote runs", convertPerMegabyte,
                                 growingBackquoteRuns())
        ->Arg(0)
        ->Arg(1)
        ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    for (const char *converter : {"/0", "/1"}) {
        const std::string note = std::string("ordinary note") + converter;
        reporter.printRatio(std::string("backquotes") + converter, note, "a run of backquotes",
                            "an ordinary note", 2);
        reporter.printRatio(std::string("growing backquote runs") + converter, note,
                            "backquote runs of growing length", "an ordinary note", 2);
    }
    return 0;
}
