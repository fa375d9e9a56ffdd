#include "tasks/calendar_steps.h"

#include <QTimeZone>
#include <limits>
#include <memory>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

namespace tl::tasks {

namespace {

// A Gregorian calendar in the zone the process runs in now (TZ may change
// between calls, as it does in tests).
std::unique_ptr<icu::Calendar> localCalendar(const QDateTime &date)
{
    const QByteArray zoneId = QTimeZone::systemTimeZoneId();
    icu::TimeZone *zone = icu::TimeZone::createTimeZone(
        icu::UnicodeString::fromUTF8(icu::StringPiece(zoneId.constData(), int(zoneId.size()))));
    UErrorCode status = U_ZERO_ERROR;
    auto calendar = std::make_unique<icu::GregorianCalendar>(zone, status);
    calendar->setTime(UDate(date.toMSecsSinceEpoch()), status);
    return calendar;
}

QDateTime dateOf(const icu::Calendar &calendar)
{
    UErrorCode status = U_ZERO_ERROR;
    return QDateTime::fromMSecsSinceEpoch(qint64(calendar.getTime(status)), QTimeZone::utc());
}

UCalendarDateFields fieldOf(RepeatStep::Unit unit)
{
    switch (unit) {
    case RepeatStep::Unit::Hour:
        return UCAL_HOUR_OF_DAY;
    case RepeatStep::Unit::Month:
        return UCAL_MONTH;
    case RepeatStep::Unit::Year:
        return UCAL_YEAR;
    default:
        return UCAL_DATE;
    }
}

// Rough length of one step, to estimate how many steps a gap holds.
double approximateSeconds(const RepeatStep &step)
{
    static constexpr double kSeconds[] = {0, 3600, 86400, 2629746, 31556952};
    return kSeconds[int(step.unit)] * double(step.amount);
}

} // namespace

RepeatStep RepeatStep::of(const QString &unit, qint64 factor)
{
    if (unit == u"hour")
        return {Unit::Hour, factor};
    if (unit == u"day")
        return {Unit::Day, factor};
    if (unit == u"week")
        return {Unit::Day, 7 * factor};
    if (unit == u"month")
        return {Unit::Month, factor};
    if (unit == u"year")
        return {Unit::Year, factor};
    return {};
}

QDateTime addingStep(const QDateTime &date, const RepeatStep &step, qint64 count)
{
    const qint64 amount = step.amount * count;
    if (step.isEmpty() || count == 0 || amount > std::numeric_limits<int32_t>::max())
        return date;
    auto calendar = localCalendar(date);
    UErrorCode status = U_ZERO_ERROR;
    calendar->add(fieldOf(step.unit), int32_t(amount), status);
    return U_SUCCESS(status) ? dateOf(*calendar) : date;
}

std::optional<QDateTime> firstStepAfter(const QDateTime &date, const RepeatStep &step,
                                        const QDateTime &now)
{
    if (step.isEmpty() || step.amount < 0)
        return std::nullopt;
    QDateTime next = addingStep(date, step);
    // Months and years clamp only on days past the 28th; below that many
    // steps at once land where single steps would.
    const bool clamps = step.unit == RepeatStep::Unit::Month || step.unit == RepeatStep::Unit::Year;
    while (next <= now) {
        const double gap = double(next.secsTo(now));
        const qint64 jump = qint64(gap / approximateSeconds(step)) - 1;
        const bool canJump = !clamps || next.toLocalTime().date().day() <= 28;
        const QDateTime advanced = addingStep(next, step, canJump && jump > 1 ? jump : 1);
        // A step too large for the calendar leaves the date where it was.
        if (advanced <= next)
            return std::nullopt;
        next = advanced;
    }
    return next;
}

unsigned repeatIntervalCode(const QString &unit)
{
    if (unit == u"day")
        return 16;
    if (unit == u"week")
        return 256;
    if (unit == u"month")
        return 8;
    if (unit == u"year")
        return 4;
    if (unit == u"hour")
        return 32;
    return 0;
}

QDateTime atTimeOfDay(const QDateTime &day, const QDateTime &time)
{
    const QTime clockTime = time.toLocalTime().time();
    return QDateTime(day.toLocalTime().date(), QTime(clockTime.hour(), clockTime.minute()),
                     Qt::LocalTime)
        .toUTC();
}

} // namespace tl::tasks
