#include "../store/library_fixture.h"
#include "browser/browser_keys.h"
#include "browser/outline_controller.h"
#include "browser/outline_item.h"
#include "browser/smart_books.h"
#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/scheduler.h"
#include "links/backlink_upkeep.h"
#include "links/rename_propagation.h"
#include "platform/alerts.h"
#include "shell/app_state.h"
#include "store/keys.h"
#include "support/event_recorder.h"

#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

using tl::browser::TLKSOutlineItem;
using tl::browser::TLKSOutlineViewController;
namespace S = tl::keys::setting;

class Outline : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        TLKSOutlineItem::rootItem().resetAllChildren();
    }
    void TearDown() override
    {
        TLKSOutlineItem::rootItem().resetAllChildren();
        LibraryTest::TearDown();
    }
    QStringList booksOf(const QString &path)
    {
        TLKSOutlineItem *item =
            path == root_ ? TLKSOutlineItem::booksItem() : TLKSOutlineItem::childAtPath(path);
        return item ? item->titlesOfChildren() : QStringList{"<not in tree>"};
    }
};

TEST_F(Outline, TreeHasTwoGroupsAndOnlyRealBooks)
{
    for (const char *name : {"Beta", "alpha", "Gamma 10", "Gamma 9", "TLImages", "TLResources",
                             ".hidden", "Pages.rtfd", "Odd.plist"})
        makeFolder(inRoot(name));
    makeFile(inRoot("Document.md"));
    // Links count by what they lead to: a dangling one is no book.
    ASSERT_TRUE(QFile::link(inRoot("Beta"), inRoot("Linked")));
    ASSERT_TRUE(QFile::link(inRoot("Gone"), inRoot("Dangling")));
    TLKSOutlineItem &root = TLKSOutlineItem::rootItem();
    ASSERT_EQ(root.numberOfChildren(), 2);
    EXPECT_EQ(root.childAtIndex(0)->title(), "Smart Books");
    EXPECT_EQ(root.childAtIndex(1)->title(), "Books");
    EXPECT_EQ(TLKSOutlineItem::booksItem()->fullPath(), root_);
    EXPECT_EQ(booksOf(root_), (QStringList{"alpha", "Beta", "Gamma 9", "Gamma 10", "Linked"}));
}

TEST_F(Outline, ChildrenFollowTheBooksOrderOfTheirBook)
{
    for (const char *name : {"A", "B", "C"})
        makeFolder(inRoot("Shelf/") + name);
    struct Case
    {
        QVariantMap properties;
        QStringList order;
    };
    const Case cases[] = {
        {{}, {"A", "B", "C"}},
        {{{"sortOrderForNotes", "title"}, {"sortNotesDescending", "YES"}}, {"C", "B", "A"}},
        {{{"sortOrderForNotes", "custom"}, {"Books", QStringList{"B", "C", "A"}}}, {"B", "C", "A"}},
    };
    for (const Case &c : cases) {
        writePlist(inRoot("Shelf/BookProperties.plist"), c.properties);
        TLKSOutlineItem *shelf = TLKSOutlineItem::childAtPath(inRoot("Shelf"));
        ASSERT_NE(shelf, nullptr);
        shelf->sortChildren();
        EXPECT_EQ(shelf->titlesOfChildren(), c.order);
    }
}

TEST_F(Outline, ChildAtPathMatchesCanonicalEquivalents)
{
    const QString composed = QString::fromUtf8("Caf\u00e9");
    makeFolder(inRoot(tl::decomposed(composed) + "/Sub"));
    TLKSOutlineItem *item = TLKSOutlineItem::childAtPath(inRoot(composed + "/Sub"));
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->title(), "Sub");
    EXPECT_EQ(TLKSOutlineItem::childAtPath(inRoot("Missing")), nullptr);
}

TEST_F(Outline, SmartBooksGroupShowsTypesWhoseConditionsHold)
{
    setSetting(S::ContextsEnabled, true);
    setSetting(S::ShowInboxAsSmartBook, true);
    setSetting(S::DefaultInbox, "/Inbox");
    makeFolder(inRoot("Inbox/Sub"));
    QStringList titles = TLKSOutlineItem::smartBooksItem()->titlesOfChildren();
    EXPECT_EQ(titles, (QStringList{"Inbox", "Recent Items", "Recently Modified", "Contexts"}));
    TLKSOutlineItem *inbox = TLKSOutlineItem::smartBookOfType(tl::browser::Inbox);
    EXPECT_EQ(inbox->fullPath(), inRoot("Inbox"));
    EXPECT_EQ(inbox->childAtIndex(0)->fullPath(), inRoot("Inbox/Sub"));

    // Deleting the inbox removes its smart book at the next update.
    QDir(inRoot("Inbox")).removeRecursively();
    TLKSOutlineViewController controller;
    controller.updateSmartBookOfType(tl::browser::Inbox);
    EXPECT_EQ(TLKSOutlineItem::smartBookOfType(tl::browser::Inbox), nullptr);
}

