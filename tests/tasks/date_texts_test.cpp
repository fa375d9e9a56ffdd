#include "task_fixture.h"
#include "tasks/date_texts.h"

namespace tl::tasks {
namespace {

using tltest::TaskListTest;

TEST(ReadableRepeat, TextsOfEachFamily)
{
    const struct
    {
        std::optional<QStringList> details;
        const char *text;
    } cases[] = {
        {std::nullopt, "---"},
        {QStringList{"when due", "day", "1"}, "Every Day "},
        {QStringList{"when due", "hour", "0"}, "Every Hour "},
        {QStringList{"when due", "fortnight", "1"}, "Every "},
        {QStringList{"when due", "week", "2"}, "Every 2 weeks"},
        {QStringList{"when due", "month", "3"}, "Every 3 months"},
        {QStringList{"when done", "week", "1"}, "1 week after completion"},
        {QStringList{"when done", "day", "3"}, " 3 days after completion"},
        {QStringList{"when done", "year", "2"}, " 2 years after completion"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(tl_readableRepeatDetailsForDetails(c.details), c.text);
    }
}

// The three forms of a date in a task list: relative, exact, and in a row.
TEST_F(TaskListTest, WeekdayTexts)
{
    const QString narrow(QChar(0x202f));
    const auto fancy = tl_fancyWeekdayString;
    const auto exact = tl_fancyWeekdayStringExact;
    const auto row = tl_weekdayString;
    const auto on = [](int day, QTime time) {
        return QDateTime(QDate(2024, 3, day), time, Qt::UTC);
    };
    const struct
    {
        QString (*form)(const QDateTime &);
        QDateTime date;
        QString text;
    } cases[] = {
        {fancy, now().addSecs(-30), "just now"},
        {fancy, now().addSecs(-119), "just now"},
        {fancy, now().addSecs(-120), "2 minutes ago"},
        {fancy, now().addSecs(-3599), "59 minutes ago"},
        {fancy, now().addSecs(-3600), "1 hour ago"},
        {fancy, now().addSecs(-7200), "2 hours ago"},
        {fancy, now().addSecs(-14399), "3 hours ago"},
        {fancy, now().addSecs(-14400), "Today, 8:00" + narrow + "AM"},
        {fancy, now().addSecs(3600), "Today, 1:00" + narrow + "PM"},
        {fancy, on(4, QTime(0, 1)), "Yesterday"},
        {fancy, on(6, QTime(0, 1)), "Tomorrow"},
        {fancy, on(9, QTime(17, 30)), "Saturday, March 9, 2024, 5:30" + narrow + "PM"},
        {fancy, distantFuture(), ""},
        {fancy, distantPast(), ""},
        {exact, now().addSecs(-3600), "Today, 11:00:00" + narrow + "AM"},
        {exact, on(4, QTime(0, 1, 5)), "Yesterday, 12:01:05" + narrow + "AM"},
        {exact, on(6, QTime(0, 1, 5)), "Tomorrow, 12:01" + narrow + "AM"},
        {exact, on(9, QTime(17, 30, 2)), "3/9/24, 5:30:02" + narrow + "PM"},
        {exact, distantPast(), ""},
        {row, now().addSecs(-7200), "Today, 10:00" + narrow + "AM"},
        {row, on(6, QTime(0, 1)), "Tomorrow"},
        {row, on(9, QTime(0, 1)), "Sat, Mar 9, 2024"},
        {row, on(9, QTime(17, 30)), "Sat, Mar 9, 2024, 5:30" + narrow + "PM"},
        {row, distantFuture(), ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        EXPECT_EQ(c.form(c.date), c.text);
    }
}

} // namespace
} // namespace tl::tasks
