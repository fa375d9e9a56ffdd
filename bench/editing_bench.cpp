// The editor's costs on a 1 MB Markdown document: colouring it on load, the
// re-colouring after one keystroke, and the rules of one keystroke, each set
// against a floor measured in the same run (one regular-expression pass over
// the whole text, the least a highlighting pass can cost).
#include "editing/highlighter.h"
#include "editing/keystroke.h"
#include "foundation/regex.h"
#include "ratio_reporter.h"

#include <benchmark/benchmark.h>

using namespace tl::editing;

namespace {

// Notes as people write them: headings, emphasis, lists, tasks, links,
// code, quotations; about 1 MB.
const QString &document()
{
    static const QString text = [] {
        QString t;
        for (int n = 1; t.size() < 1'000'000; ++n)
            t += QStringLiteral(
                     "## Meeting %1\n\nNotes with *emphasis*, **decisions** and a [[Project "
                     "%1|project]] link, see [minutes](https://example.org/%1).\nA second line "
                     "with `code` and ==marks==.\n\n1. first point\n2. second point\n    1. "
                     "detail\n3. third point\n\n- [ ] follow up %1\n- [x] sent notes @done\n\n> "
                     "quoted remark\n\n```\nlet x = %1;\n```\n\n")
                     .arg(n);
        return t;
    }();
    return text;
}

HighlightOptions fixedWidth()
{
    HighlightOptions options;
    options.width = [](QStringView text, double) { return 7.0 * text.size(); };
    return options;
}

void floorOnePass(benchmark::State &state)
{
    static const tl::Regex words(QStringLiteral("\\w+"));
    for (auto _ : state)
        benchmark::DoNotOptimize(words.count(document()));
}

void highlightOnLoad(benchmark::State &state)
{
    const HighlightOptions options = fixedWidth();
    for (auto _ : state)
        benchmark::DoNotOptimize(
            tl_highlightStringinRange(document(), {0, document().size()}, {}, options));
}

// A character typed in the middle of the text: the range it asks for, coloured.
void keystrokeRehighlight(benchmark::State &state)
{
    const HighlightOptions options = fixedWidth();
    QString text = document();
    const qsizetype at = text.indexOf(u"second point", text.size() / 2);
    text.insert(at, u'x');
    for (auto _ : state) {
        const TextRange range = rangeToRecompute(text, {at, 1});
        benchmark::DoNotOptimize(tl_highlightStringinRange(text, range, {}, options));
    }
}

// Return at the end of a numbered item in the middle: continue and renumber.
void keystrokeRules(benchmark::State &state)
{
    const qsizetype at = document().indexOf(u"first point", document().size() / 2) + 11;
    EditorContext context;
    for (auto _ : state) {
        EditorBuffer buffer(document(), {at, 0});
        typeText(buffer, context, {at, 0}, QStringLiteral("\n"));
        benchmark::DoNotOptimize(buffer.replacements());
    }
}

} // namespace

BENCHMARK(floorOnePass)->Unit(benchmark::kMillisecond);
BENCHMARK(highlightOnLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(keystrokeRehighlight)->Unit(benchmark::kMillisecond);
BENCHMARK(keystrokeRules)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("highlightOnLoad", "floorOnePass", "colouring 1 MB on load",
                        "one regex pass", 40);
    reporter.printRatio("keystrokeRehighlight", "floorOnePass", "re-colouring after a keystroke",
                        "one regex pass", 0.5);
    reporter.printRatio("keystrokeRules", "floorOnePass", "one keystroke's rules", "one regex pass",
                        0.05);
    std::printf("targets: load under 1000 ms, re-colouring under 5 ms, rules under 1 ms\n");
    return 0;
}
