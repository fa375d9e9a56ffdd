#include "foundation/scheduler.h"

#include "foundation/clock.h"
#include "foundation/notification_center.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <vector>

namespace tl {

Scheduler &Scheduler::main()
{
    static Scheduler *scheduler = [] {
        auto *s = new Scheduler;
        if (QCoreApplication *app = QCoreApplication::instance())
            s->moveToThread(app->thread());
        return s;
    }();
    return *scheduler;
}

Scheduler::Scheduler(QObject *parent) : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setParent(this);
    connect(&m_timer, &QTimer::timeout, this, [this] { runDue(); });
}

void Scheduler::schedule(const QString &key, double delaySeconds, std::function<void()> work)
{
    {
        std::lock_guard lock(m_mutex);
        m_tasks[key] =
            Task{clock().monotonicSeconds() + delaySeconds, ++m_sequence, std::move(work)};
    }
    runOnMainThread([this] { rearm(); });
}

void Scheduler::cancel(const QString &key)
{
    std::lock_guard lock(m_mutex);
    m_tasks.erase(key);
}

bool Scheduler::isPending(const QString &key) const
{
    std::lock_guard lock(m_mutex);
    return m_tasks.count(key) != 0;
}

int Scheduler::runDue()
{
    std::vector<Task> due;
    {
        std::lock_guard lock(m_mutex);
        const double now = clock().monotonicSeconds();
        for (auto it = m_tasks.begin(); it != m_tasks.end();) {
            if (it->second.due <= now) {
                due.push_back(std::move(it->second));
                it = m_tasks.erase(it);
            } else {
                ++it;
            }
        }
    }
    std::sort(due.begin(), due.end(), [](const Task &a, const Task &b) {
        return a.due != b.due ? a.due < b.due : a.sequence < b.sequence;
    });
    for (Task &task : due)
        task.work();
    rearm();
    return int(due.size());
}

void Scheduler::rearm()
{
    double earliest = -1;
    {
        std::lock_guard lock(m_mutex);
        for (const auto &[key, task] : m_tasks)
            if (earliest < 0 || task.due < earliest)
                earliest = task.due;
    }
    if (earliest < 0) {
        m_timer.stop();
        return;
    }
    const double wait = std::max(0.0, earliest - clock().monotonicSeconds());
    m_timer.start(int(std::ceil(wait * 1000.0)));
}

} // namespace tl
