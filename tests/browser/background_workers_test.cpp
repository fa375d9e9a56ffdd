#include "../store/library_fixture.h"
#include "browser/coalescing_worker.h"
#include "browser/render_worker.h"
#include "convert/store_registration.h"

#include <QCoreApplication>
#include <QSemaphore>
#include <QSignalSpy>
#include <QThread>
#include <atomic>

namespace {

using tl::browser::CoalescingWorker;
using tl::browser::RenderResult;
using tl::browser::RenderWorker;

TEST(CoalescingWorker, OneJobRunsAndOneWaitsTheNewestReplacingTheWaitingOne)
{
    CoalescingWorker worker;
    QSemaphore started;
    QSemaphore release;
    std::atomic<int> runs{0};
    QList<int> results;
    QThread *deliveredOn = nullptr;
    QObject::connect(&worker, &CoalescingWorker::finished, [&](const QVariant &result) {
        results << result.toInt();
        deliveredOn = QThread::currentThread();
    });
    const auto job = [&](int n) {
        return [&, n] {
            ++runs;
            started.release();
            release.acquire();
            return QVariant(n);
        };
    };
    worker.request(job(1));
    started.acquire(); // the first is in flight
    worker.request(job(2));
    worker.request(job(3)); // replaces 2, which never runs
    EXPECT_TRUE(worker.isBusy());
    release.release(2);
    worker.waitForIdle();
    EXPECT_EQ(runs.load(), 2);
    EXPECT_EQ(results, (QList<int>{1, 3}));
    EXPECT_EQ(deliveredOn, QCoreApplication::instance()->thread());
    EXPECT_FALSE(worker.isBusy());
}

using RenderWorkerTest = tltest::LibraryTest;

TEST_F(RenderWorkerTest, RendersTheEditorsTextOffTheMainThread)
{
    tl::convert::registerConversionsWithStore();
    RenderWorker worker;
    QSignalSpy rendered(&worker, &RenderWorker::rendered);
    const QString path = inRoot("Doc.md");
    worker.requestRendering(path, "# Old");
    const quint64 newest = worker.requestRendering(path, "# Title\n\n*new*");
    worker.waitForIdle();
    ASSERT_FALSE(rendered.isEmpty());
    const auto result = rendered.last().at(0).value<RenderResult>();
    EXPECT_EQ(result.sequence, newest);
    EXPECT_EQ(result.path, path);
    EXPECT_TRUE(result.body.contains("<em>new</em>")) << result.body.toStdString();
    EXPECT_FALSE(result.body.contains("<html"));
    EXPECT_TRUE(result.html.contains("<html"));
    EXPECT_TRUE(result.baseUrl.startsWith("file://"));
}

} // namespace
