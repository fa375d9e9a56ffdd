#include "convert/envelope.h"
#include "convert/markdown_to_html.h"
#include "convert_test_support.h"

namespace {

using tl::convert::tl_getInnerHTML;
using tl::convert::tl_markdownToHTML;
using tltest::TextCase;

// Markdown in, body out, for the converter chosen by the setting.
class MarkdownToHTML : public tltest::ConvertTest
{
protected:
    void SetUp() override
    {
        ConvertTest::SetUp();
        setSetting("useMarkdownStrictly", true);
    }

    static QString body(const QString &markdown)
    {
        return tl_getInnerHTML(tl_markdownToHTML(markdown));
    }

    void expectBodies(int converter, const std::vector<TextCase> &cases)
    {
        setSetting("MarkdownConverter", converter);
        for (const TextCase &c : cases)
            EXPECT_EQ(body(c.input), c.expected) << c.name << " (converter " << converter << ")";
    }
};

TEST_F(MarkdownToHTML, DefaultConverter)
{
    expectBodies(
        0,
        {
            {"duplicate headings", "# A\n\n# A", "<h1 id=\"A-1\">A</h1>\n\n<h1 id=\"A\">A</h1>"},
            {"checkboxes", "- [ ] open\n- [x] done\n- plain",
             "<ul>\n<li class=\"tl_checkbox\">open</li>\n<li "
             "class=\"tl_checkbox_done\">done</li>\n<li>plain</li>\n</ul>"},
            {"loose checkboxes", "- [ ] open\n\n- [x] done",
             "<ul>\n<li class=\"tl_checkbox\">open</li>\n<li "
             "class=\"tl_checkbox_done\">done</li>\n</ul>"},
            {"highlight", "x ==y== z", "<p>x <mark>y</mark> z</p>"},
            {"page break", "a\n\n{{pagebreak}}\n\nb",
             "<p>a</p>\n\n<div class=\"pagebreak\"></div>\n\n<p>b</p>"},
            {"inline note", "a ^[n] b",
             "<p>a <sup id=\"fnref:1\"><a href=\"#fn:1\" rel=\"footnote\">1</a></sup> b</p>\n<div "
             "class=\"footnotes\">\n<hr/>\n<ol>\n<li id=\"fn:1\">\nn<a href=\"#fnref:1\" "
             "rev=\"footnote\">&#8617;</a></li>\n</ol>\n</div>"},
            {"title block", "% The Title\n% Me\n% Today\n\ntext",
             "<div id=\"header\"><h1 class=\"title\">The Title</h1>\n<h2 "
             "class=\"author\">Me</h2>\n<h3 class=\"date\">Today</h3></div>\n<hr "
             "class=\"invisible-pagebreak\">\n<p>text</p>"},
            {"heading anchor", "## Some title [here]",
             "<h2 id=\"Some-title-\"><span id=\"here\">Some title </span></h2>"},
            {"index mark", "a [>>entry] b", "<p>a  b</p>"},
            {"wiki link", "[[a/b/c.md]]", "<p><a href=\"a/b/c.md\">c</a></p>"},
            {"ordered sub-list", "1. a\n    1. b",
             "<ol>\n<li>a\n\n</li><ol>\n<li>b</li>\n</ol>\n</li>\n</ol>"},
        });
}

TEST_F(MarkdownToHTML, ContentsByLevel)
{
    const QString headings = "\n\n# One\n\n## Two\n\n### Three";
    const QString two = "<!-- TOC -->\n<div class=\"TOC\">\n <ul>\n  <li><a "
                        "href=\"#Two\">Two</a>\n  </li>\n </ul>\n</div>\n";
    setSetting("MarkdownConverter", 0);
    EXPECT_TRUE(body("{{TOC:2}}" + headings).startsWith(two));
    EXPECT_TRUE(
        body("{{TOC}}" + headings)
            .startsWith("<!-- TOC -->\n<div class=\"TOC\">\n<ul>\n <li><a href=\"#One\">One</a>"));
    EXPECT_TRUE(body("<TOC>" + headings).startsWith("<!-- TOC -->"));
    const QString twoToNine = body("{{TOC:2-}}" + headings);
    EXPECT_TRUE(twoToNine.contains("#Three")) << twoToNine;
    EXPECT_FALSE(twoToNine.contains("#One\">")) << twoToNine;
    const QString zeroToThree = body("{{TOC:0-3}}" + headings);
    EXPECT_TRUE(zeroToThree.contains("#One\">") && zeroToThree.contains("#Three\">"));
    EXPECT_TRUE(body("{{TOC:4-2}}" + headings).startsWith("<p>{{TOC:4-2}}</p>"));
}

TEST_F(MarkdownToHTML, MultiMarkdown)
{
    expectBodies(
        1, {
               {"metadata", "Title: A note\nAuthor: Me\n\nText", "<p>Text</p>"},
               {"checkboxes", "- [ ] open\n- [x] done",
                "<ul>\n<li class=\"tl_checkbox\">open</li>\n<li "
                "class=\"tl_checkbox_done\">done</li>\n</ul>"},
               {"page break", "a\n\n{{pagebreak}}\n\nb",
                "<p>a</p>\n\n<div class=\"pagebreak\"></div>\n\n<p>b</p>"},
               {"class quotation", ">%note%\n> text", "<div class=\"note\"><p>text</p></div>"},
               {"heading ids", "# My Title\n\n## Part [p2]",
                "<h1 id=\"mytitle\">My Title</h1>\n\n<h2 id=\"p2\">Part </h2>"},
               {"critic accepted", "a {++b++}{--c--} {~~d~>e~~}{>>f<<}", "<p>a b e</p>"},
               {"inline note", "a ^[n [x]] b",
                "<p>a <sup id=\"fnref:1\"><a href=\"#fn:1\" rel=\"footnote\">1</a></sup> b</p>\n"
                "<div class=\"footnotes\">\n<hr/>\n<ol>\n<li id=\"fn:1\">\nn [x]<a "
                "href=\"#fnref:1\" rev=\"footnote\">&#8617;</a></li>\n</ol>\n</div>"},
               {"unbalanced inline notes stay text", QString("^[[a] ").repeated(16),
                "<p>" + QString("[^ [a] ").repeated(16).trimmed() + "</p>"},
               {"contents", "{{TOC}}\n\n# A",
                "<!-- TOC -->\n<div class=\"TOC\">\n<ul>\n <li><a "
                "href=\"#a\">A</a></li>\n</ul>\n\n</div>\n\n\n<h1 id=\"a\">A</h1>"},
           });
    setSetting("showCriticMarkup", 1);
    EXPECT_EQ(body("a {++b++} {--c--}"), "<p>a <ins>b</ins> <del>c</del></p>");
}

TEST_F(MarkdownToHTML, TransclusionHeaderAndFooterFollowTheDocument)
{
    setSetting("MarkdownConverter", 1);
    makeFile(inRoot("Book/part.md"), "Title: Part\n\nPart text {{main.md}}");
    makeFile(inRoot("Book/table.html"), "<b>html variant</b>");
    makeFile(inRoot("Book/head.md"), "Header text");
    makeFile(inRoot("Book/foot.md"), "Footer text");
    const QString main = makeFile(
        inRoot("Book/main.md"),
        "MMD Header: head.md\nMMD Footer: foot.md\n\n{{part.md}}\n\n{{table.*}}\n\n{{missing.md}}");
    EXPECT_EQ(tl_getInnerHTML(tl_markdownToHTML(main)),
              "<p>Header text</p>\n\n<p>Part text {{main.md}}</p>\n\n<p><b>html variant</b></p>\n\n"
              "<p>{{missing.md}}</p>\n\n<p>Footer text</p>");
}

TEST_F(MarkdownToHTML, DocumentsInTheLibrary)
{
    setSetting("MarkdownConverter", 0);
    const QString doc = makeFile(inRoot("Book/My Doc.md"), "My Doc\nsee [other](" + root_.toUtf8() +
                                                               "/Other/B.md) and [up](..)");
    const QString html = tl_markdownToHTML(doc);
    EXPECT_TRUE(
        html.startsWith("<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\">\n<head>\n  "
                        "<!-- Generator: Tavelle for Mac 1.0 -->\n  <title>My Doc</title>"))
        << html;
    EXPECT_EQ(tl_getInnerHTML(html),
              "<h1 id=\"My-Doc\">My Doc</h1>\n\n<p>see <a href=\"../Other/B.md\">other</a> and <a "
              "href=\"..\">Library</a></p>");

    // A first empty line means no automatic heading.
    makeFile(doc, "\nMy Doc\nmore");
    EXPECT_FALSE(tl_markdownToHTML(doc).contains("<h1"));
}

TEST_F(MarkdownToHTML, TheTOCPropertyPutsContentsOnTopForTheDefaultConverterOnly)
{
    const QString doc = makeFile(inRoot("Doc.md"), "# One\n\ntext");
    writePlist(inRoot("Doc.md.plist"), QVariantMap{{"TOC", "1"}});
    setSetting("MarkdownConverter", 0);
    EXPECT_TRUE(tl_getInnerHTML(tl_markdownToHTML(doc)).startsWith("<!-- TOC -->"));
    setSetting("MarkdownConverter", 1);
    EXPECT_FALSE(tl_getInnerHTML(tl_markdownToHTML(doc)).contains("TOC"));
}

TEST_F(MarkdownToHTML, HeadingLinksAndMermaid)
{
    setSetting("MarkdownConverter", 0);
    setSetting("addLinksToHeadings", true);
    EXPECT_EQ(body("# A"), "<h1 id=\"A\"><a href=\"#A\">A</a></h1>");
    const QString diagram = body("```mermaid\ngraph TD; A-->B\n```");
    EXPECT_TRUE(diagram.contains("<script>mermaid.initialize({startOnLoad:true});</script>"));
    EXPECT_TRUE(diagram.contains("/js/mermaid/mermaid.min.js\"></script>"));
}

TEST_F(MarkdownToHTML, AnEmptyDocumentStillGetsTheEnvelope)
{
    const QString html = tl_markdownToHTML("");
    EXPECT_TRUE(html.startsWith("<!DOCTYPE html>"));
    EXPECT_TRUE(html.endsWith("<body>\n\n</body>\n</html>"));
}

} // namespace
