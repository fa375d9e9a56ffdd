#include "foundation/path_string.h"
#include "links/backlink_upkeep.h"
#include "links/backlinks.h"
#include "links/link_jobs.h"
#include "links/rename_propagation.h"
#include "links/rewrite_journal.h"
#include "platform/alerts.h"
#include "platform/file_ops.h"
#include "store/item_operations.h"
#include "store/library_fixture.h"

#include <QFileInfo>

namespace tl::links {
namespace {

class RenamePropagation : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        setSetting("manageLinks", true);
        registerLinkJobs();
    }
    QString doc(const QString &relative, const QByteArray &text = "text")
    {
        return makeFile(inRoot(relative), text);
    }
    // Shows every document once, as the window does, so backlinks are known.
    void showAll(const QStringList &documents)
    {
        for (const QString &d : documents)
            tl_refreshBacklinksForReferencedDocuments(inRoot(d));
    }
    bool move(const QString &from, const QString &to)
    {
        makeFolder(path::deletingLastComponent(inRoot(to)));
        const bool moved = store::tl_moveItemToPath(inRoot(from), inRoot(to));
        waitForLinkRewrites();
        return moved;
    }
    QByteArray text(const QString &relative) { return tltest::readFile(inRoot(relative)); }
};

TEST_F(RenamePropagation, MutualLinksSurviveARenameOfEither)
{
    doc("A/x.md", "[y](../B/y.md)");
    doc("B/y.md", "[x](../A/x.md) [[/A/x.md]]");
    showAll({"A/x.md", "B/y.md"});
    ASSERT_TRUE(move("A/x.md", "A/x2.md"));
    EXPECT_EQ(text("B/y.md"), "[x](../A/x2.md) [[/A/x2.md]]");
    EXPECT_EQ(backlinksOf(inRoot("B/y.md")), QStringList{"/A/x2.md"});
    ASSERT_TRUE(move("B/y.md", "C/y.md"));
    EXPECT_EQ(text("A/x2.md"), "[y](../C/y.md)");
    EXPECT_EQ(text("C/y.md"), "[x](../A/x2.md) [[/A/x2.md]]");
    EXPECT_EQ(backlinksOf(inRoot("A/x2.md")), QStringList{"/C/y.md"});
    EXPECT_EQ(referencedPathOf(inRoot("C/y.md")), "/C/y.md");
}

TEST_F(RenamePropagation, ABookMoveRewritesLinkersInsideAndOutside)
{
    doc("A/B/x.md", "[s](sib.md) [o](../../C/out.md)");
    doc("A/B/sib.md", "[x](/A/B/x.md)");
    doc("C/out.md", "[x](../A/B/x.md) [s](/A/B/sib.md)");
    showAll({"A/B/x.md", "A/B/sib.md", "C/out.md"});
    ASSERT_TRUE(move("A/B", "D/B2"));
    EXPECT_EQ(text("C/out.md"), "[x](../D/B2/x.md) [s](/D/B2/sib.md)");
    EXPECT_EQ(text("D/B2/sib.md"), "[x](/D/B2/x.md)");
    EXPECT_EQ(text("D/B2/x.md"), "[s](sib.md) [o](../../C/out.md)");
    EXPECT_EQ(backlinksOf(inRoot("D/B2/x.md")), (QStringList{"/D/B2/sib.md", "/C/out.md"}));
    EXPECT_EQ(backlinksOf(inRoot("C/out.md")), QStringList{"/D/B2/x.md"});
    EXPECT_EQ(referencedPathOf(inRoot("D/B2/x.md")), "/D/B2/x.md");
}

TEST_F(RenamePropagation, AskingFirstUpdatesOrLetsTheBacklinksGo)
{
    auto presenter = std::make_shared<platform::HeadlessAlertPresenter>();
    platform::setAlertPresenter(presenter);
    doc("A/x.md");
    doc("B/z.md", "[x](../A/x.md)");
    showAll({"B/z.md"});
    QFile::rename(inRoot("A/x.md"), inRoot("A/y.md"));
    QFile::rename(inRoot("A/x.md.plist"), inRoot("A/y.md.plist"));
    presenter->pushAnswer(1);
    tl_askToAdjustLinksAndBacklinksAfterRenameFrom(inRoot("A/x.md"), inRoot("A/y.md"));
    waitForLinkRewrites();
    ASSERT_EQ(presenter->shownAlerts().size(), 1);
    EXPECT_EQ(presenter->shownAlerts()[0].informativeText,
              "One document is linking to this document.\nDo you want to update the links?");
    EXPECT_EQ(text("B/z.md"), "[x](../A/x.md)");
    EXPECT_TRUE(backlinksOf(inRoot("A/y.md")).isEmpty());
    platform::setAlertPresenter(nullptr);
}

TEST_F(RenamePropagation, ACopyIsNoRename)
{
    doc("A/x.md");
    doc("B/z.md", "[x](../A/x.md)");
    showAll({"B/z.md"});
    doc("A/x copy.md");
    tl_adjustLinksAndBacklinksAfterRenameFrom(inRoot("A/x.md"), inRoot("A/x copy.md"));
    waitForLinkRewrites();
    EXPECT_EQ(text("B/z.md"), "[x](../A/x.md)");
}

