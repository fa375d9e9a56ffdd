#include "convert/html_to_markdown.h"
#include "rewrite_cases.h"

namespace {

using namespace tl::convert;

QString markdown(const QString &html)
{
    return markdownifyHTML(html, {});
}

TEST(Markdownify, EmptyAndBody)
{
    EXPECT_EQ(markdown(QString()), QString());
    EXPECT_EQ(markdown("<html><head><title>T</title></head><body class=\"b\">\n<p>Text</p>\n"
                       "</body></html>"),
              "Text");
}

TEST(Markdownify, CleanUp)
{
    tltest::expectEachRow(
        {
            {"doctype", "<!DOCTYPE html>x", "x"},
            {"leading blanks of one line", "  \n <b>x</b>", "**x**"},
            {"task items",
             "<ul><li class=\"tl_checkbox\">a</li><li class=\"tl_checkbox_done\">b"
             "</li></ul>",
             "- [ ]\ta\n- [x]\tb"},
            {"named anchors", "<a name=\"x\"></a>\ntext", "text"},
            {"spans, fonts, divs",
             "<div><span style=\"c\">a</span> <font face=\"f\">b</font></div>", "a b"},
            {"head material",
             "<link rel=\"s\"><meta charset=\"u\">\n<style type=\"t\">x</style>\n"
             "<title>T</title>\n<script>s()</script>\nbody",
             "body"},
            {"comments and frames", "a<!-- c -->\n<iframe src=\"x\"></iframe>\nb", "ab"},
            {"highlight between words", "one <mark>x</mark> two", "one ==x== two"},
            {"highlight after a non-breaking blank", "one&nbsp;<mark class=\"m\">x</mark>\u00a0two",
             "one ==x== two"},
            {"empty emphasis around a break", "a<b><br></b>b<i><br></i>c<u><br></u>d", "abcd"},
            {"touching emphasis joins", "<b>a</b><b>b</b> <i>c</i><i>d</i> <s>e</s><s>f</s>",
             "**ab** *cd* <s>ef</s>"},
            {"underline stays", "a <u>b</u> c", "a <u>b</u> c"},
            {"breaks", "a<br>b<br/>c<br class=\"x\">\nd", "a\nb\nc\nd"},
            {"office tags", "<o:p>a</o:p>", "a"},
        },
        markdown);
}

using MarkdownifySettings = tltest::ConvertTest;

TEST_F(MarkdownifySettings, MarksAndBreaksFollowTheSettings)
{
    EXPECT_EQ(tl_markdownifyHTML("<b>a</b> <em>b</em><br>c"), "**a** *b*\nc");
    setSetting("useUnderscoreToEmphasizeMD", true);
    setSetting("useMarkdownStrictly", true);
    EXPECT_EQ(tl_markdownifyHTML("<b>a</b> <em>b</em><br>c"), "__a__ _b_  \nc");
}

TEST(Markdownify, StrictBreaksEndInTwoBlanks)
{
    EXPECT_EQ(markdownifyHTML("a<br>b<br>\nc", {false, true}), "a  \nb  \nc");
}

TEST(Markdownify, Paragraphs)
{
    tltest::expectEachRow(
        {
            {"paragraphs", "<p>a</p><p class=\"x\">b</p>", "a\n\nb"},
            {"empty paragraph", "a<p></p>b", "ab"},
            {"unclosed inner paragraph", "<p>a<p>b</p><p>c</p>", "a\nb\n<p>c"},
            {"pre is no paragraph", "<pre>x</pre>", "<pre>x</pre>"},
        },
        markdown);
}

TEST(Markdownify, Emphasis)
{
    tltest::expectEachRow(
        {
            {"strong", "<b>a</b> <strong class=\"s\">b</strong>", "**a** **b**"},
            {"weak", "<i>a</i> <em>b</em>", "*a* *b*"},
            {"struck", "<strike>a</strike> <del>b</del>", "~~a~~ ~~b~~"},
            {"newlines inside move out", "<b>\na\n</b>", "**a**"},
            {"a blank inside stays", "<b> a</b>", "** a**"},
            {"rule", "a<hr>b", "a\n----\n\nb"},
            {"rule with attributes", "<p>a</p><hr class=\"x\">\n<p>b</p>", "a\n\n----\n\nb"},
        },
        markdown);
    EXPECT_EQ(markdownifyHTML("<b>a</b> <i>b</i>", {true, false}), "__a__ _b_");
}

TEST(Markdownify, Quotations)
{
    tltest::expectEachRow(
        {
            {"quotation", "<blockquote><p>a</p></blockquote>", "> a"},
            {"nested", "<blockquote><p>a</p><blockquote><p>b</p></blockquote></blockquote>",
             "> a\n\n> > b"},
            {"three deep",
             "<blockquote>a<blockquote>b<blockquote>c</blockquote></blockquote>"
             "</blockquote>",
             "> a\n> > b\n> > > c"},
            {"further lines are not marked", "<blockquote><p>a</p><p>b</p></blockquote>",
             "> a\n\nb"},
            {"empty", "x<blockquote></blockquote>y", "x\ny"},
        },
        markdown);
}

TEST(Markdownify, Code)
{
    tltest::expectEachRow(
        {
            {"block", "<pre><code>a\nb\n</code></pre>", "~~~~\na\nb\n~~~~"},
            {"block in capitals", "<PRE><CODE>a\n</CODE></PRE>", "~~~~\na\n~~~~"},
            {"paragraph of code", "<P><CODE>a</CODE></P>", "`a`"},
            {"inline", "x <code class=\"c\">y</code> z", "x `y` z"},
        },
        markdown);
}

TEST(Markdownify, Lists)
{
    tltest::expectEachRow(
        {
            {"bullets", "<ul>\n<li>a</li>\n<li>b</li>\n</ul>", "-\ta\n-\tb"},
            {"numbered from one", "<ol start=\"4\"><li>a</li><li>b</li></ol>", "1.\ta\n 2.\tb"},
            {"an empty item uses its number", "<ol><li>a</li><li></li><li>c</li></ol>",
             "1.\ta\n 3.\tc"},
            {"nested, one tab per level",
             "<ul><li>a<ul><li>b<ul><li>c</li></ul></li></ul></li><li>d</li></ul>",
             "-\ta\n\t- b\n\t\t- c\n-\td"},
            {"ordered inside bullets", "<ul><li>a<ol><li>b</li><li>c</li></ol></li></ul>",
             "-\ta\n \t1. b\n \t2. c"},
            {"tasks",
             "<ul><li class=\"tl_checkbox\">a</li><li class=\"tl_checkbox_done\">b</li>"
             "</ul>",
             "- [ ]\ta\n- [x]\tb"},
            {"sub-list written in front of an item",
             "<ol><li>a</li><ol><li>b</li></ol><li>c</li></ol>", "1.\ta\n \t1. b\n 2.\tc"},
            {"the blank line a rendering puts before a sub-list stays",
             "<ul>\n<li>a\n\n<ul>\n<li>b</li>\n</ul>\n</li>\n</ul>", "-\ta\n\n\t- b"},
            {"stray items", "<li>a</li><LI>b</LI>", "-\ta\n-\tb"},
        },
        markdown);
}

TEST(Markdownify, Headings)
{
    tltest::expectEachRow(
        {
            {"levels", "<h1>A</h1><h2 id=\"b\">B</h2><h6>F</h6>", "# A\n\n## B\n\n###### F"},
            {"blanks around go", "x\n  <h3>\n C </h3>\ny", "x\n\n### C \n\ny"},
            {"heading directly after a heading start", "<h1><h2>x</h2>", "#\n\n## x"},
        },
        markdown);
}

TEST(Markdownify, Tables)
{
    tltest::expectEachRow(
        {
            {"head with alignments",
             "<table><thead><tr><th style=\"text-align:left;\">A</th><th align=\"right\">B</th>"
             "<th style=\"text-align:center;\">C</th><th>D</th></tr></thead>"
             "<tbody><tr><td>1</td><td>2</td><td>3</td><td>4</td></tr></tbody></table>",
             "A | B | C | D\n :---------- | ----------: | :---------: | ----------- \n1 | 2 | 3 | "
             "4"},
            {"lines between rows",
             "<table>\n<thead>\n<tr>\n<th>A</th>\n<th>B</th>\n</tr>\n"
             "</thead>\n<tbody>\n<tr>\n<td>1</td>\n<td>2</td>\n</tr>\n"
             "</tbody>\n</table>",
             "A | B\n ----------- | ----------- \n1 | 2"},
            {"no head, no separator",
             "x<table><tr><td>1</td><td>2</td></tr><tr><td>3</td><td>4"
             "</td></tr></table>y",
             "x\n\n1 | 2\n3 | 4\n\ny"},
        },
        markdown);
}

TEST(Markdownify, LinksAndImages)
{
    tltest::expectEachRow(
        {
            {"link", "<a href=\"https://x.org/a\" title=\"t\">X</a>", "[X](https://x.org/a)"},
            {"link over lines", "<a class=\"c\"\nhref=\"b.md\">B\nC</a>", "[B\nC](b.md)"},
            {"image loses its alternative text", "<img alt=\"Alt\" src=\"p.png\">", "![](p.png)"},
            {"parenthesis in an image address", "<img src=\"a(1).png\" />", "![](a(1%29.png)"},
            {"linked image", "<a href=\"big.png\"><img src=\"small.png\"></a>",
             "[![](small.png)](big.png)"},
        },
        markdown);
}

TEST(Markdownify, DefinitionListsAndCheckboxes)
{
    tltest::expectEachRow(
        {
            {"definition list", "<dl><dt>Term</dt><dd>Meaning</dd></dl>", "Term\n: Meaning"},
            {"checked input", "<input type=\"checkbox\" checked=\"\">a", "- [x] a"},
            {"open input", "<input type=\"checkbox\" class=\"t\">b", "- [ ] b"},
        },
        markdown);
}

TEST(Markdownify, Tidy)
{
    tltest::expectEachRow(
        {
            {"blank lines collapse", "<p>a</p>\n\n\n   \n<p>b</p>", "a\n\nb"},
            {"other tags stay", "<section>a</section>", "<section>a</section>"},
        },
        markdown);
}

TEST(InlineStyles, Rows)
{
    tltest::expectEachRow(
        {
            {"editor spans", "<span style=\"text-align: initial;\">a</span>", "a"},
            {"inherited colour", "<span style=\"color: inherit;\">a</span>b", "ab"},
            {"initial emphasis",
             "<i style=\"text-align: initial;\">a</i><b style=\"text-align: "
             "initial;\">b</b>",
             "<i>a</i><b>b</b>"},
            {"other styles go", "<p style=\"font-size: 12px;\" class=\"x\">a</p>",
             "<p class=\"x\">a</p>"},
            {"highlight, alignment and pre stay",
             "<span style=\"background-color: yellow;\">a</span><p style=\"text-align: "
             "center;\">b</p><div style=\"white-space:pre\">c</div>",
             "<span style=\"background-color: yellow;\">a</span><p style=\"text-align: "
             "center;\">b</p>\n\n<div style=\"white-space:pre\">c</div>"},
            {"converted spaces", "a<span class=\"Apple-converted-space\">&nbsp;</span>b&nbsp;c",
             "a b c"},
            {"headings on their own lines", "a<h1>b</h1>", "a\n\n<h1>b</h1>"},
            {"paragraphs apart", "<p>a</p><p>b</p>", "<p>a</p>\n\n<p>b</p>"},
            {"lists and items on lines", "x<ul><li>a</li><li>b</li></ul>",
             "x\n<ul>\n<li>a</li>\n<li>b</li>\n</ul>"},
            {"breaks end lines", "a<br>b<br/></p>", "a<br>\nb<br/></p>"},
            {"images without source go", "a<img alt=\"x\" src=\"\">b", "ab"},
            {"joined emphasis", "<B>a</B><b>b</b>", "<B>ab</b>"},
        },
        tl_htmlWithoutInlineStyles);
}

} // namespace
