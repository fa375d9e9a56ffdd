#include "browser/outline_controller.h"
#include "browser/outline_item.h"
#include "document_view_test_support.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "foundation/scheduler.h"
#include "platform/file_ops.h"
#include "platform/file_watcher.h"
#include "store/keys.h"

#include <QSaveFile>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using tl::browser::TLKSOutlineItem;
using tl::browser::TLKSOutlineViewController;

// How programs save a file, system call by system call.
struct Saver
{
    const char *program;
    std::function<void(const QString &target, const QByteArray &bytes)> save;
};

void writeNewFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) << path;
    file.write(bytes);
}

void renameOver(const QString &from, const QString &to)
{
    ASSERT_EQ(::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()), 0)
        << from << " -> " << to;
}

QString beside(const QString &target, const QString &name)
{
    return tl::path::appendingComponent(tl::path::deletingLastComponent(target), name);
}

// Writes a file under another name in the same folder, then renames it over
// the target.
Saver writingAs(const char *program, std::function<QString(const QString &name)> temporaryName)
{
    return {program, [temporaryName](const QString &target, const QByteArray &bytes) {
                const QString temporary =
                    beside(target, temporaryName(tl::path::lastComponent(target)));
                writeNewFile(temporary, bytes);
                ::chmod(QFile::encodeName(temporary).constData(), 0644);
                renameOver(temporary, target);
            }};
}

const Saver kSavers[] = {
    writingAs("rsync", [](const QString &name) { return "." + name + ".Xq3b7Z"; }),
    writingAs("Syncthing", [](const QString &name) { return ".syncthing." + name + ".tmp"; }),
    writingAs("Nextcloud", [](const QString &name) { return "." + name + ".~6f1c0a2e"; }),
    writingAs("GIO editors",
              [](const QString &) { return QStringLiteral(".goutputstream-K2P9XZ"); }),
    writingAs("LibreOffice", [](const QString &) { return QStringLiteral("lu4711xyz.tmp"); }),
    {"vim",
     [](const QString &target, const QByteArray &bytes) {
         // The probe for creating files, the backup, the new file.
         const QString probe = beside(target, "4913");
         writeNewFile(probe, "");
         QFile::remove(probe);
         renameOver(target, target + "~");
         writeNewFile(target, bytes);
         QFile::remove(target + "~");
     }},
    {"Qt's QSaveFile",
     [](const QString &target, const QByteArray &bytes) {
         QSaveFile file(target);
         ASSERT_TRUE(file.open(QIODevice::WriteOnly));
         file.write(bytes);
         ASSERT_TRUE(file.commit());
     }},
    {"Tavelle",
     [](const QString &target, const QByteArray &bytes) {
         ASSERT_TRUE(tl::platform::writeFileAtomically(target, bytes));
     }},
};

using tltest::EventRecorder;

// Every path an event to the views names; the watcher's own reports name
// every file the save touched, the program's side files too.
QStringList pathsInViewEvents(const EventRecorder &posted)
{
    QStringList all;
    for (const auto &[name, payload] : posted.events())
        for (const char *key : {"path", "originalPath", "newPath"})
            if (payload.contains(key) && name != tl::events::LibraryItemChanged)
                all << payload.value(key).toString();
    return all;
}

class OutsideSaves : public tltest::LibraryTest
{
public:
    using LibraryTest::inRoot;
    using LibraryTest::readPlist;
    QStringList booksOf(const QString &path)
    {
        TLKSOutlineItem *item = TLKSOutlineItem::childAtPath(path);
        return item ? item->titlesOfChildren() : QStringList{"<not in tree>"};
    }

protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        clock = &useManualClock(QDateTime(QDate(2024, 5, 6), QTime(7, 8), Qt::UTC));
        makeFolder(inRoot("Book/A"));
        makeFolder(inRoot("Book/B"));
        makeFile(inRoot("Book/Doc.md"), "old text");
        writePlist(inRoot("Book/Doc.md.plist"), QVariantMap{{"Tags", QStringList{"old"}}});
        writePlist(inRoot("Book/BookProperties.plist"),
                   QVariantMap{{"sortOrderForNotes", "custom"},
                               {"Books", QStringList{"A", "B"}},
                               {"Notes", QStringList{"Doc.md"}},
                               {"Pinned", QStringList{"Doc.md"}}});
        writePlist(inRoot(tl::names::SettingsFile), QVariantMap{{"defaultInbox", "/Book"}});
        setSetting(tl::keys::setting::DefaultInbox, "/Book");
        TLKSOutlineItem::rootItem().resetAllChildren();
        TLKSOutlineItem::childAtPath(inRoot("Book"))->children();
        watcher.onReport = [this](const tl::platform::FileWatchReport &r) {
            controller.handleWatchReport(r);
        };
        ASSERT_TRUE(watcher.watch(root_));
    }
    void TearDown() override
    {
        watcher.stop();
        TLKSOutlineItem::rootItem().resetAllChildren();
        LibraryTest::TearDown();
    }
    // What the watcher has queued, and what follows within a second.
    void settle()
    {
        watcher.readEvents();
        clock->advance(1.0);
        tl::Scheduler::main().runDue();
    }
    tl::ManualClock *clock = nullptr;
    TLKSOutlineViewController controller;
    tl::platform::FileWatcher watcher;
};

