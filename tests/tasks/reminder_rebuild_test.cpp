#include "task_fixture.h"
#include "tasks/reminder_agent.h"
#include "tasks/reminder_rebuild.h"

namespace tl::tasks {
namespace {

using tltest::TaskListTest;

class ReminderTest : public TaskListTest
{
protected:
    void SetUp() override
    {
        TaskListTest::SetUp();
        setSetting("allTaskLists", QStringList{"/Tasks"});
    }
    static QDateTime at(int hoursFromNow) { return now().addSecs(hoursFromNow * 3600); }
    // A task due then that repeats from its due date.
    static QVariantMap repeating(const QDateTime &due, const char *unit, const char *factor)
    {
        return {{"DueDate", due},
                {"RepeatType", "when due"},
                {"RepeatUnit", unit},
                {"RepeatFactor", factor}};
    }
};

TEST_F(ReminderTest, EachPendingDatedTaskGetsARowAndTheFutureOnesAReminder)
{
    const QDateTime dateOnly = QDateTime(QDate(2024, 3, 9), QTime(0, 1));
    const struct
    {
        const char *name;
        QVariantMap record;
        const char *fire; // ISO, empty for no row
        const char *counter, *interval;
        bool reminder, sound;
    } cases[] = {
        {"Past.md", {{"DueDate", at(-49)}}, "2024-03-03T11:00:00Z", "1", "0", false, false},
        {"Daily.md", repeating(at(-49), "day", "1"), "2024-03-06T11:00:00Z", "0", "16", false,
         false},
        {"Weekly.md", repeating(at(2), "week", "2"), "2024-03-05T14:00:00Z", "1", "0", true, true},
        {"Odd.md", repeating(at(-1), "fortnight", "1"), "2024-03-05T11:00:00Z", "0", "0", false,
         false},
        {"Quiet.md",
         {{"DueDate", dateOnly}, {"State", "started"}},
         "2024-03-09T00:01:00Z",
         "1",
         "0",
         true,
         false},
        {"Done.md", {{"DueDate", at(3)}, {"State", "done"}}, "", "", "", false, false},
        {"Excluded.md", {{"DueDate", at(3)}, {"State", "no_task"}}, "", "", "", false, false},
        {"Undated.md", {}, "", "", "", false, false},
        {"Gone.md", {{"DueDate", at(3)}}, "", "", "", false, false},
    };
    QVariantMap details;
    for (const auto &c : cases) {
        details.insert(c.name, c.record);
        if (QString(c.name) != "Gone.md")
            task(c.name);
    }
    writePlist(plist(), details);
    platform::ReminderCentre centre;
    const QList<ReminderRow> rows = rebuildReminders(centre);
    const QList<platform::Reminder> scheduled = centre.scheduled();
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = book_ + "/" + c.name;
        const auto row =
            std::find_if(rows.begin(), rows.end(), [&](auto &r) { return r.path == path; });
        const auto reminder = std::find_if(scheduled.begin(), scheduled.end(),
                                           [&](auto &r) { return r.identifier == path; });
        ASSERT_EQ(row != rows.end(), *c.fire != 0);
        EXPECT_EQ(reminder != scheduled.end(), c.reminder);
        if (row == rows.end())
            continue;
        EXPECT_EQ(row->fireDate, QDateTime::fromString(c.fire, Qt::ISODate));
        EXPECT_EQ(row->counterIncrement, c.counter);
        EXPECT_EQ(row->repeatInterval, c.interval);
        EXPECT_EQ(row->normPath, "/Tasks/" + QString(c.name));
        if (reminder != scheduled.end()) {
            EXPECT_EQ(reminder->deliveryDate, row->fireDate);
            EXPECT_EQ(reminder->sound, c.sound);
            EXPECT_EQ(reminder->title, "Due Task");
            EXPECT_EQ(reminder->informativeText, QString(c.name).chopped(3));
        }
    }
    EXPECT_TRUE(std::is_sorted(rows.begin(), rows.end(),
                               [](auto &a, auto &b) { return a.modDate < b.modDate; }));
}

TEST_F(ReminderTest, TheRootCountsOnceHoweverItIsListed)
{
    writePlist(inRoot("TLTasklistDetails.plist"),
               QVariantMap{{"Top.md", QVariantMap{{"DueDate", at(1)}}}});
    makeFile(inRoot("Top.md"));
    for (const QStringList &listed : {QStringList{"/Tasks"}, QStringList{"", "/"}}) {
        setSetting("allTaskLists", listed);
        platform::ReminderCentre centre;
        EXPECT_EQ(rebuildReminders(centre).size(), 1);
        EXPECT_EQ(centre.scheduled().size(), 1);
    }
}

TEST_F(ReminderTest, TheAgentDeliversOnTimeAndFollowsChangedTaskLists)
{
    const QString soon = task("Soon.md");
    const QString later = task("Later.md");
    writePlist(plist(), QVariantMap{{"Soon.md", QVariantMap{{"DueDate", at(1)}}},
                                    {"Later.md", QVariantMap{{"DueDate", at(3)}}}});
    auto centre = std::make_shared<platform::ReminderCentre>();
    ReminderAgent agent(centre);
    EXPECT_EQ(agent.look(), std::chrono::minutes(1));
    EXPECT_EQ(centre->scheduled().size(), 2);
    EXPECT_TRUE(centre->delivered().isEmpty());

    clock_->advance(3600 - 30);
    EXPECT_EQ(agent.look(), std::chrono::seconds(30));
    clock_->advance(31);
    agent.look();
    ASSERT_EQ(centre->delivered().size(), 1);
    EXPECT_EQ(centre->delivered().first().taskPath, soon);
    // The delivery recounted the book: the task is overdue now.
    EXPECT_EQ(details().value("__DueItemCount__"), "1");

    writePlist(plist(), QVariantMap{{"Later.md", QVariantMap{{"DueDate", at(5)}}}});
    agent.look();
    ASSERT_EQ(centre->scheduled().size(), 1);
    EXPECT_EQ(centre->scheduled().first().deliveryDate, at(5));
    clock_->advance(4 * 3600);
    agent.look();
    EXPECT_EQ(centre->delivered().size(), 2);
    EXPECT_EQ(centre->delivered().last().taskPath, later);
    reminderRebuild() = nullptr;
}

} // namespace
} // namespace tl::tasks
