#include "foundation/scheduler.h"
#include "task_fixture.h"
#include "tasks/due_date_picker.h"
#include "tasks/due_dates.h"
#include "tasks/task_list.h"

namespace tl::tasks {
namespace {

using tltest::TaskListTest;

QDateTime at(int day, int hour, int minute)
{
    return QDateTime(QDate(2024, 3, day), QTime(hour, minute), Qt::LocalTime).toUTC();
}

TEST_F(TaskListTest, PickerStartsAtMidnightUnlessTheDueDateHasAnAlertTime)
{
    task("None.md");
    task("DateOnly.md");
    task("Timed.md");
    writePlist(plist(), QVariantMap{{"DateOnly.md", QVariantMap{{"DueDate", at(9, 0, 1)}}},
                                    {"Timed.md", QVariantMap{{"DueDate", at(9, 14, 30)}}}});
    EXPECT_EQ(dueDatePickerStart(book_ + "/None.md"), at(5, 0, 0));
    EXPECT_EQ(dueDatePickerStart(book_ + "/DateOnly.md"), at(9, 0, 0));
    EXPECT_EQ(dueDatePickerStart(book_ + "/Timed.md"), at(9, 14, 30));
}

TEST(DueDatePicker, AMidnightLeftAsItIsStoresNoAlertTime)
{
    EXPECT_EQ(dueDateFromPicker(at(9, 0, 0)), at(9, 0, 1));
    EXPECT_EQ(dueDateFromPicker(at(9, 8, 0)), at(9, 8, 0));
    EXPECT_FALSE(tl_dueDateHasAlertTime(dueDateFromPicker(at(9, 0, 0))));
}

TEST(DueDatePicker, RepeatControlsComposeTheirDetails)
{
    RepeatControls controls = RepeatControls::fromDetails(std::nullopt);
    EXPECT_FALSE(controls.details);
    EXPECT_FALSE(controls.showsUnitAndFactor());
    // Leaving none with no factor starts at every 1 week, focus on the factor.
    EXPECT_TRUE(controls.selectType(1));
    EXPECT_EQ(controls.details, QStringList({"when due", "week", "1"}));
    EXPECT_EQ(controls.unitTitles().at(2), "week");
    controls.setFactor(3);
    controls.selectUnit(3);
    EXPECT_EQ(controls.details, QStringList({"when due", "month", "3"}));
    EXPECT_EQ(controls.unitTitles(), QStringList({"hours", "days", "weeks", "months", "years"}));
    EXPECT_FALSE(controls.selectType(2));
    EXPECT_EQ(controls.details, QStringList({"when done", "month", "3"}));
    EXPECT_FALSE(controls.selectType(0));
    EXPECT_EQ(controls.details, QStringList());

    const RepeatControls stored = RepeatControls::fromDetails(QStringList{"when done", "day", "2"});
    EXPECT_EQ(stored.type, 2);
    EXPECT_EQ(stored.unit, 1);
    EXPECT_EQ(stored.factor, 2);
}

TEST_F(TaskListTest, SetWritesTheRepeatAndThenTheDateClearTakesBoth)
{
    const QString item = task("Call.md");
    applyDueDateChoice(
        {item}, {DueDateChoice::Button::Set, at(9, 0, 0), QStringList{"when due", "week", "1"}});
    EXPECT_EQ(tl_repeatDetails(item), QStringList({"when due", "week", "1"}));
    EXPECT_FALSE(record("Call.md").contains("DueDate"));
    clock_->advance(0.3);
    Scheduler::main().runDue();
    EXPECT_EQ(record("Call.md").value("DueDate").toDateTime(), at(9, 0, 1));

    applyDueDateChoice({item}, {DueDateChoice::Button::Clear, {}, std::nullopt});
    clock_->advance(0.4);
    Scheduler::main().runDue();
    EXPECT_FALSE(record("Call.md").contains("DueDate"));
    EXPECT_FALSE(tl_repeatDetails(item));
}

} // namespace
} // namespace tl::tasks
