#include "foundation/path_string.h"
#include "links/backlink_upkeep.h"
#include "links/backlinks.h"
#include "links/link_jobs.h"
#include "links/rename_propagation.h"
#include "links/rewrite_batch.h"
#include "links/rewrite_journal.h"
#include "platform/staged_writes.h"
#include "store/item_operations.h"
#include "store/library_fixture.h"

#include <QDirIterator>

namespace tl::links {
namespace {

using Step = platform::StagedWrites::Step;

// Four documents in two books link into book A/B, which moves to E/B.
struct Linker
{
    const char *path;
    QByteArray before;
    QByteArray after;
};
const Linker kLinkers[] = {
    {"C/l0.md", "[x](../A/B/x.md)", "[x](../E/B/x.md)"},
    {"C/l1.md", "[x](/A/B/x.md)", "[x](/E/B/x.md)"},
    {"D/l2.md", "[[../A/B/x.md]]", "[[../E/B/x.md]]"},
    {"D/l3.md", "see [x](../A/B/x.md#top)", "see [x](../E/B/x.md#top)"},
};

class BookMoveBatch : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        setSetting("manageLinks", true);
        registerLinkJobs();
        makeFile(inRoot("A/B/x.md"), "x");
        for (const Linker &linker : kLinkers) {
            makeFile(inRoot(linker.path), linker.before);
            tl_refreshBacklinksForReferencedDocuments(inRoot(linker.path));
        }
    }
    void TearDown() override
    {
        platform::StagedWrites::setInterruptionForTesting({});
        LibraryTest::TearDown();
    }
    void moveBook()
    {
        makeFolder(inRoot("E"));
        ASSERT_TRUE(store::tl_moveItemToPath(inRoot("A/B"), inRoot("E/B")));
        waitForLinkRewrites();
    }
    void finishAsAtTheNextStart()
    {
        platform::StagedWrites::setInterruptionForTesting({});
        EXPECT_EQ(finishInterruptedRewrites().size(), 1);
        waitForLinkRewrites();
        EXPECT_TRUE(unfinishedRewrites().isEmpty());
    }
    QByteArray text(const char *relative) { return tltest::readFile(inRoot(relative)); }
    QStringList temporaries()
    {
        QStringList found;
        QDirIterator it(root_, {"*.tmp"}, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext())
            found << it.next();
        return found;
    }
};

struct Crash
{
    const char *name;
    Step step;
    int before; // how many of the step's kind ran
    int renamed;
};

class CrashDuringABookMove : public BookMoveBatch, public ::testing::WithParamInterface<Crash>
{
};

TEST_P(CrashDuringABookMove, LeavesEachDocumentOldOrNewAndTheNextStartFinishes)
{
    const Crash crash = GetParam();
    platform::StagedWrites::setInterruptionForTesting(
        [crash](Step step, int before) { return step == crash.step && before == crash.before; });
    moveBook();
    int renamed = 0;
    for (const Linker &linker : kLinkers) {
        const QByteArray now = text(linker.path);
        EXPECT_TRUE(now == linker.before || now == linker.after)
            << linker.path << ": " << now.toStdString();
        renamed += now == linker.after;
    }
    EXPECT_EQ(renamed, crash.renamed);
    // The moved item keeps its mismatch until its linkers are on disk.
    EXPECT_EQ(referencedPathOf(inRoot("E/B/x.md")), "/A/B/x.md");

    finishAsAtTheNextStart();
    for (const Linker &linker : kLinkers)
        EXPECT_EQ(text(linker.path), linker.after) << linker.path;
    EXPECT_EQ(referencedPathOf(inRoot("E/B/x.md")), "/E/B/x.md");
    EXPECT_EQ(backlinksOf(inRoot("E/B/x.md")).size(), 4);
    EXPECT_EQ(temporaries(), QStringList());
}

INSTANTIATE_TEST_SUITE_P(
    Points, CrashDuringABookMove,
    ::testing::Values(Crash{"while staging", Step::Stage, 2, 0},
                      Crash{"before the sync", Step::Sync, 0, 0},
                      Crash{"before any rename", Step::Replace, 0, 0},
                      Crash{"halfway through the renames", Step::Replace, 2, 2},
                      Crash{"before the renames reach the disk", Step::SyncReplacements, 0, 4},
                      Crash{"before the backlink lists", Step::Done, 0, 4}),
    [](const auto &info) {
        QString name = QString::fromLatin1(info.param.name);
        name.replace(' ', '_');
        return name.toStdString();
    });

TEST_F(BookMoveBatch, AnEditBetweenReadingAndRenamingIsKeptAndItsLinksStillFollow)
{
    // Once the rewritten texts are staged, someone saves C/l0.md.
    platform::StagedWrites::setInterruptionForTesting([this](Step step, int) {
        if (step == Step::Sync)
            tltest::writeFile(inRoot("C/l0.md"), "mine [x](../A/B/x.md)");
        return false;
    });
    moveBook();
    EXPECT_EQ(text("C/l0.md"), "mine [x](../E/B/x.md)");
    EXPECT_EQ(text("C/l1.md"), "[x](/E/B/x.md)");
    EXPECT_EQ(temporaries(), QStringList());
}

TEST_F(BookMoveBatch, AnEditAfterACrashIsKeptByTheRunThatFinishes)
{
    platform::StagedWrites::setInterruptionForTesting(
        [](Step step, int) { return step == Step::Replace; });
    moveBook();
    ASSERT_EQ(temporaries().size(), 4);
    tltest::writeFile(inRoot("C/l0.md"), "mine [x](../E/B/x.md)");
    finishAsAtTheNextStart();
    EXPECT_EQ(text("C/l0.md"), "mine [x](../E/B/x.md)");
    EXPECT_EQ(text("D/l2.md"), "[[../E/B/x.md]]");
    EXPECT_EQ(temporaries(), QStringList());
}

TEST_F(BookMoveBatch, PastItsSizeLimitABatchIsWrittenInParts)
{
    RewriteBatch batch({}, 1);
    EXPECT_TRUE(batch.renameLinks(inRoot("C/l0.md"), inRoot("A/B"), inRoot("E/B")));
    EXPECT_EQ(text("C/l0.md"), kLinkers[0].after);
    EXPECT_TRUE(batch.renameLinks(inRoot("C/l1.md"), inRoot("A/B"), inRoot("E/B")));
    EXPECT_TRUE(batch.commit());
    EXPECT_EQ(text("C/l1.md"), kLinkers[1].after);
}

} // namespace
} // namespace tl::links
