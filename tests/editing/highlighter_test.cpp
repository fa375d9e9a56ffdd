#include "caret_text.h"
#include "editing/highlighter.h"

#include <gtest/gtest.h>

using namespace tl::editing;

namespace {

// Every character ten units wide, whatever the stroke.
HighlightOptions fixedWidth(HighlightOptions options = {})
{
    options.width = [](QStringView text, double) { return 10.0 * text.size(); };
    return options;
}

const char *roleName(ColorRole role)
{
    static const char *names[] = {"base", "faded", "heading", "label",   "link", "attr",
                                  "code", "list",  "tag",     "red",     "blue", "yellow",
                                  "del",  "add",   "subst",   "comment", "mark"};
    return names[int(role)];
}

// The runs that carry more than the base attributes, as "start+length:attributes".
QString describe(const Highlighting &h)
{
    QStringList parts;
    for (const AttributeRun &run : h.runs) {
        const CharacterStyle &s = run.style;
        if (s == CharacterStyle())
            continue;
        QString part = QStringLiteral("%1+%2:%3")
                           .arg(run.start)
                           .arg(run.length)
                           .arg(QString::fromLatin1(roleName(s.color)));
        if (s.stroke != 0)
            part += QStringLiteral(",w%1").arg(s.stroke);
        if (s.slant != 0)
            part += QStringLiteral(",i");
        if (s.strike)
            part += QStringLiteral(",s");
        if (s.link)
            part += QStringLiteral(",l");
        parts.append(part);
    }
    return parts.join(u' ');
}

struct RunCase
{
    const char *name;
    const char *text;
    const char *runs;
    HighlightOptions options = {};
};

HighlightOptions criticOn()
{
    HighlightOptions o;
    o.multiMarkdown = true;
    return o;
}

HighlightOptions wikiActive()
{
    HighlightOptions o;
    o.wikiLinksActive = true;
    return o;
}

const RunCase runCases[] = {
    {"one star slants", "x *a* y", "2+1:faded 3+1:base,i 4+1:faded"},
    {"two stars bold", "**a**", "0+2:faded 2+1:base,w-2 3+2:faded"},
    {"three stars both", "***a***", "0+3:faded 3+1:base,w-2,i 4+3:faded"},
    {"underscores", "_a_ __b__", "0+1:faded 1+1:base,i 2+1:faded 4+2:faded 6+1:base,w-2 7+2:faded"},
    {"emphasis across blank line", "*a\n\nb*", ""},
    {"escaped star", "\\*a*", ""},
    {"heading", "# Title #", "0+1:faded 2+6:heading,w-2 8+1:faded"},
    {"heading level three", "### T", "0+3:faded 4+1:heading,w-1"},
    {"setext underline", "Title\n=====", "6+5:heading"},
    {"done task", "- task @done", "0+1:list 2+4:faded,s"},
    {"open task box", "- [ ] a", "0+5:attr"},
    {"ticked task box", "- [x] a", "0+5:list"},
    {"numbered item", "12. a", "0+3:list"},
    {"quote", "> a", "0+1:list"},
    {"inline code", "a `b*c*` d", "2+6:code,i"},
    {"fence resets", "x\n```\n*a* [[b]]\n```\n", ""},
    {"tilde fence resets", "x\n~~~\n# h\n~~~\n", ""},
    {"fence label without closing", "x\n```js\n*a*", "2+5:label 8+1:faded 9+1:base,i 10+1:faded"},
    {"strike", "~~gone~~", "0+2:faded 2+4:base,s 6+2:faded"},
    {"highlight", "a ==b== c", "1+3:faded 4+1:attr 5+3:faded"},
    {"wiki link", "[[doc|Title]]", "0+2:faded 2+3:label 5+1:faded 6+5:label 11+2:faded"},
    {"wiki link active", "[[doc]]", "0+2:faded 2+3:label,l 5+2:faded", wikiActive()},
    {"web link", "[a](http://x)", "0+1:faded 2+2:faded 4+8:link 12+1:faded"},
    {"image link", "![a](p.png)", "0+2:faded 2+1:label 3+8:faded"},
    {"footnote", "x^[note]", "1+2:faded 3+4:label 7+1:faded"},
    {"reference definition", "[id]: http://x", "0+1:faded 1+2:label 3+3:faded"},
    {"braces", "{{TOC}}", "0+2:faded 2+3:label 5+2:faded"},
    {"critic off", "{++add++}", ""},
    {"critic on", "{++add++}", "0+9:add", criticOn()},
    {"critic substitution", "{~~a~>b~~}", "0+10:subst", criticOn()},
    {"html tag in markdown", "a <b>c</b>", "2+3:tag 6+4:tag"},
    {"html comment", "<!-- x -->", "0+10:faded,i"},
    {"title line at start", "Title: Doc\nx", "7+3:heading,w-3"},
    {"title block at start", "% T\n% A\n% D\nx",
     "0+2:faded,w-1.5 2+1:heading,w-3 3+1:base,w-1.5 4+2:faded,w-1.5 6+2:base,w-1.5 "
     "8+2:faded,w-1.5 "
     "10+2:base,w-1.5"},
};

class HighlightRuns : public testing::TestWithParam<RunCase>
{
};

TEST_P(HighlightRuns, Golden)
{
    const RunCase &c = GetParam();
    const QString text = QString::fromUtf8(c.text);
    const Highlighting h =
        tl_highlightStringinRange(text, {0, text.size()}, {}, fixedWidth(c.options));
    EXPECT_EQ(describe(h), QString::fromUtf8(c.runs));
}

INSTANTIATE_TEST_SUITE_P(Table, HighlightRuns, testing::ValuesIn(runCases),
                         [](const auto &info) { return tltest::caseName(info); });

TEST(Highlighting, TitleBlockOnlyInARangeFromTheStart)
{
    const QString text = QStringLiteral("x\n% T\n% A\n% D\n");
    const Highlighting h = tl_highlightStringinRange(text, {2, text.size() - 2}, {}, fixedWidth());
    EXPECT_EQ(describe(h), QString());
}

TEST(Highlighting, HeadingsAndListItemsHang)
{
    const QString text = QStringLiteral("## Head\n- item\nplain");
    const Highlighting h = tl_highlightStringinRange(text, {0, text.size()}, {}, fixedWidth());
    ASSERT_EQ(h.paragraphs.size(), 3);
    // "#### " is 50 wide: the marks hang left of the text, wrapped lines align.
    EXPECT_EQ(h.paragraphs[0].style.firstLineHeadIndent, 50 - 2 * 10 - 10);
    EXPECT_EQ(h.paragraphs[0].style.headIndent, 50);
    EXPECT_EQ(h.paragraphs[1].style.firstLineHeadIndent, 50);
    EXPECT_EQ(h.paragraphs[1].style.headIndent, 50 + 20);
    EXPECT_EQ(h.paragraphs[2].style.headIndent, 50);
    EXPECT_EQ(h.paragraphs[2].style.tailIndent, -50);
}

TEST(Highlighting, RightToLeftByScriptMajority)
{
    HighlightOptions options = fixedWidth();
    options.checkMixedTextDirections = true;
    const QString text = QStringLiteral("שלום עולם a\nplain text");
    const Highlighting h = tl_highlightStringinRange(text, {0, text.size()}, {}, options);
    EXPECT_EQ(h.paragraphs[0].style.alignment, Alignment::RightToLeft);
    EXPECT_EQ(h.paragraphs[1].style.alignment, Alignment::Natural);
}

TEST(Highlighting, ARangePastTheEndFallsBackToTheSelection)
{
    const QString text = QStringLiteral("*a* b");
    const Highlighting h = tl_highlightStringinRange(text, {0, 99}, {0, 3}, fixedWidth());
    EXPECT_EQ(h.range, (TextRange{0, 3}));
    EXPECT_TRUE(tl_highlightStringinRange(text, {-1, 2}, {0, 3}, fixedWidth()).runs.isEmpty());
}

TEST(Highlighting, ExcludedTagsListStaysBase)
{
    HighlightOptions options = fixedWidth();
    options.excluded = true;
    EXPECT_EQ(describe(tl_highlightStringinRange(u"# a *b*", {0, 7}, {}, options)), QString());
}

struct RangeCase
{
    const char *name;
    const char *text; // the edit marked with "|"
    const char *range;
};

const RangeCase rangeCases[] = {
    {"block and one paragraph more", "a\n\nb\nc|\nd\n\ne\n", "a\n\n«b\nc\nd\n\n»e\n"},
    {"last block", "a\n\nb|", "a\n\n«b»"},
    {"new fence repaints to the next", "a\n\n``|`\nb\n\nc\n```\nd\n",
     "a\n\n«```\nb\n\nc\n```\nd\n»"},
    {"new fence repaints to the end", "a\n\n``|`\nb\n\nc\n", "a\n\n«```\nb\n\nc\n»"},
    {"inside a fence", "a\n```\nb\n\nc|\n\nd\n```\ne\nf", "a«\n```\nb\n\nc\n\nd\n```\ne\n»f"},
    {"title block at start", "% T\n% A|\n% D\n\nx\n", "«% T\n% A\n% D\n\n»x\n"},
};

class RecomputeRange : public testing::TestWithParam<RangeCase>
{
};

TEST_P(RecomputeRange, CoversWhatTheEditChanged)
{
    const RangeCase &c = GetParam();
    QString text = QString::fromUtf8(c.text);
    const qsizetype at = text.indexOf(u'|');
    text.remove(at, 1);
    const TextRange range = rangeToRecompute(text, {at, 0});
    EXPECT_EQ(tltest::marked(EditorBuffer(text, range)), QString::fromUtf8(c.range));
}

INSTANTIATE_TEST_SUITE_P(Table, RecomputeRange, testing::ValuesIn(rangeCases),
                         [](const auto &info) { return tltest::caseName(info); });

TEST(Palette, ExactColoursAndTheirVariants)
{
    PaletteOptions options;
    options.base = {0.1, 0.1, 0.1, 1};
    const Palette colours(options);
    EXPECT_EQ(colours.color(ColorRole::Heading),
              (Rgba{0.1487279843444227, 0.5450980392156862, 0.8235294117647058, 1}));
    EXPECT_EQ(colours.color(ColorRole::ListPrefix), (Rgba{0.5205479452054794, 0.6, 0.0, 1}));
    EXPECT_EQ(colours.color(ColorRole::Faded), (Rgba{0.1, 0.1, 0.1, 0.5}));
    EXPECT_EQ(colours.color(ColorRole::HtmlTag), options.base);
    EXPECT_EQ(colours.insertionPoint(), colours.color(ColorRole::Heading));

    PaletteOptions mono = options;
    mono.monochrome = true;
    EXPECT_EQ(Palette(mono).color(ColorRole::Code), options.base);
    EXPECT_EQ(Palette(mono).color(ColorRole::Faded), (Rgba{0.1, 0.1, 0.1, 0.5}));

    PaletteOptions print = options;
    print.printing = true;
    for (ColorRole role :
         {ColorRole::ListPrefix, ColorRole::Link, ColorRole::Attribute, ColorRole::HtmlTag})
        EXPECT_EQ(Palette(print).color(role), Palette(print).color(ColorRole::Faded));
    EXPECT_EQ(Palette(print).color(ColorRole::Heading), colours.color(ColorRole::Heading));

    PaletteOptions solarizedDark = options;
    solarizedDark.solarized = solarizedDark.dark = true;
    EXPECT_EQ(Palette(solarizedDark).color(ColorRole::Faded), (Rgba{0.345, 0.4314, 0.4588, 1}));
    solarizedDark.dark = false;
    EXPECT_EQ(Palette(solarizedDark).color(ColorRole::Faded), (Rgba{0.5764, 0.6313, 0.6313, 1}));

    PaletteOptions html = options;
    html.html = true;
    html.highlightMarkdown = false;
    EXPECT_EQ(Palette(html).color(ColorRole::HtmlTag), Palette(html).color(ColorRole::Faded));
    EXPECT_EQ(Palette(html).color(ColorRole::Heading), options.base);

    PaletteOptions sameBackground = options;
    sameBackground.background = colours.color(ColorRole::Heading);
    EXPECT_EQ(Palette(sameBackground).insertionPoint(), options.base);
}

} // namespace
