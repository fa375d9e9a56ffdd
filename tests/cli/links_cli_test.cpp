#include "cli_support.h"
#include "support/test_environment.h"

#include <QDir>
#include <gtest/gtest.h>

namespace {

using tltest::CommandResult;

class LinksCommand : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!tltest::tavelleAvailable())
            GTEST_SKIP() << "TAVELLE_CLI is not set";
        home = tltest::makeTemporaryFolder("links");
        library = home + "/Library";
        tltest::writeFile(library + "/A/x.md", "![](TLImages/p.png)");
        tltest::writeFile(library + "/A/TLImages/p.png", "png");
        tltest::writeFile(library + "/B/z.md", "[x](../A/x.md) [[Missing]]");
        ASSERT_EQ(run({"settings", "set", "manageLinks", "--type", "bool", "true"}).exitCode, 0);
    }
    CommandResult run(QStringList args)
    {
        args.prepend(library);
        args.prepend("--library");
        return tltest::runTavelle(home, args);
    }
    QString home;
    QString library;
};

TEST_F(LinksCommand, ListsRefreshesAndFollowsAMoveBeforeExiting)
{
    EXPECT_EQ(run({"links", library + "/B/z.md"}).out, "../A/x.md {4, 9}\nMissing {17, 7}\n");
    EXPECT_EQ(run({"links", "--verified", library + "/B/z.md"}).out, "/A/x.md\n");
    EXPECT_EQ(run({"links", "refresh"}).out, "Found 2 Links in 2 Documents\n");
    EXPECT_EQ(run({"backlinks", library + "/A/x.md"}).out, "/B/z.md\n");

    ASSERT_EQ(run({"mv", library + "/A/x.md", library + "/B"}).exitCode, 0);
    EXPECT_EQ(tltest::readFile(library + "/B/z.md"), "[x](x.md) [[Missing]]");
    EXPECT_EQ(tltest::readFile(library + "/B/x.md"), "![](TLImages/p.png)");
    EXPECT_EQ(run({"attachments", "list", library + "/B/x.md"}).out, "TLImages/p.png\n");
    EXPECT_EQ(run({"links", "check"}).out, "No Broken Backlinks\n");
}

TEST_F(LinksCommand, ResolveAndCleanReportOrFail)
{
    EXPECT_EQ(run({"links", "resolve", library + "/B/z.md", "../A/x"}).out, library + "/A/x.md\n");
    const CommandResult missing = run({"links", "resolve", library + "/B/z.md", "Missing"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.err, "Not found: Missing\n");
    tltest::writeFile(library + "/A/TLImages/unused.png", "png");
    ASSERT_EQ(run({"settings", "set", "cleanUpAttachments", "--type", "bool", "true"}).exitCode, 0);
    EXPECT_EQ(run({"attachments", "clean", library + "/A", "--dry-run"}).out, "unused.png\n");
}

} // namespace
