#include "store/list_row.h"
#include "task_fixture.h"

namespace tl::tasks {
namespace {

using tltest::TaskListTest;

TEST_F(TaskListTest, RowSortKeysOrderDatedUndatedDoneAndCanceledTasks)
{
    const QDateTime due = now().addDays(2);
    const QDateTime finished = now().addDays(-1);
    const auto since2001 = [](double seconds) {
        return dateFromSecondsSinceReferenceDate(seconds);
    };
    const double finishedSeconds = secondsSinceReferenceDate(finished);
    const struct
    {
        QVariantMap record;
        QDateTime key;
        const char *icon;
        const char *repeating;
        bool showsDue = false; // the list shows the key as the due date
    } cases[] = {
        {{{"DueDate", due}}, due, "task-open", "", true},
        {{{"DueDate", now().addDays(-2)}, {"State", "started"}},
         now().addDays(-2),
         "task-started-due",
         "",
         true},
        {{}, since2001(30785400000.0), "task-open", ""},
        {{{"RepeatType", "when due"}}, since2001(30785400000.0), "task-open", "1"},
        {{{"State", "no_task"}}, distantPast(), "", ""},
        {{{"State", "done"}, {"Changed", finished}},
         since2001(36910080000.0 - finishedSeconds),
         "task-done",
         ""},
        {{{"State", "canceled"}, {"Changed", finished}, {"DueDate", due}},
         since2001(43061760000.0 - finishedSeconds),
         "task-canceled",
         ""},
        {{{"State", "done"}}, since2001(36910080000.0), "task-done", ""},
    };
    const QString doc = task("Doc.md");
    for (const auto &c : cases) {
        SCOPED_TRACE(c.icon);
        const store::ListRow row = store::tl_dictionaryForItemAsTask(doc, true, c.record);
        EXPECT_EQ(row.dueDate, c.key);
        EXPECT_EQ(row.taskIcon, c.icon);
        EXPECT_EQ(row.taskIsRepeating, c.repeating);
        EXPECT_EQ(row.openTaskDueDate(), c.showsDue ? std::optional(c.key) : std::nullopt);
    }
    const store::ListRow plain = store::tl_dictionaryForItemAsTask(doc, false);
    EXPECT_EQ(plain.dueDate, distantFuture());
    EXPECT_EQ(plain.taskIcon, "");
}

} // namespace
} // namespace tl::tasks
