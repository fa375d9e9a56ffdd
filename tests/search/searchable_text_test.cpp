// The words of a file as the index reads them, whatever became of the file
// since the walk found it.
#include "../store/library_fixture.h"
#include "search/searchable_text.h"

#include <gtest/gtest.h>

namespace {

using SearchableWords = tltest::LibraryTest;

TEST_F(SearchableWords, AreReadWholeWhateverSizeTheWalkSaw)
{
    const QString path = inRoot("Note.md");
    makeFile(path, "Alpha beta alpha gamma");
    const tl::search::SearchableText text;
    for (const qint64 size : {0, 5, 22, 100})
        EXPECT_EQ(text.distinctWordsOf(path, size), "alpha beta gamma") << size;
    EXPECT_EQ(text.distinctWordsOf(inRoot("Gone.md"), 10), std::nullopt);
}

} // namespace
