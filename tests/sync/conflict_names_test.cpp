#include "browser/document_list.h"
#include "store/conflict_copies.h"
#include "store/library_fixture.h"
#include "sync/conflict_names.h"
#include "sync/sync_sources.h"

#include <gtest/gtest.h>

using namespace tl::sync;

namespace {

TEST(ConflictNames, EachClientsPatternAndItsLookAlikes)
{
    struct Case
    {
        SyncClient client;
        const char *name;
        const char *original; // nullptr: not a conflict copy
        QDateTime stamp;
        const char *computer;
    };
    const QDateTime noon(QDate(2024, 3, 5), QTime(12, 30, 15));
    const QDateTime day(QDate(2024, 3, 5), QTime(0, 0));
    const Case cases[] = {
        {SyncClient::Syncthing, "Note.sync-conflict-20240305-123015-ABCD123.md", "Note.md", noon,
         "ABCD123"},
        {SyncClient::Syncthing, "Makefile.sync-conflict-20240305-123015-ABCD123", "Makefile", noon,
         "ABCD123"},
        {SyncClient::Syncthing, "Note.sync-conflict-20241305-123015-ABCD123.md", nullptr, {}, ""},
        {SyncClient::Syncthing, "Note.sync-conflict-20240305-123015-abcd123.md", nullptr, {}, ""},
        {SyncClient::Syncthing, "Note.sync-conflict-2024-03-05.md", nullptr, {}, ""},
        {SyncClient::Syncthing, "Note (conflicted copy 2024-03-05 123015).md", nullptr, {}, ""},
        {SyncClient::Nextcloud, "Note (conflicted copy 2024-03-05 123015).md", "Note.md", noon, ""},
        {SyncClient::Nextcloud, "My Note (conflicted copy 2024-03-05 123015)", "My Note", noon, ""},
        {SyncClient::Nextcloud, "Note (conflicted copy 2024-03-05 126015).md", nullptr, {}, ""},
        {SyncClient::Nextcloud, "Note (conflicted copy).md", nullptr, {}, ""},
        {SyncClient::Nextcloud, "Note (Studio's conflicted copy 2024-03-05).md", nullptr, {}, ""},
        {SyncClient::Nextcloud, "Note_conflict-20240305-123015.md", "Note.md", noon, ""},
        {SyncClient::Nextcloud, "Note_conflict-20240305-1230.md", nullptr, {}, ""},
        {SyncClient::Dropbox, "Note (Studio's conflicted copy 2024-03-05).md", "Note.md", day,
         "Studio"},
        {SyncClient::Dropbox, "Note (Ann\u2019s Mac's conflicted copy 2024-03-05 (1)).md",
         "Note.md", day, "Ann\u2019s Mac"},
        {SyncClient::Dropbox, "Note (conflicted copy 2024-03-05 123015).md", nullptr, {}, ""},
        {SyncClient::Dropbox, "Note (Studio's conflicted copy 2024-02-30).md", nullptr, {}, ""},
    };
    for (const Case &c : cases) {
        const auto parsed = parseConflictCopyName(c.client, c.name);
        ASSERT_EQ(parsed.has_value(), c.original != nullptr) << c.name;
        if (!parsed)
            continue;
        EXPECT_EQ(parsed->original, c.original) << c.name;
        EXPECT_EQ(parsed->stamp, c.stamp) << c.name;
        EXPECT_EQ(parsed->computer, c.computer) << c.name;
    }
}

TEST(ConflictNames, PlaceholdersAndTheClientsOwnFiles)
{
    EXPECT_EQ(placeholderTarget(SyncClient::Nextcloud, "Note.md.nextcloud"), "Note.md");
    EXPECT_EQ(placeholderTarget(SyncClient::Nextcloud, "Note.md.owncloud"), "Note.md");
    EXPECT_EQ(placeholderTarget(SyncClient::Nextcloud, "Note.nextcloud.md"), std::nullopt);
    EXPECT_EQ(placeholderTarget(SyncClient::Syncthing, "Note.md.nextcloud"), std::nullopt);

    struct Case
    {
        SyncClient client;
        const char *name;
        bool own;
    };
    const Case cases[] = {
        {SyncClient::Syncthing, ".syncthing.Note.md.tmp", true},
        {SyncClient::Syncthing, ".stfolder", true},
        {SyncClient::Syncthing, "syncthing.Note.md.tmp", false},
        {SyncClient::Syncthing, ".syncthing.Note.md", false},
        {SyncClient::Nextcloud, "._sync_0a1b2c.db", true},
        {SyncClient::Nextcloud, ".sync_0a1b2c.db-wal", true},
        {SyncClient::Nextcloud, "sync_0a1b2c.db", false},
        {SyncClient::Dropbox, ".dropbox", true},
        {SyncClient::Dropbox, "Dropbox Log.txt", false},
    };
    for (const Case &c : cases)
        EXPECT_EQ(isClientOwnFile(c.client, c.name), c.own) << c.name;
}

using DetectionTest = tltest::LibraryTest;

TEST_F(DetectionTest, TheMarkerInTheLibraryOrAboveNamesTheClient)
{
    EXPECT_EQ(detectSyncClient(root_), std::nullopt);
    makeFile(home_ + "/.dropbox", "");
    EXPECT_EQ(detectSyncClient(root_), SyncClient::Dropbox);
    makeFile(inRoot("._sync_0a1b2c.db"), "");
    EXPECT_EQ(detectSyncClient(root_), SyncClient::Nextcloud);
    makeFolder(inRoot(".stfolder"));
    EXPECT_EQ(detectSyncClient(root_), SyncClient::Syncthing);
}

TEST_F(DetectionTest, WithoutAClientNoNameIsAConflictCopy)
{
    EXPECT_FALSE(isConflictCopyInLibrary(inRoot("Note.sync-conflict-20240305-123015-ABCD123.md")));
}

TEST_F(DetectionTest, AConflictCopyIsAVersionNotADocumentOfItsBook)
{
    makeFolder(inRoot(".stfolder"));
    tl::store::setConflictCopyRule(isConflictCopyInLibrary);
    const QString copy = makeFile(inRoot("Book/Note.sync-conflict-20240305-123015-ABCD123.md"));
    const QString note = makeFile(inRoot("Book/Note.md"));
    // Another client's naming is an ordinary name here.
    const QString other = makeFile(inRoot("Book/Note (conflicted copy 2024-03-05 123015).md"));

    tl::browser::TLKSDocumentListViewController list;
    list.path = inRoot("Book");
    list.getDocumentsInFolder();
    QStringList listed;
    for (const tl::store::ListRow &row : list.documentsList)
        listed << row.path;
    listed.sort();
    EXPECT_EQ(listed, (QStringList{other, note}));
    // The document's conflict versions still offer it.
    ConflictCopySource source(SyncClient::Syncthing, root_);
    const QList<FileVersion> versions = source.unresolvedConflictVersions(note);
    ASSERT_EQ(versions.size(), 1);
    EXPECT_EQ(versions.first().location, copy);
    tl::store::setConflictCopyRule({});
}

} // namespace
