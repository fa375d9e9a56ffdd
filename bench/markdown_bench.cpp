// The cost of a Markdown document becoming a full page, against Discount
// alone turning the same text into HTML with the same flags, in the same
// run: what the preparation, the post-processing and the envelope add.
#include "convert/discount.h"
#include "convert/markdown_to_html.h"
#include "isolated_home.h"

#include <benchmark/benchmark.h>
#include <chrono>

namespace {

// A document that uses what real notes use: headings, lists, task boxes,
// emphasis, links, wiki links, notes, highlights, code, tables.
QString generatedDocument(qsizetype bytes)
{
    QString text;
    for (int section = 1; text.size() < bytes; ++section) {
        text += QStringLiteral(
                    "## Section %1\n\nA paragraph with *emphasis*, **strong words**, a "
                    "[link](Other%20Note.md) and a [[Wiki Page %1]] in it. Some ==highlighted== "
                    "text and a note^[An inline note for section %1.] follow.\n"
                    "The line goes on with `inline code` and a second sentence.\n\n"
                    "- [ ] open task %1\n- [x] done task %1\n- plain item\n    1. sub item\n\n"
                    "> A quotation that runs\n> over two lines.\n\n"
                    "```\ncode line one\ncode line two [[not a link]]\n```\n\n"
                    "| Key | Value |\n|-----|-------|\n| a%1 | b%1 |\n\n")
                    .arg(section);
    }
    return text;
}

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Discount on its own, flags as the default converter sets them.
void discountAlone(const QByteArray &utf8)
{
    using tl::convert::discount::Flag;
    const tl::convert::discount::Flags flags{
        Flag::TOC,        Flag::ExtraFootnote, Flag::FencedCode,   Flag::Latex,
        Flag::GithubTags, Flag::Autolink,      Flag::ExplicitList, Flag::DLExtra,
        Flag::DLDiscount, Flag::IdAnchor,      Flag::NoStyle,      Flag::NoPants};
    auto document = tl::convert::discount::Document::parse(utf8, flags);
    document->compile();
    QByteArray html = document->html();
    benchmark::DoNotOptimize(html);
}

void BM_MarkdownToHTMLAgainstDiscount(benchmark::State &state)
{
    const QString text = generatedDocument(state.range(0));
    const QByteArray utf8 = text.toUtf8();
    double ours = 0;
    double theirs = 0;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        QString page = tl::convert::tl_markdownToHTML(text);
        ours += secondsSince(start);
        benchmark::DoNotOptimize(page);
        start = std::chrono::steady_clock::now();
        discountAlone(utf8);
        theirs += secondsSince(start);
    }
    state.counters["ratio_to_discount"] = ours / theirs;
    state.counters["ms_per_page"] = ours * 1000.0 / double(state.iterations());
    state.SetBytesProcessed(int64_t(state.iterations()) * utf8.size());
}
BENCHMARK(BM_MarkdownToHTMLAgainstDiscount)
    ->Arg(20 * 1024)
    ->Arg(1600 * 1024)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    return runBenchmarksInIsolatedHome(argc, argv);
}
