#include "contexts/tag_database.h"
#include "contexts_fixture.h"

#include <QFileInfo>

namespace {

using namespace tl::contexts;

using TagDatabase = tltest::ContextsTest;

TEST_F(TagDatabase, CollectingMakesAnUnknownTagAvailable)
{
    setAvailable({"@home"});
    const QString doc = item("a.txt", {"@home", "@new"});
    EXPECT_EQ(tl_verifiedTagList(doc), QStringList{"@home"});
    tl_collectTagsInPlist(doc + ".plist");
    EXPECT_EQ(available(), (QStringList{"@home", "@new"}));
    EXPECT_EQ(tl_verifiedTagList(doc), (QStringList{"@home", "@new"}));
    EXPECT_EQ(entry("@new"), QStringList{"/a.txt"});
}

TEST_F(TagDatabase, FavoriteMarkNeverJoinsTheList)
{
    const QString doc = item("a.txt", {"_TLFAV", "x"});
    tl_collectTagsInPlist(doc);
    EXPECT_EQ(available(), QStringList{"x"});
    EXPECT_EQ(entry("_TLFAV"), QStringList{"/a.txt"});
    EXPECT_EQ(listOfFavorites(), QStringList{doc});
}

TEST_F(TagDatabase, LastItemOfAMarkedTagTakesItAlong)
{
    const QString phone = item("p.txt", {"@Phone"});
    const QString hand = item("h.txt", {"Phone"});
    tl_collectTagsInPlist(phone);
    tl_collectTagsInPlist(hand);
    tl_changePathInTagDBToPath(phone, "");
    tl_changePathInTagDBToPath(hand, "");
    EXPECT_EQ(available(), QStringList{"Phone"});
    EXPECT_TRUE(index().isEmpty());
}

TEST_F(TagDatabase, PurgeDropsGoneItemsAndMarkedTagsWithoutItems)
{
    setAvailable({"@a", "b", "@c"});
    item("here.txt");
    setIndex({{"@a", QStringList{"/gone.txt"}}, {"b", QStringList{"/gone.txt", "/here.txt"}}});
    EXPECT_EQ(tl_listOfAllAvailableTags(), QStringList{"b"});
    EXPECT_EQ(available(), QStringList{"b"});
    EXPECT_EQ(index().keys(), QStringList{"b"});
}

TEST_F(TagDatabase, PurgeWithNothingGoneLeavesATravellingListAlone)
{
    setAvailable({"@a", "_TLFAV"});
    EXPECT_EQ(tl_listOfAllAvailableTags(), QStringList{"@a"});
    EXPECT_EQ(available(), (QStringList{"@a", "_TLFAV"}));
}

TEST_F(TagDatabase, ItemsOfATagHealTheIndexAndTheItemIsTheAuthority)
{
    setAvailable({"x"});
    const QString a = item("a.txt", {"x"});
    item("b.txt", {"y"});
    setIndex({{"x", QStringList{"/b.txt", "/a.txt", "/gone.txt"}}});
    EXPECT_EQ(tl_listOfAllItemsForTag("x"), QStringList{a});
    EXPECT_EQ(entry("x"), QStringList{"/a.txt"});
    EXPECT_EQ(tl_numberOfItemsForTag("x"), 1);
}

TEST_F(TagDatabase, SetAndClearKeepTheFavoriteMark)
{
    setAvailable({"x"});
    const QString doc = item("a.txt", {"_TLFAV"});
    tl_setTag(doc, "x");
    EXPECT_EQ(tagsOf(doc), (QStringList{"_TLFAV", "x"}));
    EXPECT_EQ(entry("x"), QStringList{"/a.txt"});
    tl_clearTag(doc, "x");
    EXPECT_EQ(tagsOf(doc), QStringList{"_TLFAV"});
    EXPECT_TRUE(entry("x").isEmpty());
    tl_setTag(doc, "x");
    tl_clearAllTags(doc);
    EXPECT_EQ(tagsOf(doc), QStringList{"_TLFAV"});
}

TEST_F(TagDatabase, FavoritesToggle)
{
    const QString doc = item("a.txt");
    tl_toggleFavorite(doc);
    EXPECT_TRUE(tl_isFavorite(doc));
    EXPECT_EQ(listOfFavorites(), QStringList{doc});
    tl_toggleFavorite(doc);
    EXPECT_FALSE(tl_isFavorite(doc));
    EXPECT_TRUE(listOfFavorites().isEmpty());
}

TEST_F(TagDatabase, BookMoveRewritesDescendantsInTheirPlaces)
{
    const QString book = item("Book", {"x"});
    item("Book/a.txt", {"x", "y"});
    setIndex({{"x", QStringList{"/first.txt", "/Book", "/Book/a.txt", "/last.txt"}},
              {"y", QStringList{"/Book", "/Book/a.txt"}}});
    setAvailable({"x", "y"});
    tl_changePathInTagDBToPath(book, inRoot("Moved"));
    EXPECT_EQ(entry("x"), (QStringList{"/first.txt", "/Moved", "/Moved/a.txt", "/last.txt"}));
    // The book itself bears only "x".
    EXPECT_EQ(entry("y"), QStringList{"/Moved/a.txt"});
}

TEST_F(TagDatabase, DeletingABookRemovesItsDescendants)
{
    const QString book = item("Book", {"x"});
    setIndex({{"x", QStringList{"/Book", "/Book/a.txt", "/Booklet.txt"}}});
    setAvailable({"x"});
    tl_changePathInTagDBToPath(book, "");
    EXPECT_EQ(entry("x"), QStringList{"/Booklet.txt"});
}

TEST_F(TagDatabase, MoveAfterTheFactFollowsTheTarget)
{
    setAvailable({"x"});
    const QString moved = item("new.txt", {"x"});
    setIndex({{"x", QStringList{"/old.txt"}}});
    tl_changePathInTagDBToPath(inRoot("old.txt"), moved);
    EXPECT_EQ(entry("x"), QStringList{"/new.txt"});
}

TEST_F(TagDatabase, ComposedAndDecomposedNamesAreOneItem)
{
    setAvailable({"x"});
    const QString composed = QString::fromUtf8("Caf\u00e9.txt");
    const QString decomposed = QString::fromUtf8("Cafe\u0301.txt");
    const QString doc = item(decomposed, {"x"});
    tl_collectTagsInPlist(doc);
    EXPECT_EQ(entry("x"), QStringList{"/" + composed});
    EXPECT_EQ(tl_listOfAllItemsForTag("x"), QStringList{doc});
    tl_changePathInTagDBToPath(inRoot(composed), "");
    EXPECT_TRUE(entry("x").isEmpty());
}

TEST_F(TagDatabase, DuplicatesInTheListAreWrittenBackOnce)
{
    setAvailable({"a", "b", "a"});
    QStringList list = tl_unfilteredListOfAllTags();
    list.sort();
    EXPECT_EQ(list, (QStringList{"a", "b"}));
    EXPECT_EQ(available().size(), 2);
}

TEST_F(TagDatabase, DefaultContextsOnlyIntoAnEmptyList)
{
    EXPECT_TRUE(installDefaultContexts());
    EXPECT_EQ(available().size(), 6);
    EXPECT_FALSE(installDefaultContexts());
}

TEST_F(TagDatabase, ContextsFromTextJoinTheItem)
{
    const QString doc = item("a.txt", {"hand"});
    tl_collectTagsFromText(doc, "call @Bob, then #plan.");
    QStringList tags = tagsOf(doc);
    tags.sort();
    EXPECT_EQ(tags, (QStringList{"#plan", "@Bob", "hand"}));
    EXPECT_EQ(entry("@Bob"), QStringList{"/a.txt"});
}

} // namespace
