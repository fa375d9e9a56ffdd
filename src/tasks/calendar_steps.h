#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

// Calendar arithmetic of repeats in the local zone: days and weeks keep the
// local time of day across daylight-saving changes, months and years clamp
// to the last day of a shorter month, hours are elapsed time.
namespace tl::tasks {

struct RepeatStep
{
    enum class Unit { None, Hour, Day, Month, Year };
    Unit unit = Unit::None;
    qint64 amount = 0;

    // "day" f days, "week" 7 × f days, "month", "year", "hour"; any other
    // unit an empty step.
    static RepeatStep of(const QString &unit, qint64 factor);
    bool isEmpty() const { return unit == Unit::None || amount == 0; }
};

// The date advanced by the step count times, in the local calendar.
QDateTime addingStep(const QDateTime &date, const RepeatStep &step, qint64 count = 1);

// The first of date + step, + step + step, ... later than now, each step
// added to the running value (so the 31st of a month drifts to the 28th
// after February and stays there). Long gaps are crossed arithmetically
// where that gives the same point. An empty step never advances: nothing.
std::optional<QDateTime> firstStepAfter(const QDateTime &date, const RepeatStep &step,
                                        const QDateTime &now);

// The calendar-unit code of a repeat as the reminder centre names it: day 16,
// week 256, month 8, year 4, hour 32; other units 0.
unsigned repeatIntervalCode(const QString &unit);

// The local moment on the date of `day` at the hour and minute of `time`,
// seconds 0.
QDateTime atTimeOfDay(const QDateTime &day, const QDateTime &time);

} // namespace tl::tasks
