#include "cli_support.h"
#include "support/test_environment.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

using tltest::runTavelle;

class ConvertCommand : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        document = home + "/Notes/Trip.md";
        ASSERT_TRUE(tltest::writeFile(document, "# Trip\n\n- [ ] pack\n\n{{pagebreak}}\n"));
    }
    QString document;
};

TEST_F(ConvertCommand, RenderWritesAStandalonePageOrItsBody)
{
    const auto page = runTavelle(home, {"render", document});
    ASSERT_EQ(page.exitCode, 0) << page.err.toStdString();
    EXPECT_TRUE(page.out.startsWith("<!DOCTYPE html>\n"));
    EXPECT_TRUE(page.out.contains("<!-- Generator: Tavelle for Mac "));
    EXPECT_TRUE(page.out.contains("<title>Trip</title>"));

    const auto body = runTavelle(home, {"render", document, "--body"});
    EXPECT_TRUE(body.out.startsWith("<h1 id=\"Trip\">Trip</h1>")) << body.out.toStdString();
    EXPECT_TRUE(body.out.contains("<li class=\"tl_checkbox\">pack</li>"));
    EXPECT_TRUE(body.out.contains("<div class=\"pagebreak\"></div>"));

    const QString file = home + "/out.html";
    EXPECT_EQ(runTavelle(home, {"render", document, "-o", file}).exitCode, 0);
    EXPECT_EQ(tltest::readFile(file), page.out.chopped(1).toUtf8());
}

TEST_F(ConvertCommand, RenderReadsStandardInputWithEitherConverter)
{
    const auto zero =
        runTavelle(home, {"render", "-", "--body", "--converter", "0"}, "# My Title\n");
    EXPECT_EQ(zero.out, "<h1 id=\"My-Title\">My Title</h1>\n");
    const auto one =
        runTavelle(home, {"render", "-", "--body", "--converter", "1"}, "# My Title\n");
    EXPECT_EQ(one.out, "<h1 id=\"mytitle\">My Title</h1>\n");
}

TEST_F(ConvertCommand, PrepareShowsThePassAlone)
{
    const auto r = runTavelle(home, {"md", "prepare", "-", "--converter", "1"}, "{{TOC:2-}}");
    EXPECT_EQ(r.out, "{{TOC:2-9}}  \n\n");
    EXPECT_EQ(runTavelle(home, {"md", "nonsense", "-"}).exitCode, 2);
}

TEST_F(ConvertCommand, CssPrintsTheSheetWithItsVariablesFilled)
{
    const auto r = runTavelle(home, {"css", document});
    ASSERT_EQ(r.exitCode, 0);
    EXPECT_TRUE(r.out.startsWith("<style"));
    EXPECT_FALSE(r.out.contains("**Tavelle"));
    EXPECT_TRUE(r.out.contains("font-size: 14px"));
}

TEST_F(ConvertCommand, AMissingDocumentFails)
{
    const auto r = runTavelle(home, {"render", home + "/none.md"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.out.isEmpty());
}

TEST_F(ConvertCommand, LatexOfADocumentOrOfStandardInput)
{
    const auto latex = runTavelle(home, {"latex", document});
    ASSERT_EQ(latex.exitCode, 0) << latex.err.toStdString();
    EXPECT_TRUE(latex.out.startsWith("\\documentclass["));
    EXPECT_TRUE(latex.out.contains("\\title{Trip}"));
    EXPECT_TRUE(latex.out.contains("\\newpage"));

    const QString file = home + "/out.tex";
    EXPECT_EQ(runTavelle(home, {"latex", "-", "-o", file}, "50% *off*\n").exitCode, 0);
    const QString written = QString::fromUtf8(tltest::readFile(file));
    EXPECT_TRUE(written.contains("\\title{Untitled Document}"));
    EXPECT_TRUE(written.contains("50\\% \\emph{off}")) << written.toStdString();
    EXPECT_EQ(runTavelle(home, {"latex", home + "/Missing.md"}).exitCode, 1);
}

TEST_F(ConvertCommand, PreviewLeavesOutTheTitleAndTheMarks)
{
    ASSERT_TRUE(tltest::writeFile(home + "/Notes/Plan.md", "Plan\n\nGo **now**, _then_ rest.\n"));
    const auto preview = runTavelle(home, {"preview", home + "/Notes/Plan.md"});
    ASSERT_EQ(preview.exitCode, 0) << preview.err.toStdString();
    EXPECT_EQ(preview.out, "Go now, then rest.\n");
}

} // namespace
