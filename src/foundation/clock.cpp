#include "foundation/clock.h"

#include <QElapsedTimer>
#include <atomic>
#include <mutex>

namespace tl {

QDateTime SystemClock::now() const
{
    return QDateTime::currentDateTimeUtc();
}

double SystemClock::monotonicSeconds() const
{
    static const QElapsedTimer started = [] {
        QElapsedTimer t;
        t.start();
        return t;
    }();
    return double(started.nsecsElapsed()) / 1e9;
}

ManualClock::ManualClock(QDateTime start) : m_now(std::move(start))
{
}

QDateTime ManualClock::now() const
{
    return m_now;
}

double ManualClock::monotonicSeconds() const
{
    return m_monotonic;
}

void ManualClock::advance(double seconds)
{
    m_monotonic += seconds;
    m_now = m_now.addMSecs(qint64(seconds * 1000.0));
}

void ManualClock::setNow(const QDateTime &date)
{
    m_now = date;
}

namespace {
std::mutex clockMutex;
std::shared_ptr<Clock> &installedClock()
{
    static std::shared_ptr<Clock> c = std::make_shared<SystemClock>();
    return c;
}
} // namespace

Clock &clock()
{
    std::lock_guard lock(clockMutex);
    return *installedClock();
}

void setClock(std::shared_ptr<Clock> clock)
{
    std::lock_guard lock(clockMutex);
    installedClock() = clock ? std::move(clock) : std::make_shared<SystemClock>();
}

} // namespace tl
