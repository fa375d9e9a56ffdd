#include "foundation/dates.h"
#include "foundation/digest.h"

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

TEST(Digest, RootKeyIsUpperCaseMd5OfTheUtf8Path)
{
    EXPECT_EQ(tl::md5Hex("", false), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(tl::rootKey("/tmp/t1/lib"), "3494AE6A21E2DD91CCB35FEF0283FC01");
    EXPECT_NE(tl::rootKey("/tmp/Bücher"), tl::rootKey("/tmp/Bu\u0308cher"));
}

} // namespace
