#include "task_fixture.h"
#include "tasks/due_dates.h"
#include "tasks/due_tasks.h"
#include "tasks/task_lists.h"

namespace tl::tasks {
namespace {

using tltest::TaskListTest;

TEST(DueTasksHorizon, LookAheadTable)
{
    // 10:20:30 on a UTC clock: 13 hours, 39 minutes and 29 seconds to the end of the day.
    const QDateTime now(QDate(2024, 3, 5), QTime(10, 20, 30), Qt::UTC);
    const QDateTime endOfToday(QDate(2024, 3, 5), QTime(23, 59, 59), Qt::UTC);
    const struct
    {
        qint64 lookAhead;
        QDateTime horizon;
    } cases[] = {
        {0, now},
        {1, endOfToday},
        {2, endOfToday.addDays(1)},
        {3, endOfToday.addDays(3)},
        {4, endOfToday.addDays(5)},
        {5, endOfToday.addDays(7)},
        {6, endOfToday.addDays(6)},
        {10, endOfToday.addDays(10)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.lookAhead);
        EXPECT_EQ(dueTasksHorizon(c.lookAhead, now), c.horizon);
    }
}

TEST_F(TaskListTest, DueListShowsOverdueTasksAndThoseWithinTheHorizon)
{
    const QDateTime soon = now().addSecs(3 * 3600);
    const QDateTime later = now().addDays(1);
    for (const char *name : {"Late.md", "Soon.md", "Later.md", "Finished.md", "Undated.md"})
        task(name);
    writePlist(plist(), QVariantMap{{"Late.md", QVariantMap{{"DueDate", now().addDays(-1)}}},
                                    {"Soon.md", QVariantMap{{"DueDate", soon}}},
                                    {"Later.md", QVariantMap{{"DueDate", later}}},
                                    {"Finished.md", QVariantMap{{"DueDate", now().addDays(-3)},
                                                                {"State", "done"}}},
                                    {"Gone.md", QVariantMap{{"DueDate", now().addDays(-3)}}},
                                    {"Undated.md", QVariantMap{{"State", "started"}}}});
    setSetting("allTaskLists", QStringList{"/Tasks"});
    const struct
    {
        int lookAhead;
        QStringList titles;
    } cases[] = {
        {0, {"Late.md"}},
        {1, {"Late.md", "Soon.md"}},
        {2, {"Late.md", "Later.md", "Soon.md"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.lookAhead);
        setSetting("dueTasksLookAhead", c.lookAhead);
        const DueTasks due = tl_arrayOfDueTasks();
        QStringList titles;
        for (const auto &row : due.rows)
            titles << row.title;
        titles.sort();
        EXPECT_EQ(titles, c.titles);
        EXPECT_EQ(due.overdue, 1);
        EXPECT_EQ(details().value("__DueItemCount__"), "1");
    }
}

TEST_F(TaskListTest, SettingADueDateFloorsToTheMinuteAndCounts)
{
    const QString doc = task("Doc.md");
    tl_setDueDate(doc, QDateTime(QDate(2024, 3, 4), QTime(10, 15, 42), Qt::UTC));
    EXPECT_EQ(record("Doc.md").value("DueDate").toDateTime(),
              QDateTime(QDate(2024, 3, 4), QTime(10, 15), Qt::UTC));
    EXPECT_EQ(details().value("__DueItemCount__"), "1");
    tl_setDueDate(doc, now().addDays(1));
    EXPECT_EQ(details().value("__DueItemCount__"), "0");
    EXPECT_EQ(tl_dueDateForTask(doc), now().addDays(1));
}

TEST_F(TaskListTest, ClearingADueDateTakesTheRepeatWithIt)
{
    const QString doc = task("Doc.md");
    writePlist(plist(), QVariantMap{{"Doc.md", QVariantMap{{"DueDate", now().addDays(-1)},
                                                           {"RepeatType", "when due"},
                                                           {"RepeatUnit", "week"},
                                                           {"RepeatFactor", "1"}}},
                                    {"__DueItemCount__", "1"}});
    EXPECT_EQ(tl_repeatDetails(doc), QStringList({"when due", "week", "1"}));
    tl_clearDueDate(doc);
    EXPECT_EQ(record("Doc.md"), (QVariantMap{{"Changed", now()}}));
    EXPECT_EQ(details().value("__DueItemCount__"), "0");
    EXPECT_FALSE(tl_repeatDetails(doc));
    EXPECT_EQ(tl_dueDateForTask(doc), distantFuture());
}

TEST_F(TaskListTest, RepeatDetailsAreSetAndRemoved)
{
    const QString doc = task("Doc.md");
    tl_setRepeatDetails(doc, {"when done", "day", "3"});
    EXPECT_EQ(
        record("Doc.md"),
        (QVariantMap{{"RepeatType", "when done"}, {"RepeatUnit", "day"}, {"RepeatFactor", "3"}}));
    tl_setRepeatDetails(doc, {});
    EXPECT_EQ(record("Doc.md"), QVariantMap());
}

TEST(DueDateAlertTime, OneMinutePastMidnightMeansNoAlertTime)
{
    EXPECT_FALSE(tl_dueDateHasAlertTime(dateWithoutAlertTime(QDate(2024, 3, 5))));
    EXPECT_EQ(dateWithoutAlertTime(QDate(2024, 3, 5)),
              QDateTime(QDate(2024, 3, 5), QTime(0, 1), Qt::UTC));
    EXPECT_TRUE(tl_dueDateHasAlertTime(QDateTime(QDate(2024, 3, 5), QTime(0, 0), Qt::UTC)));
    EXPECT_FALSE(tl_dueDateHasAlertTime(distantPast()));
    EXPECT_FALSE(tl_dueDateHasAlertTime(distantFuture()));
}

} // namespace
} // namespace tl::tasks
