#include "foundation/notification_center.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>
#include <algorithm>

namespace tl {

NotificationCenter &NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

NotificationCenter::ObserverId NotificationCenter::addObserver(const QString &name,
                                                               Observer observer)
{
    std::lock_guard lock(m_mutex);
    const ObserverId id = m_nextId++;
    m_entries.push_back({id, name, std::move(observer)});
    return id;
}

void NotificationCenter::removeObserver(ObserverId id)
{
    std::lock_guard lock(m_mutex);
    std::erase_if(m_entries, [id](const Entry &e) { return e.id == id; });
}

void NotificationCenter::post(const QString &name, const QVariantMap &payload)
{
    // Copy the matching observers first, so an observer may add or remove
    // observers (or post) while it runs.
    std::vector<Observer> matching;
    {
        std::lock_guard lock(m_mutex);
        for (const Entry &e : m_entries)
            if (e.name.isEmpty() || e.name == name)
                matching.push_back(e.observer);
    }
    for (const Observer &observer : matching)
        observer(name, payload);
}

void NotificationCenter::postOnMainThread(const QString &name, const QVariantMap &payload)
{
    runOnMainThread([this, name, payload] { post(name, payload); });
}

void runOnMainThread(std::function<void()> work)
{
    QCoreApplication *app = QCoreApplication::instance();
    if (!app || QThread::currentThread() == app->thread()) {
        work();
        return;
    }
    QMetaObject::invokeMethod(app, std::move(work), Qt::QueuedConnection);
}

ScopedObserver::ScopedObserver(const QString &name, NotificationCenter::Observer observer,
                               NotificationCenter &center)
    : m_center(center), m_id(center.addObserver(name, std::move(observer)))
{
}

ScopedObserver::~ScopedObserver()
{
    m_center.removeObserver(m_id);
}

} // namespace tl
