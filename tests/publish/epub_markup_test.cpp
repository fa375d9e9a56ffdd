#include "publish/epub_markup.h"
#include "publish/epub_navigation.h"

#include <gtest/gtest.h>

using namespace tl::publish;

namespace {

struct Case
{
    const char *input;
    const char *expected;
};

TEST(EPubMarkup, CompliantMarkup)
{
    const Case cases[] = {
        {"<div><br></div>", "<br/>"},
        {"<p class=\"x\"\nstyle=\"y\">a</p>", "<p>a</p>"},
        {"<hr class=\"r\">", "<hr/>"},
        {"<img src=\"a.png\">", "<img src=\"a.png\"/>"},
        {"<img src=\"a.png\" />", "<img src=\"a.png\" />"},
        {"<input type=\"checkbox\">", "<input type=\"checkbox\"/>"},
        {"a<br>b<br class=\"c\">", "a<br/>b<br/>"},
        {"<hr>", "<hr/>"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(tl_stringByMakingHTMLePubCompliant(c.input).toStdString(), c.expected);
}

TEST(EPubMarkup, PageNames)
{
    const Case cases[] = {
        {"/L/a#b&c.md", "a-b+c.html"},
        {"/L/Chapter.txt", "Chapter.html"},
        {"/L/Page.html", "Page.html"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(pageNameForDocument(c.input).toStdString(), c.expected);
}

TEST(EPubMarkup, IdsBecomeXMLNamesWithTheirLinks)
{
    EXPECT_EQ(withValidIds("<sup id=\"fnref:1\"><a href=\"#fn:1\">1</a></sup><li id=\"fn:1\">"
                           "<h1 id=\"2\">a</h1><h1 id=\"x\">b</h1><h1 id=\"x\">c</h1>")
                  .toStdString(),
              "<sup id=\"fnref-1\"><a href=\"#fn-1\">1</a></sup><li id=\"fn-1\">"
              "<h1 id=\"id-2\">a</h1><h1 id=\"x\">b</h1><h1 id=\"x-2\">c</h1>");
}

TEST(EPubMarkup, BodyIsMadeWellFormed)
{
    EXPECT_EQ(withWellFormedBody("<head></head><body><ul><li>a</p><p>b</li></ul>&nbsp;"
                                 "<img src=\"i.png\"><mark>m</mark></body></html>")
                  .toStdString(),
              "<head></head><body><ul><li>a<p>b</p></li></ul>\u00A0<img src=\"i.png\" alt=\"\"/>"
              "<span class=\"mark\">m</span></body></html>");
}

TEST(EPubNavigation, LevelsNestAndSkippedLevelsGetEmptyPoints)
{
    int counter = 1;
    EPubNavigation navigation(counter);
    const QString page = navigation.addHeadings("<h1>One</h1><h3 id=\"d\">Deep</h3>", "p.html");
    navigation.addHeadings("<h1>Two</h1>", "q.html");
    EXPECT_EQ(page.toStdString(), "<h1><a id=\"TLAnchor-1\"></a>One</h1>"
                                  "<h3 id=\"d\"><a id=\"TLAnchor-2\"></a>Deep</h3>");
    const auto point = [](int n, const char *label, const char *src) {
        return QStringLiteral(" <navPoint id=\"item%1\" playOrder=\"%1\">\n  <navLabel>\n   "
                              "<text>%2</text>\n  </navLabel>\n  <content src=\"%3\"/>\n")
            .arg(n)
            .arg(QLatin1String(label), QLatin1String(src));
    };
    const QString close = " </navPoint>\n\n";
    EXPECT_EQ(navigation.closedNavMap(), point(1, "One", "p.html#TLAnchor-1") +
                                             point(2, "", "p.html") +
                                             point(3, "Deep", "p.html#TLAnchor-2") + close + close +
                                             close + point(4, "Two", "q.html#TLAnchor-3") + close);
    EXPECT_EQ(counter, 5);
}

} // namespace
