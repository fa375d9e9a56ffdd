#include "contexts/tag_collection.h"
#include "contexts/tag_database.h"
#include "contexts/text_scan.h"
#include "contexts_fixture.h"
#include "platform/file_ops.h"
#include "store/text_conversions.h"

namespace {

using namespace tl::contexts;

using TagCollection = tltest::ContextsTest;

TEST_F(TagCollection, CollectsOnlyWhatChangedSinceTheLastRun)
{
    useManualClock(QDateTime(QDate(2030, 1, 1), QTime(0, 0), Qt::UTC));
    const QString a = item("a.txt", {"@a"});
    item("Book", {"b"});
    item("Book/TLTasklistDetails.plist");
    CollectionResult first = collectNewContexts();
    EXPECT_EQ(first.plists, 2);
    EXPECT_TRUE(first.listFilledFromEmpty);
    EXPECT_EQ(entry("b"), QStringList{"/Book"});

    tl::platform::setModificationDate(a + ".plist", oldDate());
    item("c.txt", {"c"});
    tl::platform::setModificationDate(inRoot("c.txt.plist"),
                                      QDateTime(QDate(2031, 1, 1), QTime(0, 0), Qt::UTC));
    EXPECT_EQ(collectNewContexts().plists, 1);
    EXPECT_EQ(entry("c"), QStringList{"/c.txt"});
}

TEST_F(TagCollection, RefreshRebuildsAndBringsFavoritesBack)
{
    const QString a = item("a.txt", {"x"});
    item("fav.txt");
    setIndex({{"stale", QStringList{"/a.txt"}}, {"_TLFAV", QStringList{"/fav.txt"}}});
    tl_refreshContexts();
    EXPECT_EQ(index().keys(), (QStringList{"_TLFAV", "x"}));
    EXPECT_EQ(tagsOf(inRoot("fav.txt")), QStringList{"_TLFAV"});
}

TEST_F(TagCollection, ScanTakesWordsFromTextAndFromThisProgramsHTML)
{
    tl::store::textConversions().htmlToPlainText = [](const QString &html) {
        return QString(html).replace("<p>", " ").replace("</p>", " ");
    };
    tltest::writeFile(inRoot("n.md"), "see @bob");
    tltest::writeFile(inRoot("p.html"),
                      "<html><!-- Generator: Tavelle 1 --><body><p>#plan</p></body></html>");
    tltest::writeFile(inRoot("q.html"), "<html><body><p>#foreign</p></body></html>");
    tltest::writeFile(inRoot("TLResources/r.txt"), "@res");
    const std::atomic_bool stop{false};
    EXPECT_EQ(extractContextsFromDocuments(stop).documents, 3);
    EXPECT_EQ(tagsOf(inRoot("n.md")), QStringList{"@bob"});
    EXPECT_TRUE(tagsOf(inRoot("q.html")).isEmpty());
    QStringList list = available();
    list.sort();
    EXPECT_EQ(list, (QStringList{"#plan", "@bob"}));
}

TEST_F(TagCollection, AStoppedScanTouchesNothing)
{
    tltest::writeFile(inRoot("n.md"), "see @bob");
    const std::atomic_bool stop{true};
    EXPECT_TRUE(extractContextsFromDocuments(stop).stopped);
    EXPECT_TRUE(tagsOf(inRoot("n.md")).isEmpty());
}

} // namespace