// A file saved by another program is a change of that file: nothing of the
// item moves, and the new content stays as written.
struct SavedFile
{
    const char *relative;
    QVariant content;
    // What shows that the change was taken in.
    std::function<void(OutsideSaves &, const EventRecorder &)> takenIn;
};

const SavedFile kSavedFiles[] = {
    {tl::names::SettingsFile, QVariantMap{{"defaultInbox", "/Book/A"}},
     [](OutsideSaves &, const EventRecorder &) {
         EXPECT_EQ(tl::platform::settings().string(tl::keys::setting::DefaultInbox), "/Book/A")
             << "the library's settings are read from the new file";
     }},
    {"Book/BookProperties.plist",
     QVariantMap{{"sortOrderForNotes", "custom"},
                 {"Books", QStringList{"B", "A"}},
                 {"Notes", QStringList{"Doc.md"}},
                 {"Pinned", QStringList{"Doc.md"}}},
     [](OutsideSaves &t, const EventRecorder &posted) {
         EXPECT_EQ(t.booksOf(t.inRoot("Book")), (QStringList{"B", "A"})) << "the new order shows";
         EXPECT_TRUE(
             posted.posted(tl::events::FileModifiedOnDisk, t.inRoot("Book/BookProperties.plist")));
     }},
    {"Book/Doc.md.plist", QVariantMap{{"Tags", QStringList{"new"}}},
     [](OutsideSaves &t, const EventRecorder &posted) {
         EXPECT_TRUE(posted.posted(tl::events::FileModifiedOnDisk, t.inRoot("Book/Doc.md.plist")));
     }},
    {"Book/Doc.md", QByteArray("new text"),
     [](OutsideSaves &t, const EventRecorder &posted) {
         EXPECT_TRUE(posted.posted(tl::events::FileModifiedOnDisk, t.inRoot("Book/Doc.md")))
             << "a shown document reloads";
         EXPECT_EQ(t.readPlist(t.inRoot("Book/Doc.md.plist")).value("Tags").toStringList(),
                   QStringList{"old"})
             << "the properties stay with the document";
         EXPECT_EQ(
             t.readPlist(t.inRoot("Book/BookProperties.plist")).value("Pinned").toStringList(),
             QStringList{"Doc.md"})
             << "the pin stays";
     }},
};

QByteArray bytesOf(const QVariant &content)
{
    return content.typeId() == QMetaType::QByteArray ? content.toByteArray()
                                                     : tl::plist::toXml(content);
}

TEST_F(OutsideSaves, AReplacementByRenameIsAChangeOfTheTarget)
{
    for (const Saver &saver : kSavers) {
        for (const SavedFile &file : kSavedFiles) {
            SCOPED_TRACE(QStringLiteral("%1 saving %2").arg(saver.program, file.relative));
            // Each save starts from the library as it was.
            TearDown();
            SetUp();
            EventRecorder posted;
            const QString target = inRoot(file.relative);
            const QByteArray bytes = bytesOf(file.content);
            saver.save(target, bytes);
            settle();

            EXPECT_EQ(posted.count(tl::events::FileMoved), 0);
            EXPECT_EQ(tltest::readFile(target), bytes)
                << "nothing was written back over the new file";
            EXPECT_TRUE(QFileInfo::exists(inRoot("Book/Doc.md.plist")));
            file.takenIn(*this, posted);
            if (QLatin1String(saver.program) == QLatin1String("Tavelle")) {
                for (const QString &path : pathsInViewEvents(posted))
                    EXPECT_EQ(path, target) << "the temporary file of an own write is never told";
            }
        }
    }
}