TEST_F(Outline, SmartBookTitles)
{
    const QPair<int, QString> cases[] = {{1, "Context"},
                                         {2, "Search Results"},
                                         {3, "Due Tasks"},
                                         {4, "Favorites"},
                                         {5, "Inbox"},
                                         {6, "All Task Lists"},
                                         {7, "Recent Items"},
                                         {8, "Recently Modified"},
                                         {9, "Hidden Items"},
                                         {10, "Contexts"},
                                         {11, "iCloud Conflicts"},
                                         {12, "UNTITLED SMART BOOK"}};
    for (const auto &[type, title] : cases)
        EXPECT_EQ(tl::browser::titleForSmartBookOfType(type), title) << type;
    EXPECT_FALSE(tl::browser::smartBookShouldExist(tl::browser::HiddenItems));
}

TEST_F(Outline, ExpansionKeepsOnlyTheDeepestOpenPaths)
{
    makeFolder(inRoot("A/B/C"));
    makeFolder(inRoot("D"));
    TLKSOutlineViewController controller;
    TLKSOutlineItem *a = TLKSOutlineItem::childAtPath(inRoot("A"));
    controller.setExpanded(a, true);
    controller.setExpanded(a->childAtIndex(0), true);
    controller.setExpanded(TLKSOutlineItem::childAtPath(inRoot("D")), true);
    controller.setExpanded(TLKSOutlineItem::smartBooksItem(), false);
    EXPECT_EQ(tl::shell::readAppState().value("expandedPaths").toStringList(),
              (QStringList{"TLSmartBooksCollapsed", inRoot("A/B"), inRoot("D")}));

    TLKSOutlineViewController later;
    EXPECT_EQ(later.tl_expandSavedPaths(), (QStringList{inRoot("A"), inRoot("A/B"), inRoot("D")}));
    EXPECT_FALSE(later.isExpanded(TLKSOutlineItem::smartBooksItem()));
}

TEST_F(Outline, NewRootListsOnlyTheSettingsThatDiffer)
{
    auto alerts = std::make_shared<tl::platform::HeadlessAlertPresenter>();
    tl::platform::setAlertPresenter(alerts);
    makeFolder(inRoot("Inbox"));
    writePlist(inRoot("TLResources/Misc/Settings.txt"),
               QVariantMap{{"defaultInbox", "/Inbox"}, {"manageLinks", true}});
    TLKSOutlineViewController controller;
    controller.newRootSelected();
    ASSERT_EQ(alerts->shownAlerts().size(), 1);
    EXPECT_EQ(alerts->shownAlerts()[0].message, "Changed Settings");
    EXPECT_EQ(alerts->shownAlerts()[0].informativeText,
              QString::fromUtf8("Default Inbox: Inbox\nLink Management: Active\n"));
    tl::platform::setAlertPresenter(nullptr);
}

TEST_F(Outline, LinksFollowADocumentMovedByAnotherProgram)
{
    auto &clock = useManualClock(QDateTime(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC));
    setSetting("manageLinks", true);
    makeFile(inRoot("A/x.md"));
    const QString linker = makeFile(inRoot("B/z.md"), "[x](../A/x.md)");
    tl::links::tl_refreshBacklinksForReferencedDocuments(linker);
    TLKSOutlineViewController controller;
    // The file manager moves the document alone; its properties follow it.
    makeFolder(inRoot("C"));
    QFile::rename(inRoot("A/x.md"), inRoot("C/x.md"));
    controller.presentedSubitemAtURLDidMoveToURL(inRoot("A/x.md"), inRoot("C/x.md"));
    clock.advance(1);
    tl::Scheduler::main().runDue();
    tl::links::waitForLinkRewrites();
    EXPECT_EQ(tltest::readFile(linker), "[x](../C/x.md)");
}

