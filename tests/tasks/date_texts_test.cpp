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

TEST_F(TaskListTest, FancyWeekdayTexts)
{
    const QChar narrow(0x202f);
    const struct
    {
        QDateTime date;
        QString text;
    } cases[] = {
        {now().addSecs(-30), "just now"},
        {now().addSecs(-119), "just now"},
        {now().addSecs(-120), "2 minutes ago"},
        {now().addSecs(-3599), "59 minutes ago"},
        {now().addSecs(-3600), "1 hour ago"},
        {now().addSecs(-7200), "2 hours ago"},
        {now().addSecs(-14399), "3 hours ago"},
        {now().addSecs(-14400), QString("Today, 8:00") + narrow + "AM"},
        {now().addSecs(3600), QString("Today, 1:00") + narrow + "PM"},
        {QDateTime(QDate(2024, 3, 4), QTime(0, 1), Qt::UTC), "Yesterday"},
        {QDateTime(QDate(2024, 3, 6), QTime(0, 1), Qt::UTC), "Tomorrow"},
        {QDateTime(QDate(2024, 3, 9), QTime(17, 30), Qt::UTC),
         QString("Saturday, March 9, 2024, 5:30") + narrow + "PM"},
        {distantFuture(), ""},
        {distantPast(), ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        EXPECT_EQ(tl_fancyWeekdayString(c.date), c.text);
    }
}

TEST_F(TaskListTest, ExactWeekdayTexts)
{
    const QChar narrow(0x202f);
    const struct
    {
        QDateTime date;
        QString text;
    } cases[] = {
        {now().addSecs(-3600), QString("Today, 11:00:00") + narrow + "AM"},
        {QDateTime(QDate(2024, 3, 4), QTime(0, 1, 5), Qt::UTC),
         QString("Yesterday, 12:01:05") + narrow + "AM"},
        {QDateTime(QDate(2024, 3, 6), QTime(0, 1, 5), Qt::UTC),
         QString("Tomorrow, 12:01") + narrow + "AM"},
        {QDateTime(QDate(2024, 3, 9), QTime(17, 30, 2), Qt::UTC),
         QString("3/9/24, 5:30:02") + narrow + "PM"},
        {distantPast(), ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        EXPECT_EQ(tl_fancyWeekdayStringExact(c.date), c.text);
    }
}

} // namespace
TEST_F(TaskListTest, WeekdayTextsOfListRows)
{
    const QChar narrow(0x202f);
    const struct
    {
        QDateTime date;
        QString text;
    } cases[] = {
        {now().addSecs(-7200), QString("Today, 10:00") + narrow + "AM"},
        {QDateTime(QDate(2024, 3, 6), QTime(0, 1), Qt::UTC), "Tomorrow"},
        {QDateTime(QDate(2024, 3, 9), QTime(0, 1), Qt::UTC), "Sat, Mar 9, 2024"},
        {QDateTime(QDate(2024, 3, 9), QTime(17, 30), Qt::UTC),
         QString("Sat, Mar 9, 2024, 5:30") + narrow + "PM"},
        {distantFuture(), ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        EXPECT_EQ(tl_weekdayString(c.date), c.text);
    }
}

} // namespace tl::tasks
