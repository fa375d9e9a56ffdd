#include "cli_support.h"
#include "support/test_environment.h"

#include <QFileInfo>
#include <gtest/gtest.h>

namespace {

class DuplicateAsCommand : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        ASSERT_EQ(tltest::runTavelle(home, {"init", library}).exitCode, 0);
    }
};

TEST_F(DuplicateAsCommand, MarkdownBecomesAFormattedDocumentThroughTheConverter)
{
    ASSERT_TRUE(tltest::writeFile(library + "/Report.md", "# Report\n\n- [x] done\n"));
    const auto r = run({"dup", library + "/Report.md", "--as", "html"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QString html = QString::fromUtf8(tltest::readFile(library + "/Report.html"));
    EXPECT_TRUE(html.contains("<!-- Generator: Tavelle "));
    EXPECT_TRUE(html.contains("<h1"));
    EXPECT_TRUE(html.contains("tl_checkbox_done"));
    // The source stays as it was.
    EXPECT_EQ(tltest::readFile(library + "/Report.md"), "# Report\n\n- [x] done\n");
}

TEST_F(DuplicateAsCommand, FormattedDocumentBecomesMarkdownAndPlainText)
{
    const QByteArray page = "<html><head><title>Page</title></head><body><h2>Plan</h2>"
                            "<p>Go <b>now</b>.</p><ol><li>one</li><li>two</li></ol></body></html>";
    ASSERT_TRUE(tltest::writeFile(library + "/Page.html", page));
    const auto md = run({"dup", library + "/Page.html", "--as", "md"});
    ASSERT_EQ(md.exitCode, 0) << md.err.toStdString();
    EXPECT_EQ(tltest::readFile(library + "/Page.md"),
              "## Plan\n\nGo **now**.\n\n 1.\tone\n 2.\ttwo");

    // A document that carries its Markdown source gives that source.
    ASSERT_TRUE(
        tltest::writeFile(library + "/Source.html",
                          "<!-- Plain Text Representation:\n# Source *text* \n-->\n\n" + page));
    const auto txt = run({"dup", library + "/Source.html", "--as", "txt"});
    ASSERT_EQ(txt.exitCode, 0) << txt.err.toStdString();
    EXPECT_EQ(tltest::readFile(library + "/Source.txt"), "# Source *text* \n");
    const auto fromSource = run({"dup", library + "/Source.html", "--as", "md"});
    ASSERT_EQ(fromSource.exitCode, 0) << fromSource.err.toStdString();
    EXPECT_EQ(tltest::readFile(library + "/Source.md"), "# Source *text* \n");
    EXPECT_EQ(tltest::readFile(library + "/Page.html"), page);
}

} // namespace
