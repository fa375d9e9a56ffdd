#include "importers/opml_converter.h"

#include <gtest/gtest.h>

namespace {

struct Case
{
    const char *name;
    const char *opml;
    const char *html;
};

TEST(OPMLConverter, OutlinesBecomeNestedLists)
{
    const Case cases[] = {
        {"title before the list, nesting and a jump back of two levels",
         "<?xml version=\"1.0\"?><opml><head><title>Plan</title></head><body>"
         "<outline text=\"a\"><outline text=\"b\"><outline text=\"c\"/></outline></outline>"
         "<outline text=\"d\"/></body></opml>",
         "<h1>Plan</h1>\n\n<ul>\n\n<li>a</li>\n<ul>\n<li>b</li>\n<ul>\n<li>c</li>\n</ul>\n"
         "\n</ul>\n\n<li>d</li>\n</ul>\n"},
        {"url wins over htmlUrl, description behind, nothing escaped",
         "<opml><body><outline text=\"x &amp; y\" htmlUrl=\"h\" url=\"u?a=1&amp;b=2\" "
         "description=\"d\"/><outline text=\"z\" htmlUrl=\"h\"/></body></opml>",
         "\n<ul>\n\n<li><a href=\"u?a=1&b=2\">x & y</a><br>d</li>\n<li><a href=\"h\">z</a></li>"
         "\n</ul>\n"},
        {"an outline without text is an empty item", "<opml><body><outline/></body></opml>",
         "\n<ul>\n\n<li></li>\n</ul>\n"},
        {"an empty body is an empty list", "<opml><body/></opml>", "\n<ul>\n\n</ul>\n"},
        {"a title split by an entity keeps its first piece",
         "<opml><head><title>Tom &amp; Jerry</title></head></opml>", "<h1>Tom </h1>\n"},
        {"element names in any case", "<OPML><BODY><Outline text=\"a\"/></BODY></OPML>",
         "\n<ul>\n\n<li>a</li>\n</ul>\n"},
        {"a parse failure keeps what was built", "<opml><body><outline text=\"a\"></body>",
         "\n<ul>\n\n<li>a</li>"},
        {"no XML", "just some text", ""},
        {"entities are never expanded",
         "<!DOCTYPE opml [<!ENTITY e \"boom\">]><opml><body><outline text=\"&e;\"/></body></opml>",
         "\n<ul>\n\n<li>&e;</li>\n</ul>\n"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(tl::importers::tl_OPMLToHTML(QString::fromUtf8(c.opml)).toStdString(), c.html);
    }
}

} // namespace
