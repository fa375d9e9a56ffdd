#include "cli_support.h"
#include "support/test_environment.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace {

using tltest::CommandResult;

class TasksCommand : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        QDir().mkpath(library + "/Todo");
        tltest::writeFile(library + "/Todo/Milk.md", "Buy milk\n");
    }
    QString todo(const QString &name) const { return library + "/Todo/" + name; }
};

TEST_F(TasksCommand, ABookBecomesATaskListAndItsDocumentsStepThroughTheCycle)
{
    EXPECT_EQ(run({"tasks", "toggle", todo("Milk.md")}).exitCode, 1);
    ASSERT_EQ(run({"tasks", "enable", library + "/Todo"}).exitCode, 0);
    EXPECT_TRUE(QFileInfo::exists(todo("TLTasklistDetails.plist")));
    QStringList states;
    for (int i = 0; i < 4; ++i)
        states << run({"tasks", "toggle", todo("Milk.md")}).out.trimmed();
    EXPECT_EQ(states, QStringList({"started", "done", "canceled", "open"}));
    EXPECT_EQ(run({"tasks", "exclude", todo("Milk.md")}).out, "no_task\n");
    EXPECT_EQ(run({"tasks", "lists"}).out, library + "/Todo\n");

    ASSERT_EQ(run({"tasks", "disable", library + "/Todo"}).exitCode, 0);
    EXPECT_TRUE(QFileInfo::exists(todo("TLTasklistDetails_inactive.plist")));
}

TEST_F(TasksCommand, DueDatesAndRepeats)
{
    ASSERT_EQ(run({"tasks", "enable", library + "/Todo"}).exitCode, 0);
    ASSERT_EQ(run({"tasks", "due", todo("Milk.md"), "2001-02-03T04:05:59Z"}).exitCode, 0);
    CommandResult r = run({"--json", "tasks", "show", todo("Milk.md")});
    EXPECT_TRUE(r.out.contains("\"DueDate\":\"2001-02-03T04:05:00Z\"")) << r.out.toStdString();
    EXPECT_TRUE(r.out.contains("\"icon\":\"task-open-due\"")) << r.out.toStdString();
    EXPECT_EQ(run({"tasks", "list", "--lookahead", "0"}).out.section('\t', 0, 0), todo("Milk.md"));

    EXPECT_EQ(run({"tasks", "repeat", todo("Milk.md"), "when due", "week", "2"}).out,
              "Every 2 weeks\n");
    EXPECT_EQ(run({"tasks", "repeat", todo("Milk.md"), "when due", "fortnight", "2"}).exitCode, 2);
    ASSERT_EQ(run({"tasks", "due", todo("Milk.md"), "--clear"}).exitCode, 0);
    r = run({"--json", "tasks", "show", todo("Milk.md")});
    EXPECT_FALSE(r.out.contains("Repeat")) << r.out.toStdString();
    EXPECT_EQ(run({"tasks", "recount", library + "/Todo"}).out, "0\n");
}

TEST_F(TasksCommand, FinishingARepeatingTaskLeavesAFinishedCopy)
{
    ASSERT_EQ(run({"tasks", "enable", library + "/Todo"}).exitCode, 0);
    ASSERT_EQ(run({"tasks", "due", todo("Milk.md"), "2001-02-03T04:05:00Z"}).exitCode, 0);
    ASSERT_EQ(run({"tasks", "repeat", todo("Milk.md"), "when due", "day", "1"}).exitCode, 0);
    EXPECT_EQ(run({"tasks", "toggle", todo("Milk.md")}).out, "started\n");
    EXPECT_EQ(run({"tasks", "toggle", todo("Milk.md")}).out, "done\n");
    EXPECT_EQ(run({"tasks", "show", todo("Milk.md")}).out.count("State"), 0);
    EXPECT_EQ(QDir(library + "/Todo").entryList({"Milk - *.md"}).size(), 1);
}

TEST_F(TasksCommand, RefusesPathsOutsideTheLibraryInOneLine)
{
    tltest::writeFile(home + "/Outside.md", "x");
    const CommandResult r = run({"tasks", "toggle", home + "/Outside.md"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.err.count('\n'), 1);
    EXPECT_EQ(run({"tasks", "nothing"}).exitCode, 2);
}

} // namespace

TEST_F(TasksCommand, MarkedLinesBecomeTasksAndCheckboxesToggle)
{
    tltest::writeFile(library + "/Plan.md", "Plan\n- [ ] Paint\n- [ ] Paint\n");
    EXPECT_EQ(run({"tasks", "extract", library + "/Plan.md"}).exitCode, 1);
    ASSERT_EQ(run({"settings", "set", "--", "markTaskWithCharacter", "- [ ]"}).exitCode, 0);
    EXPECT_EQ(run({"tasks", "extract", library + "/Plan.md", "--new-book"}).out,
              library + "/Plan/Paint.txt\n");
    EXPECT_EQ(run({"tasks", "extract", library + "/Plan.md", "--mode", "5"}).exitCode, 2);

    EXPECT_EQ(run({"tasks", "checkbox", library + "/Plan.md", "Paint", "1"}).exitCode, 0);
    EXPECT_EQ(tltest::readFile(library + "/Plan.md"), "Plan\n- [ ] Paint\n- [x] Paint\n");
    EXPECT_EQ(run({"tasks", "checkbox", library + "/Plan.md", "Sand", "0"}).exitCode, 1);
}
