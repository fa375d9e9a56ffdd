#include "foundation/clock.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/scheduler.h"

#include <QCoreApplication>
#include <QThread>
#include <gtest/gtest.h>

namespace {

using tl::NotificationCenter;

TEST(NotificationCenter, DeliversByNameWithPayloadOnThePostingThread)
{
    NotificationCenter center;
    QStringList seen;
    QVariantMap payload;
    Qt::HANDLE thread = nullptr;
    center.addObserver(tl::events::FileMoved, [&](const QString &name, const QVariantMap &p) {
        seen << name;
        payload = p;
        thread = QThread::currentThreadId();
    });
    center.post(tl::events::FileDeletedFromDisk, {{"path", "/x"}});
    center.post(tl::events::FileMoved, {{"originalPath", "/a"}, {"newPath", "/b"}});
    EXPECT_EQ(seen, QStringList{"TLKSFileMovedNotification"});
    EXPECT_EQ(payload.value("newPath").toString(), "/b");
    EXPECT_EQ(thread, QThread::currentThreadId());
}

TEST(NotificationCenter, EmptyNameObservesEverythingAndRemovalStopsDelivery)
{
    NotificationCenter center;
    int count = 0;
    const auto id = center.addObserver({}, [&](const QString &, const QVariantMap &) { ++count; });
    center.post("A");
    center.post("B");
    center.removeObserver(id);
    center.post("C");
    EXPECT_EQ(count, 2);
}

TEST(NotificationCenter, ObserverMayRemoveItselfWhileBeingCalled)
{
    NotificationCenter center;
    int count = 0;
    NotificationCenter::ObserverId id = 0;
    id = center.addObserver("A", [&](const QString &, const QVariantMap &) {
        ++count;
        center.removeObserver(id);
    });
    center.post("A");
    center.post("A");
    EXPECT_EQ(count, 1);
}

TEST(NotificationCenter, PostOnMainThreadHopsFromAWorker)
{
    NotificationCenter center;
    Qt::HANDLE deliveredOn = nullptr;
    center.addObserver("Hop", [&](const QString &, const QVariantMap &) {
        deliveredOn = QThread::currentThreadId();
    });
    QThread *worker = QThread::create([&] { center.postOnMainThread("Hop"); });
    worker->start();
    worker->wait();
    delete worker;
    EXPECT_EQ(deliveredOn, nullptr);
    QCoreApplication::processEvents();
    EXPECT_EQ(deliveredOn, QThread::currentThreadId());
}

class SchedulerTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        clock = std::make_shared<tl::ManualClock>(QDateTime::currentDateTimeUtc());
        tl::setClock(clock);
    }
    void TearDown() override
    {
        tl::Scheduler::main().cancel("k");
        tl::Scheduler::main().cancel("other");
        tl::setClock(nullptr);
    }
    std::shared_ptr<tl::ManualClock> clock;
};

TEST_F(SchedulerTest, SchedulingAgainCancelsWhatIsPendingSoABurstRunsOnce)
{
    tl::Scheduler &scheduler = tl::Scheduler::main();
    QStringList runs;
    for (int i = 0; i < 5; ++i) {
        scheduler.schedule("k", 0.3, [&runs, i] { runs << QString::number(i); });
        clock->advance(0.1);
        scheduler.runDue();
    }
    EXPECT_TRUE(runs.isEmpty());
    clock->advance(0.25);
    EXPECT_EQ(scheduler.runDue(), 1);
    EXPECT_EQ(runs, QStringList{"4"});
    EXPECT_FALSE(scheduler.isPending("k"));
}

TEST_F(SchedulerTest, DifferentKeysRunInDueOrderAndCancelWorks)
{
    tl::Scheduler &scheduler = tl::Scheduler::main();
    QStringList runs;
    scheduler.schedule("k", 0.6, [&] { runs << "save"; });
    scheduler.schedule("other", 0.3, [&] { runs << "file"; });
    clock->advance(1.0);
    scheduler.runDue();
    EXPECT_EQ(runs, QStringList({"file", "save"}));

    scheduler.schedule("k", 0.1, [&] { runs << "cancelled"; });
    scheduler.cancel("k");
    clock->advance(1.0);
    EXPECT_EQ(scheduler.runDue(), 0);
}

} // namespace
