#include "tasks/date_texts.h"

#include "foundation/clock.h"
#include "foundation/compare.h"
#include "foundation/dates.h"
#include "tasks/due_dates.h"

#include <QHash>
#include <QTimeZone>
#include <memory>
#include <unicode/datefmt.h>
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

QString tl_fancyWeekdayString(const QDateTime &date)
{
    if (date == distantPast() || date == distantFuture() || !date.isValid())
        return {};
    const QDateTime now = clock().now();
    const qint64 since = date.secsTo(now);
    if (since >= 0 && since < 14400)
        return relativePast(since);
    const QString day = mediumDate(date);
    QString text;
    if (day == mediumDate(now))
        text = localized("Today");
    else if (day == mediumDate(now.addSecs(-86400)))
        text = localized("Yesterday");
    else if (day == mediumDate(now.addSecs(86400)))
        text = localized("Tomorrow");
    else
        text = format(date, icu::DateFormat::kFull, icu::DateFormat::kNone);
    if (tl_dueDateHasAlertTime(date))
        text += QStringLiteral(", ") + shortTime(date);
    return text;
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
