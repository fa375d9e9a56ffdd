#include "store/task_records.h"
#include "task_fixture.h"
#include "tasks/task_list.h"

#include <QFileInfo>

namespace tl::tasks {
namespace {

using tltest::TaskListTest;

const QDateTime kPast = QDateTime(QDate(2024, 3, 1), QTime(9, 0), Qt::UTC);
const QDateTime kFuture = QDateTime(QDate(2024, 4, 1), QTime(9, 0), Qt::UTC);

TEST_F(TaskListTest, EachStateStepsOnceWithItsCountersAndIcon)
{
    const struct
    {
        const char *state; // "" for a record without a state
        std::optional<QDateTime> due;
        const char *done, *overdue; // counters before
        const char *newState;       // "" when the key is removed
        const char *icon;
        const char *doneAfter, *overdueAfter;
    } cases[] = {
        {"", kPast, "0", "1", "started", "task-started-due", "0", "1"},
        {"", kFuture, "0", "0", "started", "task-started", "0", "0"},
        {"open", std::nullopt, "0", "0", "started", "task-started", "0", "0"},
        {"no_task", std::nullopt, "1", "0", "started", "task-started", "1", "0"},
        {"started", kPast, "0", "1", "done", "task-done", "1", "0"},
        {"started", kPast, "0", "0", "done", "task-done", "1", "0"},
        {"started", kFuture, "2", "3", "done", "task-done", "3", "3"},
        {"done", kPast, "1", "0", "canceled", "task-canceled", "1", "0"},
        {"canceled", kPast, "1", "0", "", "task-open-due", "0", "1"},
        {"canceled", kFuture, "0", "0", "", "task-open", "0", "0"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.state) + " -> " + c.newState);
        QVariantMap record{{"Changed", kPast}};
        if (*c.state)
            record.insert("State", c.state);
        if (c.due)
            record.insert("DueDate", *c.due);
        writePlist(plist(), QVariantMap{{"Doc.md", record},
                                        {"__DoneItemCount__", c.done},
                                        {"__DueItemCount__", c.overdue}});
        const QString doc = task("Doc.md");
        const QDateTime when = now().addSecs(-5);
        EXPECT_EQ(tl_toggleTaskWithDate(doc, when), c.icon);
        const QVariantMap after = details();
        const QVariantMap stored = after.value("Doc.md").toMap();
        EXPECT_EQ(stored.value("State").toString(), c.newState);
        EXPECT_EQ(stored.contains("State"), *c.newState != 0);
        EXPECT_EQ(stored.value("Changed").toDateTime(), when);
        EXPECT_EQ(after.value("__DoneItemCount__"), c.doneAfter);
        EXPECT_EQ(after.value("__DueItemCount__"), c.overdueAfter);
        EXPECT_EQ(store::tl_iconForTask(doc), c.icon);
    }
}

TEST_F(TaskListTest, ADocumentWithoutARecordStartsAndLeavesTheCounters)
{
    const QString doc = task("Doc.md");
    EXPECT_EQ(store::tl_iconForTask(doc), "task-open");
    EXPECT_EQ(tl_toggleTask(doc), "task-started");
    const QVariantMap after = details();
    EXPECT_EQ(after.value("Doc.md").toMap(),
              (QVariantMap{{"State", "started"}, {"Changed", now()}}));
    EXPECT_FALSE(after.contains("__DoneItemCount__"));
    EXPECT_FALSE(after.contains("__DueItemCount__"));
}

TEST_F(TaskListTest, OutsideATaskListNothingIsStoredYetTheAnswerIsStarted)
{
    const QString doc = makeFile(inRoot("Plain/Doc.md"));
    EXPECT_EQ(tl_toggleTask(doc), "task-started");
    EXPECT_FALSE(QFileInfo::exists(inRoot("Plain/TLTasklistDetails.plist")));
    EXPECT_EQ(store::tl_iconForTask(doc), "");
}

TEST_F(TaskListTest, ARecordIsFoundUnderItsDecomposedName)
{
    const QString composed = QString::fromUtf8("Caf\u00e9.md");
    const QString decomposed = QString::fromUtf8("Cafe\u0301.md");
    writePlist(plist(), QVariantMap{{decomposed, QVariantMap{{"State", "started"}}}});
    const QString doc = task(composed);
    EXPECT_EQ(tl_toggleTask(doc), "task-done");
    EXPECT_EQ(record(decomposed).value("State"), "done");
    EXPECT_FALSE(details().contains(composed));
}

TEST_F(TaskListTest, AmongEquivalentKeysTheFirstInTheFileWins)
{
    const QString composed = QString::fromUtf8("Caf\u00e9.md");
    const QString decomposed = QString::fromUtf8("Cafe\u0301.md");
    // Written by another program: the composed key first.
    ASSERT_TRUE(tltest::writeFile(
        plist(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                 "<key>" +
                     composed.toUtf8() +
                     "</key><dict><key>State</key><string>done</string></dict>"
                     "<key>" +
                     decomposed.toUtf8() + "</key><dict/></dict></plist>\n"));
    const QString doc = task(decomposed);
    EXPECT_EQ(tl_toggleTask(doc), "task-canceled");
    EXPECT_EQ(record(composed).value("State"), "canceled");
    EXPECT_EQ(record(decomposed), QVariantMap());
}

TEST_F(TaskListTest, ExclusionDropsTheRecordAndReadmissionLeavesItEmpty)
{
    const QString doc = task("Doc.md");
    writePlist(plist(), QVariantMap{{"Doc.md", QVariantMap{{"State", "started"},
                                                           {"DueDate", kPast},
                                                           {"RepeatType", "when due"}}}});
    tl_toggleItemIsTask(doc);
    EXPECT_EQ(record("Doc.md"), (QVariantMap{{"State", "no_task"}, {"Changed", now()}}));
    EXPECT_FALSE(store::tl_itemIsTask(doc));
    EXPECT_EQ(details().value("__DoneItemCount__"), "1");
    EXPECT_EQ(details().value("__DueItemCount__"), "0");

    tl_toggleItemIsTask(doc);
    EXPECT_EQ(record("Doc.md"), (QVariantMap{{"Changed", now()}}));
    EXPECT_EQ(store::tl_iconForTask(doc), "task-open");
    EXPECT_EQ(details().value("__DoneItemCount__"), "0");

    const QString fresh = task("Fresh.md");
    tl_toggleItemIsTask(fresh);
    EXPECT_EQ(record("Fresh.md").value("State"), "no_task");
}

TEST_F(TaskListTest, RecountDropsOrphansOnlyWithCleanupButRewritesEitherWay)
{
    task("Kept.md");
    task("Done.md");
    for (const bool cleanup : {false, true}) {
        SCOPED_TRACE(cleanup);
        writePlist(plist(), QVariantMap{{"Kept.md", QVariantMap{{"DueDate", kPast}}},
                                        {"Done.md", QVariantMap{{"State", "no_task"}}},
                                        {"Gone.md", QVariantMap{{"State", "done"}}},
                                        {"__DoneItemCount__", "1"},
                                        {"__DueItemCount__", "1"}});
        EXPECT_EQ(tl_correctTaskCountAtPathWithCleanup(book_, cleanup), 1);
        EXPECT_EQ(details().contains("Gone.md"), !cleanup);
        EXPECT_EQ(details().value("__DoneItemCount__"), "1");
        EXPECT_EQ(details().value("__DueItemCount__"), "1");
    }
}

TEST_F(TaskListTest, ARecountThatFindsTheCountersRightWritesNothing)
{
    task("Kept.md");
    writePlist(plist(), QVariantMap{{"Kept.md", QVariantMap{{"DueDate", kFuture}}},
                                    {"__DoneItemCount__", "0"},
                                    {"__DueItemCount__", "0"}});
    const QByteArray before = tltest::readFile(plist());
    clock_->advance(40 * 86400.0);
    EXPECT_EQ(tl_correctTaskCountAtPath(book_), 1);
    EXPECT_NE(tltest::readFile(plist()), before);
    const QByteArray counted = tltest::readFile(plist());
    EXPECT_EQ(tl_correctTaskCountAtPath(book_), 1);
    EXPECT_EQ(tltest::readFile(plist()), counted);
}

TEST_F(TaskListTest, SwitchingOffParksTheDetailsAndSwitchingOnBringsThemBack)
{
    writePlist(plist(), QVariantMap{{"Doc.md", QVariantMap{{"State", "done"}}}});
    tl_toggleTasklistKeepingDetails(book_, true);
    EXPECT_FALSE(QFileInfo::exists(plist()));
    EXPECT_TRUE(QFileInfo::exists(book_ + "/TLTasklistDetails_inactive.plist"));
    tl_toggleTasklistKeepingDetails(book_, true);
    EXPECT_EQ(record("Doc.md").value("State"), "done");

    const QString other = makeFolder(inRoot("Other"));
    tl_toggleTasklistKeepingDetails(other, true);
    EXPECT_EQ(readPlist(other + "/TLTasklistDetails.plist"), QVariantMap());
}

TEST_F(TaskListTest, ResetClearsEveryRecord)
{
    writePlist(plist(),
               QVariantMap{{"Doc.md", QVariantMap{{"State", "done"}}}, {"__DoneItemCount__", "1"}});
    tl_resetTasklist(book_);
    EXPECT_EQ(details(), QVariantMap());
}

TEST_F(TaskListTest, AMovedTaskTakesItsRecordIntoATaskListOnly)
{
    const QString doc = task("Doc.md");
    const QString other = makeFolder(inRoot("Other"));
    writePlist(other + "/TLTasklistDetails.plist", QVariantMap());
    writePlist(plist(), QVariantMap{{"Doc.md", QVariantMap{{"State", "started"}}}});
    tl_moveTaskToPath(doc, other + "/Moved.md");
    EXPECT_FALSE(details().contains("Doc.md"));
    EXPECT_EQ(readPlist(other + "/TLTasklistDetails.plist").value("Moved.md").toMap(),
              (QVariantMap{{"State", "started"}}));

    tl_moveTaskToPath(other + "/Moved.md", inRoot("Plain/Moved.md"));
    EXPECT_FALSE(QFileInfo::exists(inRoot("Plain/TLTasklistDetails.plist")));
    EXPECT_FALSE(readPlist(other + "/TLTasklistDetails.plist").contains("Moved.md"));
}

TEST_F(TaskListTest, ACopyTakesItsSourcesRecordAlong)
{
    const QString doc = task("Doc.md");
    writePlist(plist(), QVariantMap{{"Doc.md", QVariantMap{{"State", "done"}}}});
    tl_copyTaskDetailsToPath(doc, book_ + "/Doc 1.md");
    EXPECT_EQ(record("Doc 1.md"), (QVariantMap{{"State", "done"}}));
    EXPECT_EQ(record("Doc.md"), (QVariantMap{{"State", "done"}}));
}

} // namespace
} // namespace tl::tasks
