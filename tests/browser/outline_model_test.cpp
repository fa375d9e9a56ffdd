#include "../store/library_fixture.h"
#include "browser/outline_controller.h"
#include "browser/outline_item.h"
#include "browser/outline_model.h"
#include "browser/smart_books.h"
#include "foundation/scheduler.h"
#include "model_test_support.h"
#include "platform/file_ops.h"
#include "platform/file_watcher.h"

#include <QMimeData>
#include <QPersistentModelIndex>
#include <QUrl>

namespace {

using tl::browser::OutlineModel;
using tl::browser::TLKSOutlineItem;
using tl::browser::TLKSOutlineViewController;

class OutlineModelTest : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        TLKSOutlineItem::rootItem().resetAllChildren();
        for (const char *name : {"Alpha", "Beta", "Gamma", "Beta/Inner", "Beta/Other"})
            makeFolder(inRoot(name));
        controller = std::make_unique<TLKSOutlineViewController>();
        model = &controller->model();
        openEverything(QModelIndex());
        checked = std::make_unique<tltest::CheckedModel>(model);
    }
    void TearDown() override
    {
        checked.reset();
        controller.reset();
        TLKSOutlineItem::rootItem().resetAllChildren();
        LibraryTest::TearDown();
        EXPECT_TRUE(tltest::CheckedModel::complaints().isEmpty())
            << tltest::CheckedModel::complaints().join("\n").toStdString();
    }
    // What a view does when every row is opened.
    void openEverything(const QModelIndex &parent)
    {
        for (int row = 0; row < model->rowCount(parent); ++row)
            openEverything(model->index(row, 0, parent));
    }
    QStringList titlesBelow(const QString &path)
    {
        const QModelIndex parent = model->indexForPath(path);
        QStringList titles;
        for (int row = 0; row < model->rowCount(parent); ++row)
            titles << model->index(row, 0, parent).data().toString();
        return titles;
    }
    void moveOnDisk(const QString &from, const QString &to)
    {
        ASSERT_TRUE(tl::platform::moveItem(from, to));
        controller->presentedSubitemAtURLDidMoveToURL(from, to);
    }

    std::unique_ptr<TLKSOutlineViewController> controller;
    OutlineModel *model = nullptr;
    std::unique_ptr<tltest::CheckedModel> checked;
};

TEST_F(OutlineModelTest, RowsFindTheirPathsAndRoles)
{
    const QModelIndex beta = model->indexForPath(inRoot("Beta"));
    ASSERT_TRUE(beta.isValid());
    EXPECT_EQ(beta.data().toString(), "Beta");
    EXPECT_EQ(beta.data(OutlineModel::PathRole).toString(), inRoot("Beta"));
    EXPECT_EQ(model->indexForPath(root_).data().toString(), "BOOKS");
    EXPECT_EQ(model->indexForPath(root_).data(OutlineModel::GroupRole).toInt(), 2);
    const QModelIndex recent = model->smartBookIndex(tl::browser::RecentItems);
    ASSERT_TRUE(recent.isValid());
    EXPECT_EQ(recent.data(OutlineModel::IconRole).toString(), "icon-book-recent-items");
    EXPECT_TRUE(model->flags(beta) & Qt::ItemIsDropEnabled);
    EXPECT_FALSE(model->flags(recent) & Qt::ItemIsDropEnabled);
    // A smart book that lists documents only shows no disclosure; an
    // unopened book does.
    EXPECT_FALSE(model->hasChildren(recent));
    EXPECT_TRUE(model->hasChildren(beta));
}

TEST_F(OutlineModelTest, ANewFolderIsInsertedInItsPlace)
{
    const QPersistentModelIndex gamma = model->indexForPath(inRoot("Gamma"));
    makeFolder(inRoot("Delta"));
    controller->presentedSubitemDidChangeAtURL(inRoot("Delta"));
    EXPECT_EQ(titlesBelow(root_), (QStringList{"Alpha", "Beta", "Delta", "Gamma"}));
    EXPECT_EQ(checked->resets, 0);
    EXPECT_GE(checked->inserted, 1);
    EXPECT_EQ(gamma.data(OutlineModel::PathRole).toString(), inRoot("Gamma"))
        << "rows around it keep their identity";
}

TEST_F(OutlineModelTest, ARenamedBookMovesToItsNewPlaceKeepingItsRow)
{
    const QPersistentModelIndex alpha = model->indexForPath(inRoot("Alpha"));
    moveOnDisk(inRoot("Alpha"), inRoot("Zeta"));
    EXPECT_EQ(titlesBelow(root_), (QStringList{"Beta", "Gamma", "Zeta"}));
    EXPECT_EQ(checked->resets, 0);
    EXPECT_GE(checked->moved, 1);
    ASSERT_TRUE(alpha.isValid());
    EXPECT_EQ(alpha.data(OutlineModel::PathRole).toString(), inRoot("Zeta"));
}

