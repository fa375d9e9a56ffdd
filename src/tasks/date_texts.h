#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <optional>

// The texts of due dates and repeats, in the local zone and the locale's
// date and time styles.
namespace tl::tasks {

// Medium date and short time.
QString tl_shortDateTimeString(const QDateTime &date);
// A due date in a list: "Today", "Yesterday", "Tomorrow" or the short
// weekday with the medium date; the short time behind when the date has an
// alert time. Empty for the distant dates.
QString tl_weekdayString(const QDateTime &date);
// Recent past moments relatively ("just now", "5 minutes ago"), then
// "Today", "Yesterday" or "Tomorrow", or the full date; the short time
// behind when the date has an alert time. Empty for the distant dates.
QString tl_fancyWeekdayString(const QDateTime &date);
// A moment to the second: "Today" or "Yesterday" with the medium time,
// "Tomorrow" with the short time, any other day the short date and the
// medium time. Empty for the distant dates.
QString tl_fancyWeekdayStringExact(const QDateTime &date);
// "Every Week ", "Every 2 weeks", "1 day after completion"; "---" for none.
QString tl_readableRepeatDetailsForDetails(const std::optional<QStringList> &details);
QString tl_readableRepeatDetails(const QString &itemPath);
// The word of a repeat unit for a factor: "week" up to 1, "weeks" above;
// empty for an unknown unit.
QString repeatUnitWord(const QString &unit, qint64 factor);

} // namespace tl::tasks
