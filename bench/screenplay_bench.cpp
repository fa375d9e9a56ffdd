// A feature-length screenplay (about 125 pages, 200 KB) parsed, paginated
// and rendered as the script page the window shows, against fountain-js
// turning the same file into HTML in the same run, as a ratio of processor
// times. Target: under 50 ms, and at most half the time of fountain-js.
#include "isolated_home.h"
#include "ratio_reporter.h"
#include "screenplay/fn_html_script.h"
#include "screenplay/fn_paginator.h"
#include "screenplay/script_page.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <QTemporaryDir>
#include <cstdlib>
#include <ctime>

namespace {

// A script with what real scripts hold, in varying lengths: headings with
// and without numbers, action, speeches with parentheticals and emphasis,
// dual dialogue, transitions, notes and a title page.
class ScriptWriter
{
public:
    QString write(qsizetype bytes)
    {
        QString text = QStringLiteral("Title: The Long Crossing\nCredit: written by\n"
                                      "Author: A. Writer\nDraft date: 1 May 2026\nContact:\n"
                                      "    Harbour Row 12\n    Dublin\n\n");
        for (int scene = 1; text.size() < bytes; ++scene) {
            text += heading(scene);
            text += paragraph(10 + pick(14)) + QStringLiteral("\n\n");
            const int speeches = 2 + pick(4);
            for (int s = 0; s < speeches; ++s) {
                if (pick(7) == 0)
                    text += dualPair();
                else
                    text += speech(s % 2 ? QStringLiteral("NORA") : QStringLiteral("TOM"));
                if (pick(3) == 0)
                    text += paragraph(2 + pick(4)) + QStringLiteral("\n\n");
            }
            if (pick(4) == 0)
                text += QStringLiteral("[[Check the timing here.]]\n\n");
            text += scene % 3 == 0 ? QStringLiteral("CUT TO:\n\n") : QString();
        }
        return text;
    }

private:
    int pick(int n)
    {
        m_state = m_state * 1103515245u + 12345u;
        return int((m_state >> 16) % unsigned(n));
    }
    // Emphasis is rare in scripts: about one word in a hundred.
    QString sentence()
    {
        static const char *const words[] = {
            "the", "rain",  "runs",  "down", "glass", "of",    "old",    "lighthouse",
            "she", "turns", "away",  "from", "sea",   "and",   "he",     "waits",
            "a",   "boat",  "light", "far",  "out",   "there", "slowly", "never"};
        static const char *const emphasized[] = {"*now*", "**never**", "_out_"};
        QString text = QStringLiteral("It");
        const int length = 5 + pick(10);
        for (int w = 0; w < length; ++w)
            text += QLatin1Char(' ') +
                    QLatin1String(pick(100) == 0 ? emphasized[pick(int(std::size(emphasized)))]
                                                 : words[pick(int(std::size(words)))]);
        static const char *const ends[] = {".", ".", ".", "?", "!", "..."};
        return text + QLatin1String(ends[pick(int(std::size(ends)))]);
    }
    QString paragraph(int sentences)
    {
        QStringList list;
        for (int s = 0; s < sentences; ++s)
            list.append(sentence());
        return list.join(QLatin1Char(' '));
    }
    QString heading(int scene)
    {
        static const char *const places[] = {"INT. LIGHTHOUSE - NIGHT", "EXT. HARBOUR WALL - DAY",
                                             "INT. KITCHEN - CONTINUOUS", "EXT. CLIFF PATH - LATER",
                                             "INT./EXT. CAR - MOVING"};
        QString text = QLatin1String(places[pick(int(std::size(places)))]);
        if (scene % 2 == 0)
            text += QStringLiteral(" #%1#").arg(scene);
        return text + QStringLiteral("\n\n");
    }
    QString speech(const QString &cue)
    {
        QString text = cue + QLatin1Char('\n');
        if (pick(4) == 0)
            text += QStringLiteral("(quietly)\n");
        return text + paragraph(1 + pick(pick(6) == 0 ? 12 : 3)) + QStringLiteral("\n\n");
    }
    QString dualPair()
    {
        return speech(QStringLiteral("BRICK")) + speech(QStringLiteral("STEEL ^"));
    }

