#include "foundation/compare.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace {

int sign(int v)
{
    return (v > 0) - (v < 0);
}

int keyOrder(const QByteArray &a, const QByteArray &b)
{
    return sign(a.compare(b));
}

TEST(SortKeys, OrderExactlyAsTheirComparisons)
{
    const QStringList names{"Book 10", "Book 2",       "book 2",      "Apple",  "apple", "Äpfel",
                            "Zebra",   "e\u0301clair", "\u00e9clair", "Eclair", "10",    "9",
                            "",        "Ωmega"};
    for (const QString &a : names) {
        for (const QString &b : names) {
            SCOPED_TRACE((a + " | " + b).toStdString());
            EXPECT_EQ(keyOrder(tl::localizedSortKey(a), tl::localizedSortKey(b)),
                      tl::localizedCompare(a, b));
            EXPECT_EQ(keyOrder(tl::localizedCaseInsensitiveSortKey(a),
                               tl::localizedCaseInsensitiveSortKey(b)),
                      tl::localizedCaseInsensitiveCompare(a, b));
            EXPECT_EQ(keyOrder(tl::localizedStandardSortKey(a), tl::localizedStandardSortKey(b)),
                      tl::localizedStandardCompare(a, b));
        }
    }
}

} // namespace