// A file written under a passing name and renamed to a name that was free is
// a new item; the passing name leaves no row behind.
TEST_F(OutsideSaves, ARenameOfAPassingNameOntoAFreeNameIsACreation)
{
    for (const Saver &saver : kSavers) {
        if (QLatin1String(saver.program) == QLatin1String("vim"))
            continue; // vim sets an existing file aside; a new one it writes in place
        SCOPED_TRACE(saver.program);
        TearDown();
        SetUp();
        EventRecorder posted;
        const QString target = inRoot("Book/New.md");
        saver.save(target, "fresh");
        settle();
        EXPECT_EQ(posted.count(tl::events::FileMoved), 0);
        EXPECT_TRUE(posted.posted(tl::events::FileModifiedOnDisk, target));
        EXPECT_EQ(tltest::readFile(target), "fresh");
    }
}

// A known document renamed by another program is still a move, and a known
// document hidden away is gone once it does not come back.
TEST_F(OutsideSaves, KnownItemsStillMoveAndHidingOneRemovesIt)
{
    EventRecorder posted;
    renameOver(inRoot("Book/Doc.md"), inRoot("Book/Renamed.md"));
    settle();
    settle(); // the properties file's own move
    EXPECT_TRUE(posted.named(tl::events::FileMoved)
                    .contains({tl::events::FileMoved,
                               {{"originalPath", inRoot("Book/Doc.md")},
                                {"newPath", inRoot("Book/Renamed.md")},
                                {"silentReload", "1"}}}));
    EXPECT_TRUE(QFileInfo::exists(inRoot("Book/Renamed.md.plist")))
        << "the properties follow the move";

    posted.clear();
    renameOver(inRoot("Book/Renamed.md"), inRoot("Book/.Renamed.md"));
    watcher.readEvents();
    EXPECT_EQ(posted.count(tl::events::FileDeletedFromDisk), 0) << "it may yet come back";
    clock->advance(TLKSOutlineViewController::kFollowUpDelay + 0.01);
    tl::Scheduler::main().runDue();
    EXPECT_TRUE(posted.posted(tl::events::FileDeletedFromDisk, inRoot("Book/Renamed.md")));
    EXPECT_EQ(posted.count(tl::events::FileMoved), 0);
}

// The whole way: a sync client replaces the document on screen, and the
// view shows the new text under the same path.
using OutsideSaveOfTheShownDocument = tltest::DocumentViewTest;

TEST_F(OutsideSaveOfTheShownDocument, IsShownAnewUnderItsOwnPath)
{
    const QString path = document("Shared.txt", "old");
    show(path);
    view->startObserving();
    TLKSOutlineViewController outline;
    tl::platform::FileWatcher watcher;
    watcher.onReport = [&outline](const tl::platform::FileWatchReport &r) {
        outline.handleWatchReport(r);
    };
    ASSERT_TRUE(watcher.watch(root_));

    const QString temporary = book + "/.Shared.txt.Xq3b7Z";
    writeNewFile(temporary, "new from elsewhere");
    tl::platform::setModificationDate(temporary, oldDate().addSecs(60));
    renameOver(temporary, path);
    watcher.readEvents();
    advance(1.0);

    EXPECT_EQ(view->path, path);
    EXPECT_EQ(view->plainText, "new from elsewhere");
    EXPECT_EQ(tltest::readFile(path), "new from elsewhere");
}

// Follow-ups asked for again while their run is under way still end with
// the controller: none runs after it.
TEST_F(OutsideSaves, NoFollowUpOutlivesTheController)
{
    const QString doc = inRoot("Book/Doc.md");
    {
        TLKSOutlineViewController shortLived;
        tl::platform::FileWatchReport setAside;
        setAside.kind = tl::platform::FileWatchReport::Kind::Moved;
        setAside.path = doc;
        setAside.newPath = doc + "~";
        shortLived.handleWatchReport(setAside);
        shortLived.presentedSubitemDidChangeAtURL(doc);
        clock->advance(TLKSOutlineViewController::kFollowUpDelay + 0.01);
        EXPECT_EQ(tl::Scheduler::main().runDue(), 2);
    }
    clock->advance(1.0);
    EXPECT_EQ(tl::Scheduler::main().runDue(), 0);
}

} // namespace
