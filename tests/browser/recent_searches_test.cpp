// The recent searches: newest first, each once, blanks left out, the oldest
// dropped beyond the limit.
#include "../store/library_fixture.h"
#include "browser/recent_searches.h"

#include <gtest/gtest.h>

namespace {

using namespace tl::browser;

using RecentSearches = tltest::LibraryTest;

struct RecentCase
{
    QStringList searched;
    QStringList offered;
};

TEST_F(RecentSearches, NewestFirstEachOnceWithinTheLimit)
{
    QStringList many;
    for (int n = 1; n <= kMaxRecentSearches + 2; ++n)
        many << QString::number(n);
    QStringList newest;
    for (int n = kMaxRecentSearches + 2; n > 2; --n)
        newest << QString::number(n);
    const RecentCase cases[] = {
        {{"tea", "\"green tea\""}, {"\"green tea\"", "tea"}},
        {{"tea", "coffee", "tea"}, {"tea", "coffee"}},
        {{"tea", " ", ""}, {"tea"}},
        {many, newest},
    };
    for (const RecentCase &c : cases) {
        clearRecentSearchTerms();
        for (const QString &term : c.searched)
            rememberSearchTerm(term);
        EXPECT_EQ(recentSearchTerms(), c.offered) << c.searched.join(u',').toStdString();
    }
}

} // namespace
