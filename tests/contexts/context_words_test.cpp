#include "contexts/context_words.h"
#include "store/library_fixture.h"

#include <algorithm>

namespace {

using tl::contexts::tl_extractTagsFromString;

QStringList sorted(const tl::contexts::TagSet &set)
{
    QStringList list(set.cbegin(), set.cend());
    std::sort(list.begin(), list.end());
    return list;
}

struct Case
{
    const char *text;
    QStringList expected;
    const char *markers = "@#";
};

const Case kCases[] = {
    {"at @home, then", {"@home"}},
    {"at @home.", {"@home"}},
    {"@@home", {}},
    {"a@b", {}},
    {"(@home)", {}},
    {"@func(x) now", {"@func(x)"}},
    {"@x) now", {"@x"}},
    {"@list[1]; @set{a}", {"@list[1]", "@set{a}"}},
    {"@, lone", {}},
    {"@", {}},
    {"- Buy milk @done", {}},
    {"  - Buy milk @done  \nnext", {}},
    {"- @done with this", {"@done"}},
    {"Buy @done", {"@done"}},
    {"#idea and @home", {"#idea", "@home"}},
    {"# Heading", {}},
    {"##x", {}},
    {"line\n@start\n@end", {"@end", "@start"}},
    {"tab\t@a;b", {"@a"}},
    {"@café:", {"@café"}},
    // Markers that are special inside a character class stand for themselves.
    {"]x and ^y and -z and \\w", {"-z", "\\w", "]x", "^y"}, "]^-\\"},
    {"@home #idea", {"#idea"}, "#"},
};

TEST(ContextWords, TableOfWords)
{
    for (const Case &c : kCases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(sorted(tl_extractTagsFromString(QString::fromUtf8(c.text),
                                                  QString::fromUtf8(c.markers), {})),
                  c.expected);
    }
}

TEST(ContextWords, ExcludedWordsNeverCount)
{
    EXPECT_EQ(sorted(tl_extractTagsFromString("@a @b #c", "@#", {"@b", "#c"})), QStringList{"@a"});
}

using ContextWordsInLibrary = tltest::LibraryTest;

TEST_F(ContextWordsInLibrary, ReadsMarkersAndExcludedFileOfTheLibrary)
{
    makeFile(inRoot("TLResources/Misc/ExcludedTags.txt"), "@b, @c\n\n@d");
    EXPECT_EQ(sorted(tl_extractTagsFromString("@a @b @c @d @e")), (QStringList{"@a", "@e"}));
    setSetting("contextMarkers", "+");
    EXPECT_EQ(sorted(tl_extractTagsFromString("@a +b")), QStringList{"+b"});
}

} // namespace
