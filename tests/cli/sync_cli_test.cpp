#include "cli_support.h"
#include "support/test_environment.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace {

using tltest::CommandResult;

class ConflictsCommand : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        QDir().mkpath(library + "/.stfolder");
        tltest::writeFile(library + "/Note.md", "mine");
        tltest::writeFile(library + "/Note.sync-conflict-20240302-090000-ABCD123.md", "theirs");
    }
};

TEST_F(ConflictsCommand, ListsADocumentAndKeepsTheVersionChosen)
{
    EXPECT_EQ(run({"conflicts"}).out, "choice\t" + library + "/Note.md\n");
    EXPECT_EQ(run({"conflicts", "keep", library + "/Note.md", "conflict"}).exitCode, 0);
    EXPECT_EQ(tltest::readFile(library + "/Note.md"), "theirs");
    EXPECT_EQ(run({"conflicts"}).out, "");
    EXPECT_EQ(run({"conflicts", "keep", library + "/Note.md", "both"}).exitCode, 1);
    EXPECT_EQ(run({"conflicts", "keep", library + "/Note.md", "neither"}).exitCode, 2);
}

} // namespace
