#include "foundation/scheduler.h"
#include "task_fixture.h"
#include "tasks/calendar_steps.h"
#include "tasks/repeats.h"
#include "tasks/task_list.h"

#include <QDir>
#include <QFileInfo>
#include <cstdlib>
#include <ctime>

namespace tl::tasks {
namespace {

// Runs a test in New York's zone, with its daylight-saving changes.
class NewYorkTest : public tltest::TaskListTest
{
protected:
    void SetUp() override
    {
        setenv("TZ", "America/New_York", 1);
        tzset();
        TaskListTest::SetUp();
    }
    void TearDown() override
    {
        TaskListTest::TearDown();
        setenv("TZ", "UTC", 1);
        tzset();
    }
    static QDateTime local(int y, int m, int d, int h, int min)
    {
        return QDateTime(QDate(y, m, d), QTime(h, min), Qt::LocalTime).toUTC();
    }
};

TEST_F(NewYorkTest, StepsFollowTheLocalCalendar)
{
    const struct
    {
        const char *unit;
        qint64 factor;
        QDateTime from, now, expected;
    } cases[] = {
        // Daylight saving starts on 10 March 2024: days keep 9:00 local.
        {"day", 1, local(2024, 3, 9, 9, 0), local(2024, 3, 9, 12, 0), local(2024, 3, 10, 9, 0)},
        {"week", 1, local(2024, 3, 6, 9, 0), local(2024, 3, 12, 0, 0), local(2024, 3, 13, 9, 0)},
        // and ends on 3 November 2024.
        {"day", 2, local(2024, 11, 2, 8, 30), local(2024, 11, 3, 0, 0), local(2024, 11, 4, 8, 30)},
        // Hours are elapsed time across the change.
        {"hour", 1, local(2024, 3, 10, 1, 0), local(2024, 3, 10, 1, 30), local(2024, 3, 10, 3, 0)},
        {"hour", 3, local(2024, 3, 1, 10, 0), local(2024, 3, 1, 17, 0), local(2024, 3, 1, 19, 0)},
        // Months clamp and drift: the 31st becomes the 28th and stays there.
        {"month", 1, local(2023, 1, 31, 9, 0), local(2023, 2, 1, 0, 0), local(2023, 2, 28, 9, 0)},
        {"month", 1, local(2023, 1, 31, 9, 0), local(2023, 3, 1, 0, 0), local(2023, 3, 28, 9, 0)},
        {"month", 1, local(2023, 1, 31, 9, 0), local(2023, 4, 1, 0, 0), local(2023, 4, 28, 9, 0)},
        {"year", 1, local(2024, 2, 29, 9, 0), local(2024, 3, 1, 0, 0), local(2025, 2, 28, 9, 0)},
        // A long gap is crossed to the same point single steps reach.
        {"day", 1, local(1990, 6, 1, 7, 15), local(2024, 3, 5, 12, 0), local(2024, 3, 6, 7, 15)},
        {"month", 1, local(1990, 1, 31, 7, 15), local(2024, 3, 5, 12, 0),
         local(2024, 3, 28, 7, 15)},
        {"hour", 1, local(2000, 1, 1, 0, 20), local(2024, 3, 5, 12, 0), local(2024, 3, 5, 12, 20)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.unit) + " from " + c.from.toString(Qt::ISODate).toStdString());
        const auto next = firstStepAfter(c.from, RepeatStep::of(c.unit, c.factor), c.now);
        ASSERT_TRUE(next);
        EXPECT_EQ(next->toUTC(), c.expected);
    }
}

TEST_F(NewYorkTest, AnUnknownUnitNeverAdvances)
{
    EXPECT_FALSE(firstStepAfter(local(2020, 1, 1, 9, 0), RepeatStep::of("fortnight", 1),
                                local(2024, 1, 1, 9, 0)));
    EXPECT_FALSE(
        firstStepAfter(local(2020, 1, 1, 9, 0), RepeatStep::of("day", 0), local(2024, 1, 1, 9, 0)));
}

TEST_F(NewYorkTest, FinishingARepeatingTaskLeavesACopyAndReopensTheTask)
{
    clock_->setNow(local(2024, 3, 12, 15, 40));
    const struct
    {
        const char *type, *unit, *factor;
        QDateTime due, archivedDue, next;
    } cases[] = {
        // Counted from the old date, past the change of 10 March.
        {"when due", "week", "1", local(2024, 2, 27, 9, 0), local(2024, 2, 27, 9, 0),
         local(2024, 3, 19, 9, 0)},
        // Counted from today at the old time of day.
        {"when done", "day", "3", local(2024, 2, 27, 9, 0), local(2024, 3, 12, 9, 0),
         local(2024, 3, 15, 9, 0)},
        // Hours from now's hour and minute.
        {"when done", "hour", "1", local(2024, 2, 27, 9, 0), local(2024, 3, 12, 15, 40),
         local(2024, 3, 12, 16, 40)},
    };
    int n = 0;
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.type) + " " + c.unit);
        const QString name = QString("Task %1.md").arg(++n);
        const QString doc = task(name);
        makeFile(doc + ".plist", "<plist/>");
        QVariantMap details = readPlist(plist());
        details.insert(name, QVariantMap{{"State", "started"},
                                         {"DueDate", c.due},
                                         {"RepeatType", c.type},
                                         {"RepeatUnit", c.unit},
                                         {"RepeatFactor", c.factor}});
        writePlist(plist(), details);
        EXPECT_EQ(tl_toggleTask(doc), "task-done");
        Scheduler::main().cancel("tl_addRepeatingTask:" + doc);
        tl_addRepeatingTask(doc);

        const QVariantMap living = record(name);
        EXPECT_FALSE(living.contains("State"));
        EXPECT_EQ(living.value("DueDate").toDateTime(), c.next);
        EXPECT_EQ(living.value("RepeatType"), c.type);

        const QStringList copies = QDir(book_).entryList({QString("Task %1 - *.md").arg(n)});
        ASSERT_EQ(copies.size(), 1);
        EXPECT_TRUE(QFileInfo::exists(book_ + "/" + copies[0] + ".plist"));
        EXPECT_EQ(record(copies[0]),
                  (QVariantMap{
                      {"DueDate", c.archivedDue}, {"State", "done"}, {"Changed", clock_->now()}}));
    }
}

