#include "cli_support.h"
#include "support/test_environment.h"

#include <QDir>
#include <gtest/gtest.h>

namespace {

using tltest::CommandResult;

class ContextsCommand : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        QDir().mkpath(library + "/Book");
        tltest::writeFile(library + "/Book/Note.md", "call @Bob, about #plan.\n");
        tltest::writeFile(library + "/Other.txt", "nothing\n");
    }
};

TEST_F(ContextsCommand, AssignsListsRenamesIntoTheTextAndKeepsFavorites)
{
    const QString note = library + "/Book/Note.md";
    EXPECT_EQ(run({"tags", "extract", note}).out, "#plan\n@Bob\n");
    EXPECT_EQ(run({"tags", "extract", "-"}, "a @x; b").out, "@x\n");
    ASSERT_EQ(run({"tags", "add", note, "@Bob"}).exitCode, 0);
    ASSERT_EQ(run({"tags", "add", library + "/Book", "@Bob"}).exitCode, 0);
    ASSERT_EQ(run({"tags", "add", library + "/Other.txt", "home"}).exitCode, 0);
    EXPECT_EQ(run({"tags", "list", "--counts"}).out, "@Bob\t2\nhome\t1\n");
    EXPECT_EQ(run({"tags", "items", "@Bob"}).out, note + "\n" + library + "/Book\n");
    EXPECT_EQ(run({"tags", "rename", "@Bob", "@Robert", "--in-text"}).out, "1\n");
    EXPECT_EQ(tltest::readFile(note), "call @Robert, about #plan.\n");
    EXPECT_EQ(run({"tags", "of", note}).out, "@Robert\n");
    ASSERT_EQ(run({"tags", "rm", library + "/Other.txt", "home"}).exitCode, 0);
    EXPECT_EQ(run({"tags", "items", "home"}).out, "");

    EXPECT_EQ(run({"fav", "toggle", note}).out, "true\n");
    EXPECT_EQ(run({"fav", "list"}).out, note + "\n");
    EXPECT_EQ(run({"tags", "list"}).out, "@Robert\nhome\n");
}

TEST_F(ContextsCommand, ErrorsAreOneLine)
{
    for (const QStringList &args :
         {QStringList{"tags", "nonsense"}, QStringList{"tags", "add", "/etc/passwd", "x"},
          QStringList{"fav", "toggle"}}) {
        const CommandResult r = run(args);
        EXPECT_NE(r.exitCode, 0) << args.join(' ').toStdString();
        EXPECT_EQ(r.err.count('\n'), 1) << r.err.toStdString();
    }
}

} // namespace
