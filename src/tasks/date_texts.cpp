#include "tasks/date_texts.h"

#include "foundation/clock.h"
#include "foundation/compare.h"
#include "foundation/dates.h"
#include "tasks/due_dates.h"

#include <QHash>
#include <QTimeZone>
#include <memory>
#include <unicode/datefmt.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

namespace tl::tasks {

namespace {

// The English texts of the localization keys that are not their own text.
QString localized(const char *key)
{
    static const QHash<QString, QString> table{
        {QStringLiteral("EveryPl"), QStringLiteral("Every")},
        {QStringLiteral("EveryPl2"), QStringLiteral("Every")}};
    const QString text = QLatin1String(key);
    return table.value(text, text);
}

QString format(const QDateTime &date, icu::DateFormat::EStyle dateStyle,
               icu::DateFormat::EStyle timeStyle)
{
    const icu::Locale locale(collationLocaleName().toUtf8().constData());
    std::unique_ptr<icu::DateFormat> formatter(
        icu::DateFormat::createDateTimeInstance(dateStyle, timeStyle, locale));
    if (!formatter)
        return {};
    const QByteArray zoneId = QTimeZone::systemTimeZoneId();
    formatter->adoptTimeZone(icu::TimeZone::createTimeZone(
        icu::UnicodeString::fromUTF8(icu::StringPiece(zoneId.constData(), int(zoneId.size())))));
    icu::UnicodeString text;
    formatter->format(UDate(date.toMSecsSinceEpoch()), text);
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

// The short weekday ("Tue") in the locale's words.
QString shortWeekday(const QDateTime &date)
{
    const icu::Locale locale(collationLocaleName().toUtf8().constData());
    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat formatter(icu::UnicodeString("ccc"), locale, status);
    if (U_FAILURE(status))
        return {};
    const QByteArray zoneId = QTimeZone::systemTimeZoneId();
    formatter.adoptTimeZone(icu::TimeZone::createTimeZone(
        icu::UnicodeString::fromUTF8(icu::StringPiece(zoneId.constData(), int(zoneId.size())))));
    icu::UnicodeString text;
    formatter.format(UDate(date.toMSecsSinceEpoch()), text);
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

QString mediumDate(const QDateTime &date)
{
    return format(date, icu::DateFormat::kMedium, icu::DateFormat::kNone);
}

QString shortTime(const QDateTime &date)
{
    return format(date, icu::DateFormat::kNone, icu::DateFormat::kShort);
}

QString relativePast(qint64 seconds)
{
    if (seconds < 120)
        return localized("just now");
    if (seconds < 3600)
        return localized("%d minutes ago")
            .replace(QStringLiteral("%d"), QString::number(seconds / 60));
    if (seconds < 7200)
        return localized("1 hour ago");
    return localized("%d hours ago").replace(QStringLiteral("%d"), QString::number(seconds / 3600));
}

QString singular(const QString &unit)
{
    static const QStringList units{"day", "week", "month", "year", "hour"};
    return units.contains(unit) ? localized(unit.toLatin1().constData()) : QString();
}

QString plural(const QString &unit)
{
    return singular(unit).isEmpty() ? QString() : localized((unit + u's').toLatin1().constData());
}

} // namespace

QString repeatUnitWord(const QString &unit, qint64 factor)
{
    return factor > 1 ? plural(unit) : singular(unit);
}

QString tl_shortDateTimeString(const QDateTime &date)
{
    return format(date, icu::DateFormat::kMedium, icu::DateFormat::kShort);
}

namespace {

// "Today", "Yesterday" or "Tomorrow" by the medium date texts; empty for
// any other day.
QString nearDayWord(const QDateTime &date, const QDateTime &now)
{
    const QString day = mediumDate(date);
    if (day == mediumDate(now))
        return localized("Today");
    if (day == mediumDate(now.addSecs(-86400)))
        return localized("Yesterday");
    if (day == mediumDate(now.addSecs(86400)))
        return localized("Tomorrow");
    return {};
}

bool isDistant(const QDateTime &date)
{
    return date == distantPast() || date == distantFuture() || !date.isValid();
}

} // namespace

QString tl_weekdayString(const QDateTime &date)
{
    if (isDistant(date))
        return {};
    QString text = nearDayWord(date, clock().now());
    if (text.isEmpty())
        text = shortWeekday(date) + QStringLiteral(", ") + mediumDate(date);
    if (tl_dueDateHasAlertTime(date))
        text += QStringLiteral(", ") + shortTime(date);
    return text;
}

QString tl_fancyWeekdayString(const QDateTime &date)
{
    if (isDistant(date))
        return {};
    const QDateTime now = clock().now();
    const qint64 since = date.secsTo(now);
    if (since >= 0 && since < 14400)
        return relativePast(since);
    QString text = nearDayWord(date, now);
    if (text.isEmpty())
        text = format(date, icu::DateFormat::kFull, icu::DateFormat::kNone);
    if (tl_dueDateHasAlertTime(date))
        text += QStringLiteral(", ") + shortTime(date);
    return text;
}

QString tl_fancyWeekdayStringExact(const QDateTime &date)
{
    if (isDistant(date))
        return {};
    const QString word = nearDayWord(date, clock().now());
    if (word.isEmpty())
        return format(date, icu::DateFormat::kShort, icu::DateFormat::kMedium);
    const bool tomorrow = word == localized("Tomorrow");
    return word + QStringLiteral(", ") +
           format(date, icu::DateFormat::kNone,
                  tomorrow ? icu::DateFormat::kShort : icu::DateFormat::kMedium);
}

QString tl_readableRepeatDetailsForDetails(const std::optional<QStringList> &details)
{
    if (!details || details->size() != 3)
        return QStringLiteral("---");
    const QString &unit = details->at(1);
    const qint64 factor = details->at(2).toLongLong();
    const QString count = QString::number(factor);
    if (details->at(0).contains(u"due")) {
        if (factor < 2) {
            const QString word = singular(unit);
            const QString every =
                word.isEmpty()
                    ? localized("Every")
                    : localized(("Every " + word.left(1).toUpper() + word.mid(1)).toLatin1());
            return every + u' ';
        }
        const char *key = unit == u"hour" || unit == u"week" ? "EveryPl2" : "EveryPl";
        return localized(key) + u' ' + count + u' ' + plural(unit);
    }
    const QString after = u' ' + localized("after completion");
    if (factor < 2)
        return QStringLiteral("1 ") + singular(unit) + after;
    return u' ' + count + u' ' + plural(unit) + after;
}

QString tl_readableRepeatDetails(const QString &itemPath)
{
    return tl_readableRepeatDetailsForDetails(tl_repeatDetails(itemPath));
}

} // namespace tl::tasks
