// What a term finds, by the index and by the walk alike.
#include "../store/library_fixture.h"
#include "search/search_index.h"
#include "search/search_walk.h"
#include "store/conflict_copies.h"

#include <gtest/gtest.h>

namespace {

using tl::search::Field;
using tl::search::Query;

struct MatchCase
{
    const char *name;
    QStringList terms;
    Field field;
    QStringList expected; // file names, sorted
};

class SearchMatching : public tltest::LibraryTest, public ::testing::WithParamInterface<bool>
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        makeFile(inRoot("Organiser notes.md"), "Plans to reorganise the shelf.");
        makeFile(inRoot("Café.txt"), "Nothing about drinks here.");
        makeFile(inRoot("Recipes.txt"), "Crème brûlée needs a torch.\nThe quick brown fox.");
        makeFile(inRoot("Page.html"),
                 "<html><body><p>Formatted <b>organiser</b> text</p></body></html>");
        makeFile(inRoot("Props.plist"), tl::plist::toXml(QVariantMap{{"Note", "hidden gem"}}));
        makeFile(inRoot("Picture.png"), "organiser inside a picture");
        makeFolder(inRoot("Quick Book"));
        makeFile(inRoot(".Hidden.md"), "organiser");
        // A version of a document a sync client kept: no item, so never a hit.
        tl::store::setConflictCopyRule(
            [](const QString &path) { return path.contains(u"conflicted copy"); });
        makeFile(inRoot("Recipes (conflicted copy 2026-01-02).txt"), "Crème brûlée, a torch.");
    }

    void TearDown() override
    {
        tl::store::setConflictCopyRule({});
        LibraryTest::TearDown();
    }

    QStringList names(const Query &query)
    {
        QStringList hits;
        if (GetParam()) {
            tl::search::SearchIndex index(root_, home_ + "/index.sqlite");
            index.bringUpToDate();
            hits = index.search(query, root_);
        } else {
            hits = tl::search::walkSearch(query, root_);
        }
        for (QString &hit : hits)
            hit = hit.mid(root_.size() + 1);
        hits.sort();
        return hits;
    }
};

TEST_P(SearchMatching, FindsByNameSubstringAndContentWordPrefix)
{
    const MatchCase cases[] = {
        {"content prefix", {"organ"}, Field::Content, {"Page.html"}},
        {"no match inside a word", {"ganiser"}, Field::Content, {}},
        {"name substring", {"ganiser"}, Field::Name, {"Organiser notes.md"}},
        {"name substring within one name", {"txt\n"}, Field::Name, {}},
        {"name ignores diacritics", {"cafe"}, Field::Name, {"Café.txt"}},
        {"name ignores case", {"CAFÉ"}, Field::Name, {"Café.txt"}},
        {"content ignores diacritics", {"creme brulee"}, Field::Content, {"Recipes.txt"}},
        {"phrase of consecutive words", {"quick brown"}, Field::Content, {"Recipes.txt"}},
        {"phrase with a prefix last", {"the quick bro"}, Field::Content, {"Recipes.txt"}},
        {"phrase words out of order", {"brown quick"}, Field::Content, {}},
        {"either field", {"quick"}, Field::NameOrContent, {"Quick Book", "Recipes.txt"}},
        {"AND across name and content",
         {"recipes", "torch"},
         Field::NameOrContent,
         {"Recipes.txt"}},
        {"AND needs every term", {"recipes", "organ"}, Field::NameOrContent, {}},
        {"property list values", {"gem"}, Field::Content, {"Props.plist"}},
        {"no text in pictures", {"inside"}, Field::Content, {}},
        {"punctuation only finds names",
         {"."},
         Field::NameOrContent,
         {"Café.txt", "Organiser notes.md", "Page.html", "Picture.png", "Props.plist",
          "Recipes.txt"}},
        {"punctuation finds no content", {"."}, Field::Content, {}},
    };
    for (const MatchCase &c : cases)
        EXPECT_EQ(names(Query{c.terms, c.field}), c.expected) << c.name;
}

INSTANTIATE_TEST_SUITE_P(IndexAndWalk, SearchMatching, ::testing::Values(true, false),
                         [](const auto &info) { return info.param ? "Index" : "Walk"; });

} // namespace

namespace {

TEST(SearchWords, AreFoldedRunsOfLettersAndDigits)
{
    struct Case
    {
        const char *text;
        QStringList words;
    };
    const Case cases[] = {
        {"Hello, World_x2", {"hello", "world", "x2"}},
        {"Crème BRÛLÉE", {"creme", "brulee"}},
        {"Straße", {"strasse"}},
        {"a😀b", {"a", "b"}},
        {"  ", {}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(tl::search::searchWords(QString::fromUtf8(c.text)), c.words) << c.text;
}

TEST(SearchWords, HoldAPhraseAsConsecutiveWordsTheLastAPrefix)
{
    struct Case
    {
        QStringList phrase;
        bool held;
    };
    const QString joined = QStringLiteral("plan the shelf plans");
    const Case cases[] = {
        {{"the", "sh"}, true},      {{"plan", "the", "shelf"}, true}, {{"pla"}, true},
        {{"shelf", "plans"}, true}, {{"he", "shelf"}, false},         {{"plan", "shelf"}, false},
        {{"lan"}, false},           {{"the", "shelves"}, false},      {{}, false},
    };
    for (const Case &c : cases) {
        const QString phrase = c.phrase.join('|');
        EXPECT_EQ(tl::search::joinedWordsContainPhrase(joined, c.phrase), c.held) << phrase;
        EXPECT_EQ(tl::search::wordsContainPhrase(joined.split(' '), c.phrase), c.held) << phrase;
    }
}

} // namespace