TEST_F(OutlineModelTest, ABookMovedIntoAnotherBookKeepsItsOpenedChildren)
{
    const QPersistentModelIndex beta = model->indexForPath(inRoot("Beta"));
    moveOnDisk(inRoot("Beta"), inRoot("Gamma/Beta"));
    EXPECT_EQ(titlesBelow(root_), (QStringList{"Alpha", "Gamma"}));
    EXPECT_EQ(titlesBelow(inRoot("Gamma")), QStringList{"Beta"});
    EXPECT_EQ(titlesBelow(inRoot("Gamma/Beta")), (QStringList{"Inner", "Other"}));
    EXPECT_EQ(checked->resets, 0);
    ASSERT_TRUE(beta.isValid());
    EXPECT_EQ(beta.parent(), model->indexForPath(inRoot("Gamma")));
}

TEST_F(OutlineModelTest, ADeletedFolderIsRemoved)
{
    ASSERT_TRUE(tl::platform::removeItem(inRoot("Beta/Inner")));
    controller->presentedSubitemDidChangeAtURL(inRoot("Beta/Inner"));
    EXPECT_EQ(titlesBelow(inRoot("Beta")), QStringList{"Other"});
    EXPECT_EQ(checked->removed, 1);
    EXPECT_EQ(checked->resets, 0);
}

TEST_F(OutlineModelTest, LostEventsReadTheDiskAgainKeepingRowsThatStayed)
{
    const QPersistentModelIndex other = model->indexForPath(inRoot("Beta/Other"));
    makeFolder(inRoot("Beta/Added"));
    ASSERT_TRUE(tl::platform::removeItem(inRoot("Alpha")));
    tl::platform::FileWatchReport report;
    report.kind = tl::platform::FileWatchReport::Kind::Rescanned;
    controller->handleWatchReport(report);
    EXPECT_EQ(titlesBelow(root_), (QStringList{"Beta", "Gamma"}));
    EXPECT_EQ(titlesBelow(inRoot("Beta")), (QStringList{"Added", "Inner", "Other"}));
    EXPECT_EQ(checked->resets, 0);
    ASSERT_TRUE(other.isValid());
    EXPECT_EQ(other.data(OutlineModel::PathRole).toString(), inRoot("Beta/Other"));
}

TEST_F(OutlineModelTest, ANewOrderOfABookMovesItsRows)
{
    writePlist(inRoot("BookProperties.plist"),
               QVariantMap{{"sortOrderForNotes", "custom"},
                           {"Books", QStringList{"Gamma", "Alpha", "Beta"}}});
    controller->presentedSubitemDidChangeAtURL(inRoot("BookProperties.plist"));
    EXPECT_EQ(titlesBelow(root_), (QStringList{"Gamma", "Alpha", "Beta"}));
    EXPECT_EQ(checked->resets, 0);
    EXPECT_GE(checked->moved, 1);
}

TEST_F(OutlineModelTest, DroppedItemsMoveInFromTheLibraryAndAreCopiedFromElsewhere)
{
    const QString inside = makeFile(inRoot("Alpha/Note.md"));
    const QString elsewhere = makeFile(outside("Paper.txt"));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(inside), QUrl::fromLocalFile(elsewhere)});
    const QModelIndex gamma = model->indexForPath(inRoot("Gamma"));
    ASSERT_TRUE(model->canDropMimeData(&data, Qt::MoveAction, -1, 0, gamma));
    ASSERT_TRUE(model->dropMimeData(&data, Qt::MoveAction, -1, 0, gamma));
    EXPECT_FALSE(QFileInfo::exists(inside));
    EXPECT_TRUE(QFileInfo::exists(inRoot("Gamma/Note.md")));
    EXPECT_TRUE(QFileInfo::exists(elsewhere)) << "the original outside stays";
    EXPECT_TRUE(QFileInfo::exists(inRoot("Gamma/Paper.txt")));

    QMimeData itself;
    itself.setUrls({QUrl::fromLocalFile(inRoot("Gamma"))});
    EXPECT_FALSE(model->dropMimeData(&itself, Qt::MoveAction, -1, 0, gamma))
        << "a book never goes into itself";
}

TEST_F(OutlineModelTest, ANewLibraryResetsTheTree)
{
    controller->newRootSelected();
    EXPECT_EQ(checked->resets, 1);
    // The new library's set-up may ask for all panes after an unclean exit.
    tl::Scheduler::main().cancel("showAllPanes");
}

TEST_F(OutlineModelTest, TaskListsCarryTheirOpenAndOverdueCounts)
{
    const QString beta = inRoot("Beta");
    for (const char *name : {"Open.md", "Late.md", "Done.md"})
        makeFile(beta + "/" + name);
    const QDateTime past = QDateTime::currentDateTimeUtc().addDays(-2);
    writePlist(beta + "/TLTasklistDetails.plist",
               QVariantMap{{"__DueItemCount__", "1"},
                           {"__DoneItemCount__", "1"},
                           {"Late.md", QVariantMap{{"DueDate", past}}},
                           {"Done.md", QVariantMap{{"State", "done"}}}});
    EXPECT_EQ(model->indexForPath(beta).data(OutlineModel::BadgeRole),
              QVariant(QVariantList{2, 1}));
    EXPECT_FALSE(model->indexForPath(inRoot("Alpha")).data(OutlineModel::BadgeRole).isValid());

    // The row is counted anew when its task list changes.
    makeFile(beta + "/New.md");
    controller->presentedSubitemDidChangeAtURL(beta + "/New.md");
    EXPECT_EQ(model->indexForPath(beta).data(OutlineModel::BadgeRole),
              QVariant(QVariantList{3, 1}));
}

} // namespace
