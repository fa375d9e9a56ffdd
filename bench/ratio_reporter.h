#pragma once

// Prints Google Benchmark's results as usual and keeps each run's time, so a
// benchmark can state its cost as a ratio to a floor measured in the same run.
#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <initializer_list>
#include <map>
#include <string>

class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs)
            m_times[run.benchmark_name()] = run.GetAdjustedRealTime();
    }

    // "LABEL / FLOOR_LABEL: R x (target: at most T x)" when both ran.
    void printRatio(const std::string &name, const std::string &floor, const char *label,
                    const char *floorLabel, double target)
    {
        const double f = m_times[floor], t = m_times[name];
        if (f > 0 && t > 0)
            std::printf("%s / %s: %.2fx (target: at most %.1fx)\n", label, floorLabel, t / f,
                        target);
    }

    // "LABEL: T ms (target: under L ms)" when it ran; times in milliseconds.
    void printLimit(const std::string &name, const char *label, double limitMilliseconds)
    {
        if (const double t = m_times[name]; t > 0)
            std::printf("%s: %.1f ms (target: under %.0f ms)\n", label, t, limitMilliseconds);
    }

private:
    std::map<std::string, double> m_times;
};

// One ratio a benchmark program states: the run `name` against the run
// `floor`, with the words for each and the target.
struct BenchmarkRatio
{
    const char *name;
    const char *floor;
    const char *label;
    const char *floorLabel;
    double target;
};

// One limit a benchmark program states: the run `name` against a fixed time.
struct BenchmarkLimit
{
    const char *name;
    const char *label;
    double limitMilliseconds;
};

// The main of a benchmark program that states ratios and limits: every
// benchmark asked for, with an application object, then each ratio whose two
// runs ran and each limit whose run ran.
inline int runBenchmarksWithRatios(int argc, char **argv,
                                   std::initializer_list<BenchmarkRatio> ratios,
                                   std::initializer_list<BenchmarkLimit> limits = {})
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    for (const BenchmarkRatio &ratio : ratios)
        reporter.printRatio(ratio.name, ratio.floor, ratio.label, ratio.floorLabel, ratio.target);
    for (const BenchmarkLimit &limit : limits)
        reporter.printLimit(limit.name, limit.label, limit.limitMilliseconds);
    return 0;
}
