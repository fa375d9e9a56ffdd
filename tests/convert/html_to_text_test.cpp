#include "convert/html_to_text.h"
#include "rewrite_cases.h"

namespace {

using namespace tl::convert;
using tltest::TextCase;

TEST(Entities, DecodedInTheirOrder)
{
    tltest::expectEachRow(
        {{"nbsp", "a&nbsp;b", "a b"},
         {"angles", "&lt;p&gt;", "<p>"},
         {"hellip", "wait&hellip;", "wait..."},
         {"ellipsis character", "wait\u2026", "wait..."},
         {"quotes", "&quot;a&quot; &lsquo;b&rsquo; &ldquo;c&rdquo;", "\"a\" 'b' \"c\""},
         {"named dashes", "a&ndash;b&mdash;c", "a\u2013b\u2014c"},
         {"numeric dashes", "a&#8211;b&#8212;c", "a\u2013b\u2014c"},
         {"numeric apostrophe", "it&#8217;s", "it's"},
         {"numeric ellipsis stays a real one", "so&#8230;", "so\u2026"},
         {"other numeric entities vanish", "a&#169;b&#x41;c", "abc"},
         {"amp last, not decoded twice", "&amp;lt; &amp;amp;", "&lt; &amp;"},
         {"unknown named entity stays", "&copy;", "&copy;"}},
        tl_stringByReplacingHTMLEntities);
}

TEST(PlainQuick, RowsInTheirOrder)
{
    tltest::expectEachRow(
        {{"body only", "<html><head><title>T</title></head><body><p>Hi</p></body></html>", "Hi"},
         {"indented tags lose their indent", "<p>a</p>\n   <p>b</p>", "a\nb"},
         {"list items become dashes", "<ul><li>a</li><li>b</li></ul>", "- a\n- b"},
         {"div and breaks", "a<div>b</div>c<br>d<br/>e", "a\nbc\nd\ne"},
         {"rule", "a<hr>b", "a\n----\n\nb"},
         {"cells end in a blank", "<tr><th>H</th><td>1</td><td>2</td></tr>", "H 1 2"},
         {"style and script go", "<style type=\"x\">p{}</style>a<script>\nx()</script>", "a"},
         {"entities decoded after the tags go", "&lt;b&gt; &amp; x", "<b> & x"}},
        tl_htmlToPlainQuick);
}

TEST(PlainText, PlainTextRepresentationComesBackUnescaped)
{
    const QString stored = "<!-- Plain Text Representation:\n# Title\n\na \\-\\-\\> b \n-->\n\n"
                           "<html><body><h1>Title</h1></body></html>";
    EXPECT_EQ(tl_htmlToPlainText(stored), "# Title\n\na --> b");
}

TEST(PlainText, RepresentationWithoutEndIsTheWholeText)
{
    EXPECT_EQ(tl_htmlToPlainText("<!-- Plain Text Representation:\nabc"),
              "<!-- Plain Text Representation:\nabc");
}

TEST(PlainText, TextWithoutHtmlElementIsUnchanged)
{
    EXPECT_EQ(tl_htmlToPlainText("  <p>not a document</p>  "), "  <p>not a document</p>  ");
    EXPECT_EQ(tl_htmlToPlainText(QString()), QString());
}

TEST(PlainText, TextOfTheNodesAfterTheHead)
{
    const QString html = "<!DOCTYPE html>\n<html>\n<head>\n<title>Not this</title>\n"
                         "<style>p { color: red; }</style>\n</head>\n<body>\n"
                         "<h1>Title</h1>\n<p>One &amp; <b>two</b></p>\n"
                         "<script>\nvar x = '<p>no</p>';\n</script>\n</body>\n</html>";
    EXPECT_EQ(tl_htmlToPlainText(html), "Title\nOne & two");
}

TEST(PlainText, LinesOfTheBeginningSurvive)
{
    // Newlines in the first 450 characters become breaks; the text of the
    // nodes keeps the newlines either way.
    const QString filler(500, u'x');
    const QString html = "<html><body>a\nb\n" + filler + "\nc</body></html>";
    EXPECT_EQ(tl_htmlToPlainText(html), "a\nb\n" + filler + "\nc");
}

TEST(PlainText, DeclaredEncodingIsIgnored)
{
    const QString html = "<html><head><meta charset=\"iso-8859-1\"></head>"
                         "<body><p>Gr\u00fc\u00dfe \u2014 \U0001F600</p></body></html>";
    EXPECT_EQ(tl_htmlToPlainText(html), "Gr\u00fc\u00dfe \u2014 \U0001F600");
}

TEST(PlainText, BrokenMarkupStillGivesItsText)
{
    EXPECT_EQ(tl_htmlToPlainText("<html><body><p>a<b>b<i>c</p><td>d</body>"), "abcd");
    EXPECT_EQ(tl_htmlToPlainText("<html"), QString());
}

TEST(PlainText, NoExternalEntityIsRead)
{
    const QString html = "<!DOCTYPE html [<!ENTITY x SYSTEM \"file:///etc/passwd\">]>"
                         "<html><body>&x;</body></html>";
    EXPECT_FALSE(tl_htmlToPlainText(html).contains("root:"));
}

using Anchors = tltest::ConvertTest;

TEST_F(Anchors, IdsOfHtmlLessThoseOfNotes)
{
    const QString path = makeFile(
        inRoot("Doc.html"), "<h1 id=\"top\">T</h1><p id=\"p-2\">x</p><sup id=\"fnref:1\">1</sup>"
                            "<li id=\"fn:1\">n</li><span id=\"gn:a\"></span><a id=\"cnref:b\"></a>"
                            "<div\nid=\"multi\">y</div>");
    EXPECT_EQ(tl_listOfAnchorsInHTML(path), QStringList({"top", "p-2", "multi"}));
}

TEST_F(Anchors, MarkdownDocumentsAnswerTheIdsOfTheirRendering)
{
    setSetting("MarkdownConverter", 0);
    const QString path = makeFile(inRoot("Notes.md"), "# First\n\n## Second\n\nText^[note]");
    EXPECT_EQ(tl_listOfAnchorsInHTML(path), QStringList({"First", "Second"}));
}

TEST_F(Anchors, OtherFilesHaveNone)
{
    const QString path = makeFile(inRoot("a.txt"), "<h1 id=\"x\">x</h1>");
    EXPECT_TRUE(tl_listOfAnchorsInHTML(path).isEmpty());
    EXPECT_TRUE(tl_listOfAnchorsInHTML(inRoot("missing.html")).isEmpty());
}

} // namespace
