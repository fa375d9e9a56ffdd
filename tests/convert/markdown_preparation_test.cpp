#include "convert/markdown_preparation.h"
#include "convert_test_support.h"

namespace {

using tl::convert::tl_makeEveryNewlineaLinebreak;
using tl::convert::tl_makeWikiLinksMarkdownLinks;
using tl::convert::tl_stringPreparedForConversionWith;
using tltest::TextCase;

class Preparation : public tltest::ConvertTest
{
protected:
    void SetUp() override
    {
        ConvertTest::SetUp();
        // The line-break rule has its own table; the step tables read plainer
        // without it.
        setSetting("useMarkdownStrictly", true);
    }

    void expectTable(int converter, const std::vector<TextCase> &cases)
    {
        for (const TextCase &c : cases)
            EXPECT_EQ(tl_stringPreparedForConversionWith(c.input, converter), c.expected) << c.name;
    }
};

TEST_F(Preparation, StepsBothConvertersShare)
{
    const std::vector<TextCase> cases = {
        {"highlight", "x ==hi== y", "x <mark>hi</mark> y"},
        {"highlight at the very end", "x ==hi==", "x ==hi=="},
        {"critic highlight", "{==x==} ", "{==x==} "},
        {"highlight after a word character", "a==x== ", "a==x== "},
        {"highlight across lines", "==a\nb== ", "==a\nb== "},
        {"highlight in code", "`==x== `", "`==x== `"},
        {"page break", "a\n\n{{PageBreak}}\n\nb", "a\n\n>%pagebreak%\n\nb"},
        {"page break eats empty lines", "{{pagebreak}}\n\n\nb", ">%pagebreak%\n\nb"},
        {"page break in a fence", "x\n```\n{{pagebreak}}\n```\n", "x\n```\n{{pagebreak}}\n```\n"},
        {"page break within a line", "a {{pagebreak}}", "a {{pagebreak}}"},
    };
    expectTable(2, cases);
}

TEST_F(Preparation, InlineNotesBecomeDefinitionsForTheDefaultConverter)
{
    const std::vector<TextCase> cases = {
        {"caret note", "a ^[note] b", "a [^ note] b\n[^ note]:  note"},
        {"tag note", "a <<fnote \"said\">> b", "a [^ said] b\n[^ said]:  said"},
        {"nested brackets", "^[a [b] c] x", "[^ a -b- c] x\n[^ a -b- c]:  a [b] c"},
        {"nested note at the very end stops short", "^[a [b] c]",
         "[^ a -b- c]\n[^ a -b- c:  a [b] c"},
        {"reference with a definition stays", "x[^1]\n\n[^1]: one", "x[^1]\n\n[^1]: one"},
        {"reference without definition", "x[^1]", "x[^1]\n[^1]: 1"},
        {"definitions pile up in reverse", "^[a] ^[b]", "[^ a] [^ b]\n[^ b]:  b\n[^ a]:  a"},
        {"twins share one definition", "^[a] ^[a]", "[^ a] [^ a]\n[^ a]:  a"},
        {"note in a code span", "`^[a]`", "`^[a]`"},
        {"note in a fence", "x\n```\n^[a]\n```\n", "x\n```\n^[a]\n```\n"},
        {"unbalanced notes stop at the end of the text before any definition", "^[[a] ^[[b] ",
         "[^ -a- -^ -b] \n[^ -b]:  [b\n[^ -a- -^ -b]:  [a] [^ -b"},
        {"reference in a fence", "x\n```\n[^1]\n```\n", "x\n```\n[^1]\n```\n"},
    };
    expectTable(0, cases);
}

TEST_F(Preparation, UnbalancedNotesNeverTakeInTheDefinitionsBehindThem)
{
    // Each note would otherwise reach into all the definitions appended so
    // far and triple the text.
    const QString text = QString("^[[a] ").repeated(16);
    EXPECT_LT(tl_stringPreparedForConversionWith(text, 0).size(), 40 * text.size());
    EXPECT_EQ(tl_stringPreparedForConversionWith(text, 1),
              QString("[^ [a] ").repeated(16)); // notes are the converter's business there
}

TEST_F(Preparation, HeadingAnchorsAndCheckboxesForTheDefaultConverter)
{
    const std::vector<TextCase> cases = {
        {"heading anchor", "## Some title [the-anchor]\ntext",
         "## [Some title ](id:the-anchor)\ntext"},
        {"closing hashes go", "# T [a] ##\ntext", "# [T ](id:a)\ntext"},
        {"checkbox with a tab", "- [ ]\ttask", "- [ ] task"},
        {"checkbox on its own line", "- [x]\ndone", "- [x] done"},
        {"two blanks keep the second", "- [x]  done", "- [x]  done"},
        {"plain text", "nothing to do\n", "nothing to do\n"},
    };
    expectTable(0, cases);

    setSetting("useMMDCompatibleAnchors", true);
    EXPECT_EQ(tl_stringPreparedForConversionWith("# T [a]\nx", 0), "# T [a]\nx");
}

TEST_F(Preparation, MultiMarkdownSteps)
{
    const std::vector<TextCase> cases = {
        {"linked image starts a paragraph", "text\n[![](i.png)](x)", "text\n\n[![](i.png)](x)"},
        {"blank in a link target", "[a](my file.md)", "[a](my%20file.md)"},
        {"parenthesis in a target", "[a](x%28y)", "[a](x%28y)"},
        {"target in code too", "`[a](b c)`", "`[a](b%20c)`"},
        {"open contents range", "{{TOC:2-}}", "{{TOC:2-9}}"},
        {"closed contents range", "{{TOC:2-4}}\n{{TOC:2}}", "{{TOC:2-4}}\n{{TOC:2}}"},
        {"notes stay inline", "a ^[n]", "a [^ n]"},
        {"checkbox untouched", "- [ ]\tx", "- [ ]\tx"},
    };
    expectTable(1, cases);
    EXPECT_EQ(tl_stringPreparedForConversionWith("{{TOC:2-}}", 0), "{{TOC:2-}}");
}

TEST_F(Preparation, WikiLinks)
{
    const std::vector<TextCase> cases = {
        {"path", "[[a/b/c.md]]", "[c](a/b/c.md)"},
        {"title", "[[a/b/c.md|Title]]", "[Title](a/b/c.md)"},
        {"anchor title", "[[x|#sec]]", "[sec](x)"},
        {"blanks trimmed from the target only", "[[ My Doc.md ]]", "[ My Doc](My%20Doc.md)"},
        {"tavelle scheme", "[[tavelle://show/B/D.md]]", "[D](/B/D.md)"},
        {"after a dot", ".[[x]]", ".[[x]]"},
        {"backquote later on the line", "[[x]] `c`", "[[x]] `c`"},
        {"two on a line", "[[a]] and [[b]]", "[a](a) and [b](b)"},
        {"in a fence", "t\n```\n[[x]]\n```\n", "t\n```\n[[x]]\n```\n"},
    };
    for (const TextCase &c : cases)
        EXPECT_EQ(tl_makeWikiLinksMarkdownLinks(c.input), c.expected) << c.name;
}

TEST_F(Preparation, EveryNewlineBecomesALineBreakWhereMarkdownAllows)
{
    const std::vector<TextCase> cases = {
        {"plain lines", "a\nb", "a  \nb  \n"},
        {"trailing newline gains one", "a\n", "a  \n\n"},
        {"return and newline", "a\r\nb\rc", "a  \nb  \nc  \n"},
        {"heading and rule", "# H #\n---\ntext", "# H #\n---\ntext  \n"},
        {"open heading", "# H\ntext", "# H  \ntext  \n"},
        {"setext underline", "Title\n===", "Title  \n===\n"},
        {"already hard", "a  \nb", "a  \nb  \n"},
        {"arrow", "a <-\nb", "a <-\nb  \n"},
        {"class quotation", ">%note%\n> %x%", ">%note%\n> %x%\n"},
        {"fence", "```\ncode\n```\nx", "```\ncode\n```  \nx  \n"},
        {"tilde fence", "~~~\na\nb\n~~~", "~~~\na\nb\n~~~  \n"},
        {"short hyphens", "--", "--  \n"},
    };
    for (const TextCase &c : cases)
        EXPECT_EQ(tl_makeEveryNewlineaLinebreak(c.input), c.expected) << c.name;
}

TEST_F(Preparation, CommentLinesGoOnlyWhenAskedAndOutsideCode)
{
    const QString text = "a\n// note\nb\n```\n// kept\n```\n";
    EXPECT_EQ(tl_stringPreparedForConversionWith(text, 2), text);
    setSetting("ignoreCommentsForWordCount", true);
    EXPECT_EQ(tl_stringPreparedForConversionWith(text, 2), "a\nb\n```\n// kept\n```\n");
    EXPECT_EQ(tl_stringPreparedForConversionWith("a\r\n  // x\r\nb", 2), "a\r\nb");
}

TEST_F(Preparation, WithoutExtensionsOnlyLineBreaksOrNothing)
{
    setSetting("useMarkdownStrictly", false);
    EXPECT_EQ(tl_stringPreparedForConversionWith("plain\ntext", 1), "plain  \ntext  \n");
    setSetting("useMarkdownStrictly", true);
    EXPECT_EQ(tl_stringPreparedForConversionWith("plain\ntext", 1), "plain\ntext");
    EXPECT_EQ(tl_stringPreparedForConversionWith("- [ ]\ttask", 1), "- [ ]\ttask");
    EXPECT_EQ(tl_stringPreparedForConversionWith("- [ ]\ttask", 0), "- [ ] task");
}

} // namespace
