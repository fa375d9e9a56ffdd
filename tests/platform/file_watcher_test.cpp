#include "foundation/clock.h"
#include "foundation/scheduler.h"
#include "platform/file_ops.h"
#include "platform/file_watcher.h"
#include "support/test_environment.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

using tl::platform::FileWatcher;
using tl::platform::FileWatchReport;
using Kind = FileWatchReport::Kind;

class FileWatcherTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        static int counter = 0;
        base = tltest::makeTemporaryFolder(QStringLiteral("watch%1").arg(++counter));
        root = base + "/Library";
        QDir().mkpath(root + "/Book/Sub");
        QDir().mkpath(base + "/Outside");
        clock = std::make_shared<tl::ManualClock>(QDateTime::currentDateTimeUtc());
        tl::setClock(clock);
        watcher.onReport = [this](const FileWatchReport &r) {
            reports << QStringLiteral("%1 %2%3").arg(
                r.kindName(), r.path.mid(base.size()),
                r.newPath.isEmpty() ? QString() : " -> " + r.newPath.mid(base.size()));
        };
        ASSERT_TRUE(watcher.watch(root));
    }
    void TearDown() override
    {
        watcher.stop();
        tl::setClock(std::make_shared<tl::SystemClock>());
    }
    static void write(const QString &path)
    {
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("x");
    }
    // The kernel queues events as the call returns; reading now sees them.
    QStringList drain()
    {
        watcher.readEvents();
        QStringList seen = reports;
        reports.clear();
        return seen;
    }

    QString base;
    QString root;
    std::shared_ptr<tl::ManualClock> clock;
    FileWatcher watcher;
    QStringList reports;
};

TEST_F(FileWatcherTest, ReportsChangesDeepInTheTree)
{
    write(root + "/Book/Sub/a.md");
    EXPECT_EQ(drain(),
              (QStringList{"created /Library/Book/Sub/a.md", "modified /Library/Book/Sub/a.md"}));
    QFile::remove(root + "/Book/Sub/a.md");
    EXPECT_EQ(drain(), QStringList{"deleted /Library/Book/Sub/a.md"});
}

TEST_F(FileWatcherTest, NewFoldersAreWatchedAsTheyAppear)
{
    QDir().mkpath(root + "/New/Deeper");
    const QStringList made = drain();
    EXPECT_TRUE(made.contains("created /Library/New")) << made.join(", ").toStdString();
    write(root + "/New/Deeper/b.md");
    EXPECT_EQ(drain().value(0), "created /Library/New/Deeper/b.md");
}

TEST_F(FileWatcherTest, RenameInsideTheTreeIsOneMove)
{
    write(root + "/Book/a.md");
    drain();
    ASSERT_TRUE(QFile::rename(root + "/Book/a.md", root + "/Book/Sub/b.md"));
    EXPECT_EQ(drain(), QStringList{"moved /Library/Book/a.md -> /Library/Book/Sub/b.md"});

    // A renamed folder keeps reporting under its new name.
    ASSERT_TRUE(QDir().rename(root + "/Book/Sub", root + "/Book/Renamed"));
    EXPECT_EQ(drain(), QStringList{"moved /Library/Book/Sub -> /Library/Book/Renamed"});
    write(root + "/Book/Renamed/c.md");
    EXPECT_EQ(drain().value(0), "created /Library/Book/Renamed/c.md");
}

TEST_F(FileWatcherTest, MoveOutIsADeletionAfterTheGracePeriod)
{
    write(root + "/Book/a.md");
    drain();
    ASSERT_TRUE(QFile::rename(root + "/Book/a.md", base + "/Outside/a.md"));
    EXPECT_EQ(drain(), QStringList{}) << "the moved-to may still come";
    clock->advance(FileWatcher::kMoveGraceSeconds + 0.01);
    tl::Scheduler::main().runDue();
    EXPECT_EQ(reports, QStringList{"deleted /Library/Book/a.md"});
}

TEST_F(FileWatcherTest, MoveInIsACreationOfTheFolderAndItsContents)
{
    QDir().mkpath(base + "/Outside/Folder");
    write(base + "/Outside/Folder/x.md");
    ASSERT_TRUE(QDir().rename(base + "/Outside/Folder", root + "/Folder"));
    EXPECT_EQ(drain(), (QStringList{"created /Library/Folder", "created /Library/Folder/x.md"}));
    write(root + "/Folder/y.md");
    EXPECT_EQ(drain().value(0), "created /Library/Folder/y.md");
}

