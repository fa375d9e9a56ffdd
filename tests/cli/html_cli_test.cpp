#include "cli_support.h"
#include "support/test_environment.h"

#include <gtest/gtest.h>

namespace {

using tltest::runTavelle;

class HtmlCommand : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        document = home + "/Notes/Page.html";
        ASSERT_TRUE(tltest::writeFile(
            document, "<!DOCTYPE html>\n<html>\n<head>\n<title>Page</title>\n</head>\n<body>\n"
                      "<h1>Page</h1>\n<p>Some <b>strong</b> and <i>weak</i> text&hellip;</p>\n"
                      "<ul>\n<li class=\"tl_checkbox\">task</li>\n</ul>\n</body>\n</html>\n"));
    }
    QString document;
};

TEST_F(HtmlCommand, MarkdownOfADocumentOrOfStandardInput)
{
    const auto r = runTavelle(home, {"html2md", document});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, "# Page\n\nSome **strong** and *weak* text...\n\n- [ ]\ttask\n");
    const auto in = runTavelle(home, {"html2md", "-"}, "<p>a <em>b</em></p>");
    EXPECT_EQ(in.out, "a *b*\n");
}

TEST_F(HtmlCommand, UnderscoreForOneRun)
{
    EXPECT_EQ(runTavelle(home, {"html2md", "--underscore", "-"}, "<b>a</b> <i>b</i>").out,
              "__a__ _b_\n");
    EXPECT_EQ(runTavelle(home, {"html2md", "-"}, "<b>a</b> <i>b</i>").out, "**a** *b*\n");
}

TEST_F(HtmlCommand, WithoutStyles)
{
    const auto r =
        runTavelle(home, {"html2md", "--no-styles", "-"},
                   "<p style=\"color: red;\">a</p><p style=\"text-align: right;\">b</p>");
    EXPECT_EQ(r.out, "<p>a</p>\n\n<p style=\"text-align: right;\">b</p>\n");
}

TEST_F(HtmlCommand, PlainTextAndTheQuickText)
{
    EXPECT_EQ(runTavelle(home, {"html2text", document}).out,
              "Page\nSome strong and weak text\u2026\n\ntask\n");
    EXPECT_EQ(runTavelle(home, {"html2text", "--quick", document}).out,
              "Page\nSome strong and weak text...\n\ntask\n");
    const auto source =
        runTavelle(home, {"html2text", "-"},
                   "<!-- Plain Text Representation:\n# Title \\-\\-\\> x \n-->\n\n<html></html>");
    EXPECT_EQ(source.out, "# Title --> x\n");
}

TEST_F(HtmlCommand, FailuresAreOneLine)
{
    const auto missing = runTavelle(home, {"html2md", home + "/missing.html"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.err.count('\n'), 1);
    EXPECT_EQ(runTavelle(home, {"html2text"}).exitCode, 2);
    const auto help = runTavelle(home, {"html2md", "--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains("--underscore") && help.out.contains("--no-styles"));
}

} // namespace
