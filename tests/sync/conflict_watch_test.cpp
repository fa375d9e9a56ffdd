#include "foundation/scheduler.h"
#include "store/library_fixture.h"
#include "sync/conflict_watch.h"

#include <QFileInfo>
#include <gtest/gtest.h>

using namespace tl::sync;

namespace {

class ConflictWatchTest : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        makeFolder(inRoot(".stfolder"));
    }
    void runReport(tl::ManualClock &clock)
    {
        clock.advance(kReportDelaySeconds);
        tl::Scheduler::main().runDue();
    }
    QVariantList unresolved() const
    {
        return tl::platform::settings().array("iCloudArrayOfUnresolvedConflicts");
    }
};

TEST_F(ConflictWatchTest, ArrivingCopiesAreSettledOrListedAMomentLater)
{
    tl::ManualClock &clock = useManualClock(oldDate());
    ConflictWatch watch(root_);
    ASSERT_TRUE(watch.isActive());
    runReport(clock);

    writePlist(inRoot("Book/TLTasklistDetails.plist"), QVariantMap{{"a.md", QVariantMap{}}});
    const QString taskCopy =
        inRoot("Book/TLTasklistDetails.sync-conflict-20240302-090000-ABCD123.plist");
    writePlist(taskCopy, QVariantMap{{"b.md", QVariantMap{}}});
    makeFile(inRoot("Note.md"));
    const QString noteCopy = makeFile(inRoot("Note.sync-conflict-20240302-090000-ABCD123.md"));
    watch.itemChanged(taskCopy);
    watch.itemChanged(noteCopy);
    EXPECT_TRUE(unresolved().isEmpty());

    runReport(clock);
    EXPECT_FALSE(QFileInfo::exists(taskCopy));
    EXPECT_TRUE(readPlist(inRoot("Book/TLTasklistDetails.plist")).contains("b.md"));
    EXPECT_EQ(unresolved(), QVariantList{"/Note.md"});
}

TEST_F(ConflictWatchTest, OrdinaryChangesBringNoReport)
{
    tl::ManualClock &clock = useManualClock(oldDate());
    ConflictWatch watch(root_);
    runReport(clock);
    watch.itemChanged(makeFile(inRoot("Note.sync-conflict-ABCD123.md")));
    watch.itemChanged(makeFile(inRoot(".syncthing.Note.md.tmp")));
    clock.advance(kReportDelaySeconds);
    EXPECT_EQ(tl::Scheduler::main().runDue(), 0);
}

} // namespace