TEST_F(FileWatcherTest, QueueOverflowEndsInARescan)
{
    const int max = QString::fromLatin1(tltest::readFile("/proc/sys/fs/inotify/max_queued_events"))
                        .trimmed()
                        .toInt();
    if (max <= 0 || max > 20000)
        GTEST_SKIP() << "queue too long to fill in a test";
    for (int i = 0; i <= max / 2 + 1; ++i)
        write(root + QStringLiteral("/Book/f%1").arg(i));
    QDir().mkpath(root + "/Late");
    EXPECT_TRUE(drain().contains("rescanned /Library"));
    write(root + "/Late/z.md");
    EXPECT_EQ(drain().value(0), "created /Library/Late/z.md")
        << "new folders watched after a rescan";
}

TEST_F(FileWatcherTest, OwnAtomicWritesReportOnlyTheChangeOfTheTarget)
{
    write(root + "/Book/a.md");
    drain();
    for (const char *target : {"/Book/a.md", "/Book/new.md"}) {
        SCOPED_TRACE(target);
        ASSERT_TRUE(tl::platform::writeFileAtomically(root + target, "y"));
        EXPECT_EQ(drain(), QStringList{QStringLiteral("modified /Library") + target});
    }
}

TEST_F(FileWatcherTest, AMoveTellsWhetherItsSourceWasMadeMomentsBefore)
{
    struct Case
    {
        double ageOfSource;
        bool isNew;
    };
    for (const Case c : {Case{0.0, true}, Case{FileWatcher::kNewItemSeconds - 0.1, true},
                         Case{FileWatcher::kNewItemSeconds, false}}) {
        SCOPED_TRACE(c.ageOfSource);
        write(root + "/Book/.a.md.part");
        drain();
        clock->advance(c.ageOfSource);
        bool sourceIsNew = !c.isNew;
        watcher.onReport = [&](const FileWatchReport &r) {
            if (r.kind == Kind::Moved)
                sourceIsNew = r.sourceIsNew;
        };
        ASSERT_TRUE(QFile::rename(root + "/Book/.a.md.part", root + "/Book/a.md"));
        watcher.readEvents();
        EXPECT_EQ(sourceIsNew, c.isNew);
        QFile::remove(root + "/Book/a.md");
        drain();
    }
}

// A burst is handed over a buffer at a time, so the event loop runs between
// buffers, and a move torn across two buffers stays one move however slowly
// they are handled.
TEST_F(FileWatcherTest, ABurstArrivesInPiecesWithItsMovesWhole)
{
    constexpr int kFiles = 800;
    const auto note = [&](const char *folder, int i) {
        return root + QStringLiteral("/%1/note %2.md").arg(folder).arg(i);
    };
    for (int i = 0; i < kFiles; ++i)
        write(note("Book", i));
    for (int i = 0; i < kFiles; ++i)
        ASSERT_TRUE(QFile::rename(note("Book", i), note("Book/Sub", i)));
    int pieces = 0;
    for (qsizetype seen = -1; seen != reports.size(); ++pieces) {
        seen = reports.size();
        watcher.readEvents(FileWatcher::Reading::OneBuffer);
        clock->advance(1);
    }
    EXPECT_GT(pieces, 4);
    const auto count = [&](const QString &start) {
        return std::count_if(reports.cbegin(), reports.cend(),
                             [&](const QString &r) { return r.startsWith(start); });
    };
    EXPECT_EQ(count("created /Library/Book/note "), kFiles);
    EXPECT_EQ(count("moved /Library/Book/note "), kFiles);
    EXPECT_EQ(count("deleted"), 0);
}

TEST_F(FileWatcherTest, AMoveByAnotherProcessArrivesThroughTheEventLoop)
{
    write(root + "/Book/a.md");
    drain();
    ASSERT_EQ(QProcess::execute("mv", {root + "/Book/a.md", root + "/Book/b.md"}), 0);
    QEventLoop loop;
    QTimer::singleShot(5000, &loop, &QEventLoop::quit);
    watcher.onReport = [&](const FileWatchReport &r) {
        reports << r.kindName();
        loop.quit();
    };
    loop.exec();
    EXPECT_EQ(reports, QStringList{"moved"});
}

} // namespace
