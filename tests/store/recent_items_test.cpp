#include "foundation/events.h"
#include "library_fixture.h"
#include "platform/file_ops.h"
#include "store/library_folders.h"
#include "store/recent_items.h"
#include "support/event_recorder.h"

namespace tl::store {
namespace {

using tltest::PostedEvent;

class RecentItems : public tltest::LibraryTest
{
protected:
    // Entries "/Doc 0.md" ... with files made for the first `existing`.
    QStringList fill(int count, int existing)
    {
        QStringList list;
        QVariantList stored;
        for (int i = 0; i < count; ++i) {
            const QString entry = QStringLiteral("/Doc %1.md").arg(i);
            if (i < existing)
                makeFile(root_ + entry);
            list << entry;
            stored << entry;
        }
        writePlist(recentItemsPath(), stored);
        return list;
    }
};

TEST_F(RecentItems, NewestFirstWithoutRepeats)
{
    tl_addToRecentItems(inRoot("A.md"));
    tl_addToRecentItems(inRoot("Book/B.md"));
    tl_addToRecentItems(inRoot("A.md"));
    EXPECT_EQ(recentItems(), (QStringList{"/A.md", "/Book/B.md"}));
}

TEST_F(RecentItems, TheFirstEntryAgainWritesNothing)
{
    tl_addToRecentItems(inRoot("A.md"));
    ASSERT_TRUE(platform::setModificationDate(recentItemsPath(), oldDate()));
    tl_addToRecentItems(inRoot("A.md"));
    EXPECT_EQ(platform::modificationDate(recentItemsPath()), oldDate());
}

TEST_F(RecentItems, IgnoredPaths)
{
    for (const QString &path :
         {QString(), inRoot("Book/__NewNoteTmp.md"), inRoot("TLResources/Misc/Settings.txt"),
          inRoot("TLResources/Misc/AvailableTags.txt"),
          inRoot("TLResources/Misc/ExcludedTags.txt")})
        tl_addToRecentItems(path);
    EXPECT_TRUE(recentItems().isEmpty());
}

TEST_F(RecentItems, LimitsOfTheStoredList)
{
    const struct
    {
        int count;
        int setting;
        qsizetype stored;
    } cases[] = {{25, 0, 21}, {20, 0, 21}, {10, 0, 11}, {45, 1, 41}, {45, -1, 1}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.count * 100 + c.setting);
        setSetting("recentItemCount", c.setting);
        const QStringList before = fill(c.count, 0);
        tl_addToRecentItems(inRoot("New.md"));
        const QStringList after = recentItems();
        EXPECT_EQ(after.size(), c.stored);
        EXPECT_EQ(after.first(), "/New.md");
        EXPECT_EQ(after.mid(1), before.mid(0, c.stored - 1));
    }
}

TEST_F(RecentItems, TheVerifiedListDropsGoneEntriesAndKeepsTheOldest)
{
    const QStringList all = fill(15, 14);
    const QStringList verified = TLStaticFunctions::verifiedListOfRecentItems();
    EXPECT_EQ(recentItems(), all.mid(0, 14));
    EXPECT_EQ(verified, all.mid(0, 9) + QStringList{all[13]});

    setSetting("recentItemCount", 1);
    EXPECT_EQ(TLStaticFunctions::verifiedListOfRecentItems(), all.mid(0, 14));
    fill(25, 25);
    const QStringList longer = TLStaticFunctions::verifiedListOfRecentItems();
    EXPECT_EQ(longer.size(), 20);
    EXPECT_EQ(longer.last(), "/Doc 24.md");
}

TEST_F(RecentItems, ShowingARecentDocument)
{
    fill(3, 2);
    const PostedEvent rootBook{events::NewBookSelected, {{"path", root_}}};
    const struct
    {
        qsizetype index;
        PostedEvent expected;
    } cases[] = {
        {1, {events::ShowItemAtPath, {{"path", "/Doc 1.md"}}}},
        {-4, {events::ShowItemAtPath, {{"path", "/Doc 0.md"}}}},
        {7, rootBook},
    };
    for (const auto &c : cases) {
        tltest::EventRecorder recorder;
        TLStaticFunctions::showRecentDocumentAtIndex(c.index);
        EXPECT_EQ(recorder.events(), QList<PostedEvent>{c.expected}) << c.index;
    }
    writePlist(recentItemsPath(), QVariantList{});
    tltest::EventRecorder recorder;
    TLStaticFunctions::showRecentDocumentAtIndex(0);
    EXPECT_EQ(recorder.events(), QList<PostedEvent>{rootBook});
}

TEST_F(RecentItems, TheMostRecentDocumentNotInAWindowOfItsOwn)
{
    fill(3, 3);
    writePlist(appStatePath(),
               QVariantMap{{"documentsToOpenOnStartup",
                            QVariantList{QVariantMap{{"path", inRoot("Doc 0.md")}}}}});
    tltest::EventRecorder recorder;
    TLStaticFunctions::showMostRecentDocument();
    EXPECT_EQ(recorder.events(),
              (QList<PostedEvent>{{events::ShowItemAtPath, {{"path", "/Doc 1.md"}}}}));
}

} // namespace
} // namespace tl::store
