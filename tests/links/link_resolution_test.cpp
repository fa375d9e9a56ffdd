#include "links/backlinks.h"
#include "links/link_resolution.h"
#include "platform/alerts.h"
#include "store/library_fixture.h"

namespace tl::links {
namespace {

class LinkResolution : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        presenter_ = std::make_shared<platform::HeadlessAlertPresenter>();
        platform::setAlertPresenter(presenter_);
        makeFile(inRoot("A/meeting notes 2021.md"), "agenda");
        makeFile(inRoot("A/Tom's plan.md"));
        makeFile(inRoot("A/ProjectPlan.txt"));
        makeFile(inRoot("B/deep/meeting.txt"));
    }
    void TearDown() override
    {
        platform::setAlertPresenter(nullptr);
        LibraryTest::TearDown();
    }
    QString resolve(const QString &wanted, bool mayAsk = false, const QString &back = {})
    {
        return tl_findAlternativePathExcluding({wanted, {}, mayAsk, back});
    }
    std::shared_ptr<platform::HeadlessAlertPresenter> presenter_;
};

TEST_F(LinkResolution, SpellingsAndTitles)
{
    EXPECT_EQ(resolve(inRoot("A/meeting%20notes%202021.md")), inRoot("A/meeting notes 2021.md"));
    EXPECT_EQ(resolve(inRoot("A/Tom\u2019s plan.md")), inRoot("A/Tom's plan.md"));
    EXPECT_EQ(resolve(inRoot("A/meeting notes 2021.md#top")),
              inRoot("A/meeting notes 2021.md#top"));
    EXPECT_EQ(resolve(inRoot("A/Tom's plan")), inRoot("A/Tom's plan.md"));
}

TEST_F(LinkResolution, SmartTitlesFindSimilarNamesWithoutAsking)
{
    setSetting("WikiSmartResolveTitles", true);
    EXPECT_EQ(resolve(inRoot("A/Meeting Notes"), true), inRoot("A/meeting notes 2021.md"));
    EXPECT_EQ(resolve(inRoot("A/Project Plan"), true), inRoot("A/ProjectPlan.txt"));
    setSetting("WikiSmartResolveGlobally", true);
    EXPECT_EQ(resolve(inRoot("C/Meeting")), inRoot("B/deep/meeting.txt"));
    EXPECT_TRUE(presenter_->shownAlerts().isEmpty());
}

TEST_F(LinkResolution, ContentsDecideWhenTitlesDoNot)
{
    setSetting("WikiSmartResolveContents", true);
    EXPECT_EQ(resolve(inRoot("A/Agenda")), inRoot("A/meeting notes 2021.md"));
    EXPECT_EQ(
        tl_findAlternativePathExcluding({inRoot("A/Agenda"), {"meeting notes 2021.md"}, false, {}}),
        "");
}

TEST_F(LinkResolution, UnfoundTitleAsksToCreateWithBacklink)
{
    setSetting("DefaultDocumentType", "md");
    const QString back = inRoot("A/Tom's plan.md");
    presenter_->pushAnswer(1);
    EXPECT_EQ(resolve(inRoot("A/Meeting Notes"), true, back), "");
    ASSERT_EQ(presenter_->shownAlerts().size(), 1);
    const platform::Alert alert = presenter_->shownAlerts().first();
    EXPECT_EQ(alert.informativeText, "Do you want to create it?");
    EXPECT_EQ(alert.buttons, (QStringList{"Create", "Create with Backlink", "Cancel"}));
    EXPECT_EQ(tltest::readFile(inRoot("A/Meeting Notes.md")), "Meeting Notes\n\n[[Tom's plan.md]]");
}

TEST_F(LinkResolution, NothingIsMadeWithoutAWindowOrForAForeignExtension)
{
    EXPECT_EQ(resolve(inRoot("A/New")), "");
    EXPECT_EQ(resolve(inRoot("A/pic.png"), true), "");
    EXPECT_TRUE(presenter_->shownAlerts().isEmpty());
    presenter_->pushAnswer(1);
    EXPECT_EQ(resolve(inRoot("A/New.md"), true), "");
    EXPECT_FALSE(QFileInfo::exists(inRoot("A/New.md")));
}

TEST_F(LinkResolution, CreatedWithManagedLinksGetsTheBacklinkRecorded)
{
    setSetting("manageLinks", true);
    const QString back = inRoot("A/Tom's plan.md");
    presenter_->pushAnswer(0);
    resolve(inRoot("A/Fresh.md"), true, back);
    EXPECT_EQ(backlinksOf(inRoot("A/Fresh.md")), QStringList{"/A/Tom's plan.md"});
    EXPECT_EQ(referencedPathOf(inRoot("A/Fresh.md")), "/A/Fresh.md");
}

} // namespace
} // namespace tl::links
