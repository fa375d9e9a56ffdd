#include "cli_support.h"
#include "support/test_environment.h"

#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

using tltest::runTavelle;

class PublishCommand : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        ASSERT_TRUE(tltest::writeFile(library + "/Book/One.md", "# One\n\nFirst."));
        ASSERT_TRUE(tltest::writeFile(library + "/Book/Two.md", "# Two\n\nSecond."));
    }
};

TEST_F(PublishCommand, CompilePrintsTheNewDocument)
{
    const auto result = run({"compile", library + "/Book", "--title", "Draft", "--base",
                             library + "/Book", "--format", "txt"});
    ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();
    EXPECT_EQ(result.out.trimmed(), library + "/Book/Draft.txt");
    EXPECT_EQ(tltest::readFile(library + "/Book/Draft.txt"),
              "# One\n\nFirst.\n\n\n# Two\n\nSecond.\n\n\n");
}

TEST_F(PublishCommand, CompileRefusesWhatCannotBeCompiled)
{
    ASSERT_TRUE(tltest::writeFile(library + "/Book/clip.mov", "movie"));
    const auto result = run({"compile", library + "/Book/clip.mov"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(result.err.startsWith("Selection does not contain any documents"));
    EXPECT_EQ(run({"compile", library + "/Book", "--format", "rtf"}).exitCode, 2);
}

TEST_F(PublishCommand, EPubGoesWhereAsked)
{
    const QString file = home + "/book.epub";
    const auto result =
        run({"epub", library + "/Book", "--title", "Tale", "--author", "Ann", "-o", file});
    ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();
    EXPECT_EQ(result.out.trimmed(), file);
    EXPECT_TRUE(tltest::readFile(file).startsWith("PK"));
    EXPECT_EQ(run({"epub", library + "/Book"}).exitCode, 2);
}

// The printed pages as the PDF tools count them.
TEST_F(PublishCommand, CompileAlsoPrintsAPDF)
{
    const auto result = run({"compile", library + "/Book", "--title", "Draft", "--format", "html",
                             "--pdf", home + "/PDF"});
    ASSERT_EQ(result.exitCode, 0) << result.err.toStdString();
    const QStringList lines = result.out.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(QFileInfo::exists(lines.first()));
    EXPECT_EQ(lines.last(), home + "/PDF/Draft.pdf");
    QProcess info;
    info.start("pdfinfo", {lines.last()});
    ASSERT_TRUE(info.waitForFinished(30000));
    const QString report = QString::fromUtf8(info.readAllStandardOutput());
    EXPECT_TRUE(report.contains("Pages:           1\n")) << report.toStdString();
    // The test locale is en_US, whose paper is Letter.
    EXPECT_TRUE(report.contains("(letter)")) << report.toStdString();
}

} // namespace
