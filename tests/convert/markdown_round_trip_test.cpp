// Markdown that the program renders comes back, through the way to
// Markdown, as Markdown that renders to the same HTML.
#include "convert/envelope.h"
#include "convert/html_to_markdown.h"
#include "convert/markdown_to_html.h"
#include "convert_test_support.h"
#include "foundation/regex.h"

namespace {

using namespace tl::convert;

class MarkdownRoundTrip : public tltest::ConvertTest
{
protected:
    // Blanks and line ends next to tags, which change nothing that shows,
    // as table cells keep the blanks around their bars.
    static QString layoutFree(const QString &html)
    {
        static const tl::Regex around(QStringLiteral(R"(\s*(<[^>]+>)\s*)"));
        return around.replaceAll(html, QStringLiteral("$1"));
    }

    static QString body(const QString &markdown)
    {
        return tl_getInnerHTML(tl_markdownToHTML(markdown));
    }

    void expectRoundTrips(const std::vector<tltest::TextCase> &cases)
    {
        for (const tltest::TextCase &c : cases) {
            const QString html = tl_markdownToHTML(c.input);
            const QString back = tl_markdownifyHTML(html);
            EXPECT_EQ(back, c.expected) << c.name;
            EXPECT_EQ(layoutFree(body(back)), layoutFree(tl_getInnerHTML(html))) << c.name << "\n"
                                                                                 << back;
        }
    }
};

// Either converter renders these so that the same Markdown comes back. The
// rendering puts a blank line before a sub-list, which stays on the way back,
// so nested lists are written with it: a tight item would come back loose.
// An ordered sub-list, which the rendering sets beside its item, comes back
// as an item of its own.
const std::vector<tltest::TextCase> &documents()
{
    static const std::vector<tltest::TextCase> cases{
        {"headings", "# One\n\n## Two\n\n###### Six", "# One\n\n## Two\n\n###### Six"},
        {"emphasis", "Some *weak*, **strong** and ~~struck~~ text.",
         "Some *weak*, **strong** and ~~struck~~ text."},
        {"bullets", "- a\n- b", "-\ta\n-\tb"},
        {"ordered", "1. a\n2. b\n3. c", "1.\ta\n 2.\tb\n 3.\tc"},
        {"nested", "-\ta\n\n\t- b\n\t\t- c\n-\td", "-\ta\n\n\t- b\n\t\t- c\n-\td"},
        {"bullets in ordered", "1.\ta\n\n\t- b\n\t- c\n2.\td", "1.\ta\n\n\t- b\n\t- c\n 2.\td"},
        {"tasks", "- [ ] open\n- [x] done", "- [ ]\topen\n- [x]\tdone"},
        {"quotation", "> a quotation", "> a quotation"},
        {"code block", "Some code follows.\n\n```\ncode here\n  indented\n```",
         "Some code follows.\n\n~~~~\ncode here\n  indented\n~~~~"},
        {"inline code", "Use `x < y` here.", "Use `x < y` here."},
        {"table", "| A | B |\n|:--|--:|\n| 1 | 2 |",
         "A  |  B \n :---------- | ----------: \n 1  |  2"},
        {"table centred", "A|B\n:-:|---\n1|2", "A | B\n :---------: | ----------- \n1 | 2"},
        {"nested quotation", "> a\n\n> > b", "> a\n\n> > b"},
        {"link", "A [link](https://example.org/a) here.", "A [link](https://example.org/a) here."},
        {"image", "![](pic.png)", "![](pic.png)"},
    };
    return cases;
}

TEST_F(MarkdownRoundTrip, DefaultConverter)
{
    setSetting("MarkdownConverter", 0);
    setSetting("useMarkdownStrictly", true);
    expectRoundTrips(documents());
    expectRoundTrips({
        {"nested tasks", "- [ ]\ta\n\n\t- [x] b\n- [ ]\tc", "- [ ]\t\na\n\n\t- [x]\tb\n- [ ]\tc"},
    });
}

TEST_F(MarkdownRoundTrip, MultiMarkdown)
{
    setSetting("MarkdownConverter", 1);
    setSetting("useMarkdownStrictly", true);
    expectRoundTrips(documents());
}

} // namespace
