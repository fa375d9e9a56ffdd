#include "browser/coalescing_worker.h"

#include <QCoreApplication>
#include <QtConcurrent/QtConcurrentRun>

namespace tl::browser {

CoalescingWorker::CoalescingWorker(QObject *parent) : QObject(parent)
{
    connect(&m_watcher, &QFutureWatcher<QVariant>::finished, this, &CoalescingWorker::jobDone);
}

CoalescingWorker::~CoalescingWorker()
{
    m_pending.reset();
    m_watcher.waitForFinished();
}

void CoalescingWorker::request(Job job)
{
    if (m_running) {
        m_pending = std::move(job);
        return;
    }
    start(std::move(job));
}

bool CoalescingWorker::isBusy() const
{
    return m_running || m_pending.has_value();
}

void CoalescingWorker::waitForIdle()
{
    while (isBusy()) {
        m_watcher.waitForFinished();
        // The watcher reports through the event loop.
        QCoreApplication::sendPostedEvents(&m_watcher);
        QCoreApplication::processEvents();
    }
}

void CoalescingWorker::start(Job job)
{
    m_running = true;
    m_watcher.setFuture(QtConcurrent::run(std::move(job)));
}

void CoalescingWorker::jobDone()
{
    m_running = false;
    const QVariant result = m_watcher.result();
    if (m_pending) {
        Job next = std::move(*m_pending);
        m_pending.reset();
        start(std::move(next));
    }
    Q_EMIT finished(result);
}

} // namespace tl::browser
