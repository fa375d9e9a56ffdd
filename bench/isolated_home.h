#pragma once

// The settings, caches and work files of a benchmark run stay in a folder of
// its own, removed at the end.
#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdlib>

class IsolatedHome
{
public:
    IsolatedHome()
    {
        for (const char *variable :
             {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "TMPDIR"})
            setenv(variable, m_folder.path().toUtf8().constData(), 1);
    }

private:
    QTemporaryDir m_folder;
};

// The main of a benchmark program: every benchmark asked for, in an isolated
// home, with an application object.
inline int runBenchmarksInIsolatedHome(int argc, char **argv)
{
    const IsolatedHome home;
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
