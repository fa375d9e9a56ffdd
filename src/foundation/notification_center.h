#pragma once

#include <QString>
#include <QVariantMap>
#include <functional>
#include <mutex>
#include <vector>

namespace tl {

// Named events with a dictionary payload. Observers run on the posting
// thread; postOnMainThread hops to the main thread first.
class NotificationCenter
{
public:
    using Observer = std::function<void(const QString &name, const QVariantMap &payload)>;
    using ObserverId = quint64;

    static NotificationCenter &defaultCenter();

    // An empty name observes every event.
    ObserverId addObserver(const QString &name, Observer observer);
    void removeObserver(ObserverId id);

    void post(const QString &name, const QVariantMap &payload = {});
    void postOnMainThread(const QString &name, const QVariantMap &payload = {});

private:
    struct Entry
    {
        ObserverId id;
        QString name;
        Observer observer;
    };
    std::mutex m_mutex;
    std::vector<Entry> m_entries;
    ObserverId m_nextId = 1;
};

// Runs work on the main thread: at once when called there, else queued.
void runOnMainThread(std::function<void()> work);

// Removes an observer when it goes out of scope.
class ScopedObserver
{
public:
    ScopedObserver(const QString &name, NotificationCenter::Observer observer,
                   NotificationCenter &center = NotificationCenter::defaultCenter());
    ~ScopedObserver();
    ScopedObserver(const ScopedObserver &) = delete;
    ScopedObserver &operator=(const ScopedObserver &) = delete;

private:
    NotificationCenter &m_center;
    NotificationCenter::ObserverId m_id;
};

} // namespace tl
