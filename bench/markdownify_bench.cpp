// A formatted document back to Markdown, against pandoc turning the same
// file from HTML into Markdown in the same run.
#include "convert/html_to_markdown.h"
#include "convert/markdown_to_html.h"
#include "isolated_home.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <chrono>

namespace {

// What formatted documents hold: headings, paragraphs with emphasis, links
// and highlights, nested and task lists, quotations, code, tables, images.
QString generatedMarkdown(int sections)
{
    QString text;
    for (int section = 1; section <= sections; ++section) {
        text +=
            QStringLiteral("## Section %1\n\nA paragraph with *emphasis*, **strong words**, a "
                           "[link](https://example.org/%1) and ==highlighted== text, `inline code` "
                           "and ~~struck~~ words.\nA second line of the same paragraph.\n\n"
                           "- [ ] open task %1\n- [x] done task %1\n\n"
                           "- item one\n\n    - sub item\n        - sub sub item\n- item two\n\n"
                           "1. first\n2. second\n\n"
                           "> A quotation that runs\n> over two lines.\n\n"
                           "```\ncode line one\ncode line two\n```\n\n"
                           "| Key | Value |\n|:----|------:|\n| a%1 | b%1 |\n| c%1 | d%1 |\n\n"
                           "![](images/picture%1.png)\n\n")
                .arg(section);
    }
    return text;
}

// A rendered page of at least `bytes` UTF-8 bytes.
QString formattedDocument(qsizetype bytes)
{
    int sections = 8;
    QString html;
    while ((html = tl::convert::tl_markdownToHTML(generatedMarkdown(sections))).toUtf8().size() <
           bytes)
        sections = int(double(sections) * double(bytes) / double(html.toUtf8().size())) + 1;
    return html;
}

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

bool runPandoc(const QString &pandoc, const QString &file)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(pandoc, {QStringLiteral("-f"), QStringLiteral("html"), QStringLiteral("-t"),
                           QStringLiteral("markdown"), file});
    return process.waitForFinished(-1) && process.exitCode() == 0;
}

void BM_MarkdownifyAgainstPandoc(benchmark::State &state)
{
    const QString pandoc = QStandardPaths::findExecutable(QStringLiteral("pandoc"));
    if (pandoc.isEmpty()) {
        state.SkipWithError("pandoc is not installed");
        return;
    }
    const QString html = formattedDocument(state.range(0));
    const QByteArray utf8 = html.toUtf8();
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("document.html"));
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(utf8) != utf8.size()) {
        state.SkipWithError("cannot write the document");
        return;
    }
    out.close();
    double ours = 0;
    double theirs = 0;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        QString markdown = tl::convert::markdownifyHTML(html, {});
        ours += secondsSince(start);
        benchmark::DoNotOptimize(markdown);
        start = std::chrono::steady_clock::now();
        if (!runPandoc(pandoc, file)) {
            state.SkipWithError("pandoc failed");
            return;
        }
        theirs += secondsSince(start);
    }
    state.counters["document_kb"] = double(utf8.size()) / 1024.0;
    state.counters["ms_per_document"] = ours * 1000.0 / double(state.iterations());
    state.counters["pandoc_ms"] = theirs * 1000.0 / double(state.iterations());
    state.counters["ratio_to_pandoc"] = ours / theirs;
    std::printf("markdownify %.0f KB: %.2f ms, pandoc %.0f ms, ratio %.4f (target: at most 0.1; "
                "under 20 ms for 20 KB)\n",
                double(utf8.size()) / 1024.0, ours * 1000.0 / double(state.iterations()),
                theirs * 1000.0 / double(state.iterations()), ours / theirs);
}
BENCHMARK(BM_MarkdownifyAgainstPandoc)
    ->Arg(20 * 1024)
    ->Arg(2300 * 1024)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    return runBenchmarksInIsolatedHome(argc, argv);
}
