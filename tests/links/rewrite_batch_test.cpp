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
#include "store/plist_file.h"

#include <QDirIterator>

namespace tl::links {
namespace {

using Step = platform::StagedWrites::Step;

// Four documents in two books link into book A/B, which moves to E/B; y.md
// in A/B links to x.md and out to three of them.
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
        makeFile(inRoot("A/B/y.md"), "[x](x.md) [0](../../C/l0.md) [1](../../C/l1.md) "
                                     "[[../../D/l2.md]]");
        tl_refreshBacklinksForReferencedDocuments(inRoot("A/B/y.md"));
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
    // Every properties file by where it is once the book has moved.
    QHash<QString, QByteArray> propertyFiles()
    {
        QHash<QString, QByteArray> found;
        QDirIterator it(root_, {"*.plist"}, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            QString relative = QDir(root_).relativeFilePath(it.next());
            if (relative.startsWith("A/B/"))
                relative.replace(0, 1, "E");
            found.insert(relative, tltest::readFile(it.filePath()));
        }
        return found;
    }
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
    int batch; // 0: the documents, 1: the backlink lists
    Step step;
    int before; // how many of the step's kind ran
    int renamed;
    int listsChanged;
};

class CrashDuringABookMove : public BookMoveBatch, public ::testing::WithParamInterface<Crash>
{
};

TEST_P(CrashDuringABookMove, LeavesEachFileOldOrNewAndTheNextStartFinishes)
{
    const Crash crash = GetParam();
    platform::StagedWrites::setInterruptionForTesting(
        [crash, batch = 0](Step step, int before) mutable {
            const bool stop = batch == crash.batch && step == crash.step && before == crash.before;
            batch += step == Step::Done;
            return stop;
        });
    const QHash<QString, QByteArray> listsBefore = propertyFiles();
    moveBook();
    int renamed = 0;
    for (const Linker &linker : kLinkers) {
        const QByteArray now = text(linker.path);
        EXPECT_TRUE(now == linker.before || now == linker.after)
            << linker.path << ": " << now.toStdString();
        renamed += now == linker.after;
    }
    EXPECT_EQ(renamed, crash.renamed);
    // Until its linkers are on disk the moved item keeps its mismatch, which
    // tells the run at the next start where to look.
    const QHash<QString, QByteArray> listsAtCrash = propertyFiles();

    finishAsAtTheNextStart();
    for (const Linker &linker : kLinkers)
        EXPECT_EQ(text(linker.path), linker.after) << linker.path;
    EXPECT_EQ(referencedPathOf(inRoot("E/B/x.md")), "/E/B/x.md");
    EXPECT_EQ(backlinksOf(inRoot("E/B/x.md")).size(), 5);
    EXPECT_EQ(backlinksOf(inRoot("C/l0.md")), QStringList{"/E/B/y.md"});
    EXPECT_EQ(temporaries(), QStringList());
    const QHash<QString, QByteArray> listsAfter = propertyFiles();
    int listsChanged = 0;
    for (auto it = listsAtCrash.cbegin(); it != listsAtCrash.cend(); ++it) {
        EXPECT_TRUE(it.value() == listsBefore.value(it.key()) ||
                    it.value() == listsAfter.value(it.key()))
            << it.key().toStdString();
        listsChanged += it.value() != listsBefore.value(it.key());
    }
    EXPECT_EQ(listsChanged, crash.listsChanged);
}

INSTANTIATE_TEST_SUITE_P(
    Points, CrashDuringABookMove,
    ::testing::Values(
        Crash{"while staging", 0, Step::Stage, 2, 0, 0},
        Crash{"before the sync", 0, Step::Sync, 0, 0, 0},
        Crash{"before any rename", 0, Step::Replace, 0, 0, 0},
        Crash{"halfway through the renames", 0, Step::Replace, 2, 2, 0},
        Crash{"before the renames reach the disk", 0, Step::SyncReplacements, 0, 4, 0},
        Crash{"before the backlink lists", 0, Step::Done, 0, 4, 0},
        Crash{"while staging the backlink lists", 1, Step::Stage, 2, 4, 0},
        Crash{"halfway through the backlink lists", 1, Step::Replace, 2, 4, 2},
        Crash{"before the backlink lists reach the disk", 1, Step::SyncReplacements, 0, 4, 5},
        Crash{"before the note goes", 1, Step::Done, 0, 4, 5}),
    [](const auto &info) {
        QString name = QString::fromLatin1(info.param.name);
        name.replace(' ', '_');
        return name.toStdString();
    });

TEST_F(BookMoveBatch, AnEditBetweenReadingAndRenamingIsKeptAndItsLinksStillFollow)
{
    // Once the rewritten texts are staged, someone saves C/l0.md.
    platform::StagedWrites::setInterruptionForTesting(
        [this, saved = false](Step step, int) mutable {
            if (step == Step::Sync && !saved)
                tltest::writeFile(inRoot("C/l0.md"), "mine [x](../A/B/x.md)");
            saved = saved || step == Step::Sync;
            return false;
        });
    moveBook();
    EXPECT_EQ(text("C/l0.md"), "mine [x](../E/B/x.md)");
    EXPECT_EQ(text("C/l1.md"), "[x](/E/B/x.md)");
    EXPECT_EQ(temporaries(), QStringList());
}

TEST_F(BookMoveBatch, APropertyWrittenWhileTheBacklinkListsAreHeldIsKept)
{
    // Once the new lists are staged, something else writes C/l0.md's properties.
    platform::StagedWrites::setInterruptionForTesting([this, syncs = 0](Step step, int) mutable {
        if (step == Step::Sync && ++syncs == 2) {
            QVariantMap properties = store::readPlistDictionary(inRoot("C/l0.md.plist"));
            properties.insert("Label", 3);
            store::writePlistFile(inRoot("C/l0.md.plist"), properties, true);
        }
        return false;
    });
    moveBook();
    EXPECT_EQ(store::readPlistDictionary(inRoot("C/l0.md.plist")).value("Label"), 3);
    EXPECT_EQ(backlinksOf(inRoot("C/l0.md")), QStringList{"/E/B/y.md"});
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

TEST_F(BookMoveBatch, PastItsSizeLimitABacklinkBatchIsWrittenInParts)
{
    BacklinkLists lists(platform::StagedWrites::newTag(), 1);
    lists.setReferencedPath(inRoot("C/l0.md"), "/C/moved.md");
    EXPECT_EQ(referencedPathOf(inRoot("C/l0.md")), "/C/moved.md");
    lists.setReferencedPath(inRoot("C/l1.md"), "/C/moved.md");
    EXPECT_TRUE(lists.commit());
    EXPECT_EQ(referencedPathOf(inRoot("C/l1.md")), "/C/moved.md");
}

} // namespace
} // namespace tl::links
