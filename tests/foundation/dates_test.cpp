#include "foundation/dates.h"
#include "foundation/digest.h"

#include <QTimeZone>
#include <gtest/gtest.h>

namespace {

TEST(Dates, SecondsCountFromTheStartOf2001Utc)
{
    EXPECT_EQ(tl::referenceDate().toString(Qt::ISODate), "2001-01-01T00:00:00Z");
    const QDateTime d = QDateTime::fromString("2001-01-02T00:00:01Z", Qt::ISODate);
    EXPECT_DOUBLE_EQ(tl::secondsSinceReferenceDate(d), 86401.0);
    EXPECT_EQ(tl::dateFromSecondsSinceReferenceDate(86401.0), d);
    EXPECT_DOUBLE_EQ(tl::secondsSinceReferenceDate(tl::dateFromSecondsSinceReferenceDate(-1.5)),
                     -1.5);
}

TEST(Dates, DistantDatesLieFarOutAndAreRecognised)
{
    EXPECT_DOUBLE_EQ(tl::secondsSinceReferenceDate(tl::distantPast()), -63114076800.0);
    EXPECT_DOUBLE_EQ(tl::secondsSinceReferenceDate(tl::distantFuture()), 63113904000.0);
    EXPECT_TRUE(tl::isDistantPast(tl::distantPast()));
    EXPECT_FALSE(tl::isDistantPast(tl::referenceDate()));
    EXPECT_LT(tl::distantPast(), tl::referenceDate());
}

TEST(Dates, EveryDatePrintsInIso8601)
{
    struct Case
    {
        QDateTime date;
        const char *printed;
    };
    const Case cases[] = {
        {tl::referenceDate(), "2001-01-01T00:00:00Z"},
        {QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9), QTimeZone(3600)), "2024-05-06T06:08:09Z"},
        {tl::distantPast(), "0000-12-30T00:00:00Z"},
        {tl::distantFuture(), "4001-01-01T00:00:00Z"},
        {QDateTime(QDate(-2, 3, 4), QTime(0, 0), Qt::UTC), "-0001-03-04T00:00:00Z"},
        {QDateTime(QDate(12345, 1, 2), QTime(0, 0), Qt::UTC), "+12345-01-02T00:00:00Z"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(tl::isoDateString(c.date), QString::fromLatin1(c.printed));
}

TEST(Digest, RootKeyIsUpperCaseMd5OfTheUtf8Path)
{
    EXPECT_EQ(tl::md5Hex("", false), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(tl::rootKey("/tmp/t1/lib"), "3494AE6A21E2DD91CCB35FEF0283FC01");
    EXPECT_NE(tl::rootKey("/tmp/Bücher"), tl::rootKey("/tmp/Bu\u0308cher"));
}

} // namespace