TEST_F(Outline, OutsideChangesUpdateTheTreeAndPostEvents)
{
    auto &clock = useManualClock(QDateTime(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC));
    makeFolder(inRoot("Old"));
    TLKSOutlineViewController controller;
    EXPECT_EQ(booksOf(root_), QStringList{"Old"});
    tltest::EventRecorder posted;

    controller.presentedSubitemDidChangeAtURL(makeFolder(inRoot("New")));
    EXPECT_EQ(booksOf(root_), (QStringList{"New", "Old"}));
    EXPECT_EQ(posted.count(tl::events::FileModifiedOnDisk), 1);

    // A document's properties file follows it half a second after the move.
    makeFile(inRoot("Old/doc.md"));
    writePlist(inRoot("Old/doc.md.plist"), QVariantMap{{"cellColor", "red"}});
    QFile::rename(inRoot("Old/doc.md"), inRoot("New/doc.md"));
    controller.presentedSubitemAtURLDidMoveToURL(inRoot("Old/doc.md"), inRoot("New/doc.md"));
    EXPECT_EQ(posted.count(tl::events::FileMoved), 1);
    EXPECT_FALSE(QFileInfo::exists(inRoot("New/doc.md.plist")));
    clock.advance(0.51);
    tl::Scheduler::main().runDue();
    EXPECT_TRUE(QFileInfo::exists(inRoot("New/doc.md.plist")));

    QDir().rename(inRoot("Old"), inRoot("Renamed"));
    controller.selectedBookPath = inRoot("Old");
    controller.presentedSubitemAtURLDidMoveToURL(inRoot("Old"), inRoot("Renamed"));
    EXPECT_EQ(booksOf(root_), (QStringList{"New", "Renamed"}));
    EXPECT_EQ(controller.selectedBookPath, inRoot("Renamed"));
    EXPECT_EQ(posted.count(tl::events::NewBookSelected), 1);

    QDir(inRoot("New")).removeRecursively();
    controller.presentedSubitemDidChangeAtURL(inRoot("New"));
    EXPECT_EQ(booksOf(root_), QStringList{"Renamed"});
    EXPECT_EQ(posted.count(tl::events::FileDeletedFromDisk), 1);

    // A property file of a document updates contexts, not the tree.
    writePlist(inRoot("Renamed/x.md.plist"), QVariantMap{});
    controller.presentedSubitemDidChangeAtURL(inRoot("Renamed/x.md.plist"));
    EXPECT_EQ(booksOf(inRoot("Renamed")), QStringList{});
}

TEST_F(Outline, BooksOrderFromAnotherMachineReordersChildren)
{
    for (const char *name : {"A", "B"})
        makeFolder(inRoot("Shelf/") + name);
    TLKSOutlineViewController controller;
    EXPECT_EQ(booksOf(inRoot("Shelf")), (QStringList{"A", "B"}));
    writePlist(inRoot("Shelf/BookProperties.plist"),
               QVariantMap{{"sortOrderForNotes", "custom"}, {"Books", QStringList{"B", "A"}}});
    controller.presentedSubitemDidChangeAtURL(inRoot("Shelf/BookProperties.plist"));
    EXPECT_EQ(booksOf(inRoot("Shelf")), (QStringList{"B", "A"}));
}

// The real watcher: a move made by another program arrives as one move.
TEST_F(Outline, WatcherDeliversAMoveByAnotherProcessAsOneMove)
{
    makeFolder(inRoot("Book"));
    makeFile(inRoot("Book/a.md"));
    TLKSOutlineViewController controller;
    ASSERT_TRUE(controller.initFileCoordinationAndTaskLists());
    tltest::EventRecorder posted;
    ASSERT_EQ(QProcess::execute("mv", {inRoot("Book/a.md"), inRoot("Book/b.md")}), 0);

    QEventLoop loop;
    QTimer bound;
    bound.setSingleShot(true);
    QObject::connect(&bound, &QTimer::timeout, &loop, &QEventLoop::quit);
    tl::ScopedObserver moved(tl::events::FileMoved,
                             [&](const QString &, const QVariantMap &) { loop.quit(); });
    bound.start(5000);
    loop.exec();
    ASSERT_EQ(posted.count(tl::events::FileMoved), 1);
    EXPECT_EQ(posted.count(tl::events::FileDeletedFromDisk), 0);
    const QVariantMap move = posted.named(tl::events::FileMoved)[0].payload;
    EXPECT_EQ(move.value("originalPath"), inRoot("Book/a.md"));
    EXPECT_EQ(move.value("newPath"), inRoot("Book/b.md"));
}

TEST_F(Outline, BurstOfChangesEndsInOneSmartBookUpdate)
{
    auto &clock = useManualClock(QDateTime(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC));
    makeFolder(inRoot("Book"));
    TLKSOutlineViewController controller;
    TLKSOutlineItem::smartBooksItem()->children();
    const QString doc = makeFile(inRoot("Book/a.md"));
    for (int i = 0; i < 5; ++i)
        controller.presentedSubitemDidChangeAtURL(doc);
    setSetting(S::ContextsEnabled, true);
    clock.advance(0.31);
    EXPECT_EQ(tl::Scheduler::main().runDue(), 1);
    EXPECT_NE(TLKSOutlineItem::smartBookOfType(tl::browser::Contexts), nullptr);
}

} // namespace
