#include "foundation/events.h"
#include "library_fixture.h"
#include "platform/alerts.h"
#include "store/keys.h"
#include "store/trash_operations.h"
#include "support/event_recorder.h"

#include <QFileInfo>

namespace tl::store {
namespace {

namespace P = keys::property;
using tltest::PostedEvent;

class TrashOperations : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        presenter_ = std::make_shared<platform::HeadlessAlertPresenter>();
        platform::setAlertPresenter(presenter_);
        makeFile(inRoot("Book/A.md"), "a");
        writePlist(inRoot("Book/A.md.plist"), QVariantMap{{P::Description, "A"}});
        makeFile(inRoot("Book/B.md"), "b");
    }
    void TearDown() override
    {
        platform::setAlertPresenter(nullptr);
        LibraryTest::TearDown();
    }
    std::shared_ptr<platform::HeadlessAlertPresenter> presenter_;
};

TEST_F(TrashOperations, TheItemAndItsPropertiesFileGoTogetherAndComeBack)
{
    tltest::EventRecorder recorder;
    const std::optional<TrashedItem> trashed = tl_moveItemToTrash(inRoot("Book/A.md"));
    ASSERT_TRUE(trashed);
    EXPECT_FALSE(QFileInfo::exists(inRoot("Book/A.md")));
    EXPECT_FALSE(QFileInfo::exists(inRoot("Book/A.md.plist")));
    EXPECT_EQ(tltest::readFile(trashed->itemInTrash), "a");
    EXPECT_EQ(readPlist(trashed->propertiesInTrash).value(P::Description), "A");
    EXPECT_EQ(recorder.events(),
              (QList<PostedEvent>{{events::FileDeletedFromDisk, {{"path", inRoot("Book/A.md")}}}}));

    ASSERT_TRUE(tl_restoreTrashedItem(*trashed));
    EXPECT_EQ(tltest::readFile(inRoot("Book/A.md")), "a");
    EXPECT_EQ(readPlist(inRoot("Book/A.md.plist")).value(P::Description), "A");
}

TEST_F(TrashOperations, AnItemWithoutPropertiesFile)
{
    const std::optional<TrashedItem> trashed = tl_moveItemToTrash(inRoot("Book/B.md"));
    ASSERT_TRUE(trashed);
    EXPECT_TRUE(trashed->propertiesInTrash.isEmpty());
    EXPECT_FALSE(tl_moveItemToTrash(inRoot("Book/Missing.md")));
}

TEST_F(TrashOperations, TheConfirmation)
{
    const struct
    {
        const char *name;
        QStringList paths;
        bool suppress;
        int answer;
        QStringList messages;
        qsizetype trashed;
    } cases[] = {
        {"one item", {inRoot("Book/A.md")}, false, 0, {"Delete \"A.md\"?"}, 1},
        {"cancelled", {inRoot("Book/A.md")}, false, 1, {"Delete \"A.md\"?"}, 0},
        {"several",
         {inRoot("Book/A.md"), inRoot("Book/B.md")},
         false,
         0,
         {"Delete selected Items?"},
         2},
        {"suppressed", {inRoot("Book/A.md")}, true, 1, {}, 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        presenter_ = std::make_shared<platform::HeadlessAlertPresenter>();
        platform::setAlertPresenter(presenter_);
        presenter_->pushAnswer(c.answer);
        setSetting("SuppressWarningBeforeDelete", c.suppress);
        const QList<TrashedItem> trashed = moveItemsToTrashAfterConfirmation(c.paths);
        QStringList messages;
        for (const platform::Alert &alert : presenter_->shownAlerts())
            messages << alert.message;
        EXPECT_EQ(messages, c.messages);
        EXPECT_EQ(trashed.size(), c.trashed);
        for (const TrashedItem &item : trashed)
            EXPECT_TRUE(tl_restoreTrashedItem(item));
        EXPECT_TRUE(QFileInfo::exists(inRoot("Book/A.md")));
    }
}

TEST_F(TrashOperations, WhatCannotBeTrashedIsDeletedOnlyWhenTheUserSaysSo)
{
    // A missing item can't be trashed: the permanent deletion is offered.
    presenter_->pushAnswer(0);
    presenter_->pushAnswer(1);
    EXPECT_TRUE(moveItemsToTrashAfterConfirmation({inRoot("Book/Gone.md")}).isEmpty());
    ASSERT_EQ(presenter_->shownAlerts().size(), 2);
    const platform::Alert offer = presenter_->shownAlerts()[1];
    EXPECT_EQ(offer.message, "Permanently delete?");
    EXPECT_EQ(offer.informativeText, "Items cannot be moved to the trash, so they will be "
                                     "permanently deleted.\nYou cannot undo this action.");
    EXPECT_EQ(offer.buttons, (QStringList{"Delete", "Cancel"}));
}

} // namespace
} // namespace tl::store
