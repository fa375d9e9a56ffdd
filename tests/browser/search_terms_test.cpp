#include "browser/library_search.h"

#include <gtest/gtest.h>

namespace {

struct TermsCase
{
    const char *text;
    QStringList terms;
};

TEST(SearchTerms, SplitsOnBlanksAndKeepsQuotedPhrasesWhole)
{
    const TermsCase cases[] = {
        {"two words", {"two", "words"}},
        {"  spaced   out ", {"spaced", "out"}},
        {"\"two words\"", {"two words"}},
        {"„two words“", {"two words"}},
        {"«two words»", {"two words"}},
        {"”two words”", {"two words"}},
        {"before \"a phrase\" after", {"before", "a phrase", "after"}},
        {"open \"rest is a phrase", {"open", "rest is a phrase"}},
        {"\"\" empty quotes", {"empty", "quotes"}},
        {"", {}},
    };
    for (const TermsCase &c : cases)
        EXPECT_EQ(tl::browser::tl_arrayOfSearchTermsInString(QString::fromUtf8(c.text)), c.terms)
            << c.text;
}

} // namespace
