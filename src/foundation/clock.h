#pragma once

#include <QDateTime>
#include <memory>

namespace tl {

// The time source of every timed rule, injectable so tests advance time
// instead of sleeping.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
    // Seconds on a monotonic scale, for delays.
    virtual double monotonicSeconds() const = 0;
};

class SystemClock final : public Clock
{
public:
    QDateTime now() const override;
    double monotonicSeconds() const override;
};

// A clock that only moves when told to.
class ManualClock final : public Clock
{
public:
    explicit ManualClock(QDateTime start);
    QDateTime now() const override;
    double monotonicSeconds() const override;
    void advance(double seconds);
    void setNow(const QDateTime &date);

private:
    QDateTime m_now;
    double m_monotonic = 0;
};

// The process clock; the system clock unless a test installs another.
Clock &clock();
void setClock(std::shared_ptr<Clock> clock);

} // namespace tl