    unsigned m_state = 2026;
};

const QString &script()
{
    static const QString text = ScriptWriter().write(200 * 1024);
    return text;
}

// Processor time of the calling thread: the machine may be busy with other
// work, which should weigh on neither side of the comparison.
double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

void BM_ScriptPage(benchmark::State &state)
{
    int pages = 0;
    for (auto _ : state) {
        const double start = threadSeconds();
        const tl::screenplay::ScriptPage page = tl::screenplay::scriptPageForText(script());
        state.SetIterationTime(threadSeconds() - start);
        pages = page.pageCount;
        benchmark::DoNotOptimize(page.html.data());
    }
    state.counters["pages"] = pages;
    state.counters["KB"] = double(script().toUtf8().size()) / 1024.0;
}
BENCHMARK(BM_ScriptPage)->Unit(benchmark::kMillisecond)->UseManualTime();

// The stages on their own, to see where the time goes.
void BM_Parse(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(tl::screenplay::FNScript::fromString(script()).elements.size());
}
BENCHMARK(BM_Parse)->Unit(benchmark::kMillisecond);

void BM_Paginate(benchmark::State &state)
{
    const tl::screenplay::FNScript parsed = tl::screenplay::FNScript::fromString(script());
    for (auto _ : state)
        benchmark::DoNotOptimize(tl::screenplay::FNPaginator(parsed).numberOfPages());
}
BENCHMARK(BM_Paginate)->Unit(benchmark::kMillisecond);

void BM_Render(benchmark::State &state)
{
    const tl::screenplay::FNScript parsed = tl::screenplay::FNScript::fromString(script());
    for (auto _ : state)
        benchmark::DoNotOptimize(tl::screenplay::FNHTMLScript(parsed).bodyForScript().size());
}
BENCHMARK(BM_Render)->Unit(benchmark::kMillisecond);

// fountain-js times its own rounds inside one node process, in processor
// time; its mean stands as this benchmark's time.
void BM_FountainJs(benchmark::State &state)
{
    const QString node = QStandardPaths::findExecutable(QStringLiteral("node"));
    const QString package = QStringLiteral(TAVELLE_BENCH_PEERS "/fountain-js");
    QString reason;
    if (node.isEmpty())
        reason = QStringLiteral("node not found (Debian: nodejs)");
    else if (!QFileInfo::exists(package + QStringLiteral("/package.json")))
        reason = QStringLiteral("fountain-js missing: run scripts/setup.sh with npm installed");
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("script.fountain"));
    QFile out(file);
    if (reason.isEmpty() && (!out.open(QIODevice::WriteOnly) || out.write(script().toUtf8()) < 0))
        reason = QStringLiteral("cannot write the script for the peer");
    out.close();
    for (auto _ : state) {
        if (!reason.isEmpty())
            break;
        QProcess peer;
        peer.start(node,
                   {QStringLiteral(TAVELLE_FOUNTAIN_JS_PEER), package, file, QStringLiteral("30")});
        bool ok = peer.waitForFinished(120000) && peer.exitCode() == 0;
        const double ms = QString::fromUtf8(peer.readAllStandardOutput()).trimmed().toDouble(&ok);
        if (!ok) {
            reason = QStringLiteral("fountain-js failed: ") +
                     QString::fromUtf8(peer.readAllStandardError()).trimmed();
            break;
        }
        state.SetIterationTime(ms / 1000.0);
    }
    if (!reason.isEmpty()) {
        std::printf("fountain-js peer skipped: %s\n", qPrintable(reason));
        state.SkipWithError(qPrintable(reason));
    }
}
BENCHMARK(BM_FountainJs)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

} // namespace

int main(int argc, char **argv)
{
    const IsolatedHome home;
    return runBenchmarksWithRatios(
        argc, argv,
        {{"BM_ScriptPage/manual_time", "BM_FountainJs/iterations:1/manual_time",
          "script page (parse, paginate, render)", "fountain-js parse to HTML", 0.5}});
}