TEST_F(NewYorkTest, OnlyFinishingSchedulesTheRepeat)
{
    const QString doc = task("Doc.md");
    writePlist(plist(), QVariantMap{{"Doc.md", QVariantMap{{"State", "done"},
                                                           {"DueDate", local(2024, 3, 1, 9, 0)},
                                                           {"RepeatType", "when due"},
                                                           {"RepeatUnit", "day"},
                                                           {"RepeatFactor", "1"}}}});
    EXPECT_EQ(tl_toggleTask(doc), "task-canceled");
    clock_->advance(1);
    Scheduler::main().runDue();
    EXPECT_EQ(QDir(book_).entryList(QDir::Files).size(), 2); // the document and the plist

    writePlist(plist(), QVariantMap{{"Doc.md", QVariantMap{{"State", "started"},
                                                           {"DueDate", local(2024, 3, 1, 9, 0)},
                                                           {"RepeatType", "when due"},
                                                           {"RepeatUnit", "day"},
                                                           {"RepeatFactor", "1"}}}});
    EXPECT_EQ(tl_toggleTask(doc), "task-done");
    clock_->advance(0.2);
    Scheduler::main().runDue();
    EXPECT_EQ(record("Doc.md").value("State"), "done");
    clock_->advance(0.2);
    Scheduler::main().runDue();
    EXPECT_FALSE(record("Doc.md").contains("State"));
}

} // namespace
} // namespace tl::tasks