TEST_F(RenamePropagation, AMoveMadeByAnotherProgramIsRepaired)
{
    doc("A/x.md");
    doc("B/z.md", "[x](../A/x.md)");
    showAll({"B/z.md"});
    QFile::rename(inRoot("A/x.md"), inRoot("A/moved.md"));
    QFile::rename(inRoot("A/x.md.plist"), inRoot("A/moved.md.plist"));
    const CheckReport found = tl_findBrokenBacklinksSilently(root_, true, false, false);
    EXPECT_EQ(found.message, "One Broken Backlink Found");
    repairAfterCollection(inRoot("A/moved.md"));
    waitForLinkRewrites();
    EXPECT_EQ(text("B/z.md"), "[x](../A/moved.md)");
    EXPECT_EQ(tl_findBrokenBacklinksSilently(root_, true, false, false).message,
              "No Broken Backlinks");
}

TEST_F(RenamePropagation, ABookMovedByAnotherProgramIsRepairedFromItsStoredPath)
{
    doc("A/B/x.md");
    doc("C/out.md", "[x](../A/B/x.md)");
    showAll({"C/out.md"});
    setReferencedPath(inRoot("A/B"), "/A/B");
    QDir().rename(inRoot("A"), inRoot("E"));
    tl_findBrokenBacklinksSilently(root_, true, true, false);
    waitForLinkRewrites();
    EXPECT_EQ(text("C/out.md"), "[x](../E/B/x.md)");
}

TEST_F(RenamePropagation, RemovingEveryBacklink)
{
    doc("A/x.md");
    doc("B/z.md", "[x](../A/x.md)");
    showAll({"B/z.md"});
    EXPECT_EQ(tl_findBrokenBacklinksSilently(root_, true, false, true).message,
              "Removed Backlinks from 2 Documents");
    EXPECT_TRUE(backlinksOf(inRoot("A/x.md")).isEmpty());
}

TEST_F(RenamePropagation, RefreshSinceTheLastOnlyReadsChangedDocuments)
{
    auto &clock = useManualClock(QDateTime(QDate(2026, 1, 1), QTime(9, 0), Qt::UTC));
    platform::setModificationDate(doc("A/x.md"), oldDate());
    platform::setModificationDate(doc("B/old.md", "[x](../A/x.md)"), oldDate());
    EXPECT_EQ(tl_refreshAllBacklinksStartingAtReferenceDate(root_, true).message,
              "One link found in 2 Documents");
    clock.advance(60);
    doc("B/new.md", "[x](../A/x.md) [o](old.md)");
    const RefreshReport again = tl_refreshAllBacklinksStartingAtReferenceDate(root_, true);
    EXPECT_EQ(again.message, "Found 2 Links in one document");
    EXPECT_EQ(backlinksOf(inRoot("A/x.md")), (QStringList{"/B/old.md", "/B/new.md"}));
}

TEST_F(RenamePropagation, SavingAddsAndDropsBacklinks)
{
    doc("A/x.md");
    doc("A/y.md");
    const QString d = doc("B/d.md", "[x](../A/x.md)");
    QStringList refs = backlinksAfterSave(d, {}, {});
    EXPECT_EQ(backlinksOf(inRoot("A/x.md")), QStringList{"/B/d.md"});
    tltest::writeFile(d, "[y](../A/y.md)");
    refs = backlinksAfterSave(d, refs, {});
    EXPECT_EQ(refs, QStringList{"/A/y.md"});
    EXPECT_TRUE(backlinksOf(inRoot("A/x.md")).isEmpty());
    EXPECT_EQ(backlinksOf(inRoot("A/y.md")), QStringList{"/B/d.md"});
}

TEST_F(RenamePropagation, ARewriteInterruptedByACrashIsFinishedAtTheNextStart)
{
    doc("A/x.md");
    doc("B/z.md", "[x](../A/x.md)");
    doc("B/w.md", "[x](/A/x.md)");
    showAll({"B/z.md", "B/w.md"});
    // The move happened and was noted, then the process died before the
    // rewrite: one linker done, one not.
    QFile::rename(inRoot("A/x.md"), inRoot("A/y.md"));
    QFile::rename(inRoot("A/x.md.plist"), inRoot("A/y.md.plist"));
    beginRewrite({PendingRewrite::Kind::Document, inRoot("A/x.md"), inRoot("A/y.md"), {}});
    tltest::writeFile(inRoot("B/z.md"), "[x](../A/y.md)");

    EXPECT_EQ(finishInterruptedRewrites().size(), 1);
    waitForLinkRewrites();
    EXPECT_EQ(text("B/z.md"), "[x](../A/y.md)");
    EXPECT_EQ(text("B/w.md"), "[x](/A/y.md)");
    EXPECT_TRUE(unfinishedRewrites().isEmpty());
}

} // namespace
} // namespace tl::links
