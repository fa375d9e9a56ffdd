#include "platform/trash.h"
#include "store/library_fixture.h"
#include "sync/resolution.h"
#include "sync/sync_sources.h"

#include <QFileInfo>
#include <gtest/gtest.h>

using namespace tl::sync;

namespace {

class ReportTest : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        makeFolder(inRoot(".stfolder"));
    }

    static void setModified(const QString &path, const QDateTime &date)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(date, QFileDevice::FileModificationTime));
    }
    static bool trashed(const QString &name)
    {
        return QFileInfo::exists(tl::platform::trashFilesFolder() + "/" + name);
    }
    ReportOutcome evaluate(bool settle = true)
    {
        const auto source = syncSourceForLibrary(root_);
        EXPECT_EQ(source->name(), "Syncthing");
        return tl_fileListReceived(*source, settle);
    }

    const QDateTime early{QDate(2024, 3, 1), QTime(9, 0), Qt::UTC};
    const QDateTime late{QDate(2024, 3, 2), QTime(9, 0), Qt::UTC};
};

TEST_F(ReportTest, TaskDetailsAreMergedAndTheCopyGoesToTheTrash)
{
    const QString plist = inRoot("Book/TLTasklistDetails.plist");
    makeFile(inRoot("Book/a.md"));
    writePlist(plist, QVariantMap{{"a.md", QVariantMap{{"State", "started"}, {"Changed", early}}}});
    const QString copy = "TLTasklistDetails.sync-conflict-20240302-090000-ABCD123.plist";
    writePlist(inRoot("Book/" + copy),
               QVariantMap{{"a.md", QVariantMap{{"State", "done"}, {"Changed", late}}},
                           {"b.md", QVariantMap{{"State", "started"}}}});

    const ReportOutcome outcome = evaluate();

    EXPECT_EQ(outcome.settled, QStringList{plist});
    EXPECT_TRUE(outcome.conflicts.isEmpty());
    const QVariantMap merged = readPlist(plist);
    EXPECT_EQ(merged.value("a.md").toMap().value("State"), "done");
    EXPECT_TRUE(merged.contains("b.md"));
    EXPECT_FALSE(QFileInfo::exists(inRoot("Book/" + copy)));
    EXPECT_TRUE(trashed(copy));
}

TEST_F(ReportTest, APropertiesFileKeepsTheNewestAndATieKeepsTheLocalOne)
{
    for (const bool tie : {false, true}) {
        const QString sidecar = inRoot(tie ? "tie.md.plist" : "newer.md.plist");
        const QString copy = sidecar.chopped(6) + ".sync-conflict-20240302-090000-ABCD123.plist";
        writePlist(sidecar, QVariantMap{{"side", "local"}});
        writePlist(copy, QVariantMap{{"side", "remote"}});
        setModified(sidecar, early);
        setModified(copy, tie ? early : late);
        evaluate();
        EXPECT_EQ(readPlist(sidecar).value("side"), tie ? "local" : "remote") << tie;
        EXPECT_FALSE(QFileInfo::exists(copy)) << tie;
    }
}

TEST_F(ReportTest, DocumentsAreListedForAChoiceAndNothingChangesWithoutSettling)
{
    makeFile(inRoot("Note.md"), "mine");
    const QString copy = inRoot("Note.sync-conflict-20240302-090000-ABCD123.md");
    makeFile(copy, "theirs");

    const ReportOutcome dry = evaluate(false);
    EXPECT_EQ(dry.conflicts, QStringList{"/Note.md"});
    EXPECT_TRUE(tl::platform::settings().array("iCloudArrayOfUnresolvedConflicts").isEmpty());

    evaluate();
    EXPECT_EQ(tl::platform::settings().array("iCloudArrayOfUnresolvedConflicts"),
              QVariantList{"/Note.md"});
    EXPECT_TRUE(QFileInfo::exists(copy));

    const auto source = syncSourceForLibrary(root_);
    const QStringList kept =
        tl_resolveConflictKeepingBothVersionsIsShared(source->versions(), inRoot("Note.md"), false);
    EXPECT_EQ(kept, QStringList{inRoot("Note (ABCD123).md")});
    EXPECT_EQ(tltest::readFile(kept.value(0)), "theirs");
    EXPECT_TRUE(trashed(QFileInfo(copy).fileName()));

    evaluate();
    EXPECT_TRUE(tl::platform::settings().array("iCloudArrayOfUnresolvedConflicts").isEmpty());
}

TEST_F(ReportTest, KeepingTheConflictVersionTrashesTheLocalFile)
{
    makeFile(inRoot("Note.md"), "mine");
    makeFile(inRoot("Note.sync-conflict-20240302-090000-ABCD123.md"), "theirs");
    const auto source = syncSourceForLibrary(root_);
    ASSERT_TRUE(tl_resolveConflictKeepingConflictVersion(source->versions(), inRoot("Note.md")));
    EXPECT_EQ(tltest::readFile(inRoot("Note.md")), "theirs");
    EXPECT_EQ(tltest::readFile(tl::platform::trashFilesFolder() + "/Note.md"), "mine");
}

TEST_F(ReportTest, TemporaryFilesAndLookAlikesAreNoConflicts)
{
    makeFile(inRoot(".syncthing.Note.md.tmp"));
    makeFile(inRoot("Note.sync-conflict-2024-ABCD123.md"));
    const ReportOutcome outcome = evaluate();
    EXPECT_TRUE(outcome.conflicts.isEmpty());
    EXPECT_TRUE(outcome.settled.isEmpty());
    EXPECT_EQ(outcome.unsynced, 0);
}

using PlaceholderReportTest = tltest::LibraryTest;

TEST_F(PlaceholderReportTest, AtMost51DownloadsAReportWhileAllCountAsUnsynced)
{
    makeFile(inRoot(".sync_0a1b2c.db"), "");
    for (int i = 0; i < 60; ++i)
        makeFile(inRoot(QString("Doc %1.md.nextcloud").arg(i)), "");
    const auto source = syncSourceForLibrary(root_);
    ASSERT_EQ(source->name(), "Nextcloud");
    const ReportOutcome outcome = tl_fileListReceived(*source);
    EXPECT_EQ(outcome.downloads.size(), 51);
    EXPECT_EQ(outcome.unsynced, 60);
    EXPECT_EQ(tl::platform::settings().integer("iCloudSyncProgress"), 60);
}

TEST_F(PlaceholderReportTest, WithoutAClientNothingRunsAndTheStaleListGoes)
{
    setSetting("iCloudArrayOfUnresolvedConflicts", QVariantList{"/Old.md"});
    makeFile(inRoot("Note.sync-conflict-20240302-090000-ABCD123.md"));
    const auto source = syncSourceForLibrary(root_);
    EXPECT_EQ(source->name(), "");
    EXPECT_TRUE(tl_fileListReceived(*source).settled.isEmpty());
    clearSyncState();
    EXPECT_FALSE(tl::platform::settings().contains("iCloudArrayOfUnresolvedConflicts"));
}

} // namespace
