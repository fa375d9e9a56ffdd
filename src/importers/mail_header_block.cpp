#include "foundation/compare.h"
#include "foundation/regex.h"
#include "importers/mail_parts.h"

#include <memory>
#include <optional>
#include <unicode/datefmt.h>
#include <unicode/smpdtfmt.h>

namespace tl::importers::detail {

namespace {

icu::UnicodeString toICU(const QString &text)
{
    return icu::UnicodeString(reinterpret_cast<const char16_t *>(text.utf16()), int(text.size()));
}

QString fromICU(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

// Capture 1 of a line-wise pattern, or nothing.
std::optional<QString> lineCapture(const Regex &pattern, const QString &header)
{
    const std::optional<RegexMatch> m = pattern.match(header);
    if (!m)
        return std::nullopt;
    return m->capturedString(header, 1);
}

// Display names come with quoting backslashes and double quotes.
QString unquoted(QString name)
{
    name.replace(QStringLiteral("\\("), QStringLiteral("("));
    name.replace(QStringLiteral("\\)"), QStringLiteral(")"));
    name.remove(u'"');
    return name;
}

std::optional<UDate> parsedDate(const QString &text)
{
    for (const char *pattern : {"EEE, dd MMM yyyy HH:mm:ss zzz", "dd MMM yyyy HH:mm:ss zzz"}) {
        UErrorCode status = U_ZERO_ERROR;
        icu::SimpleDateFormat format(icu::UnicodeString(pattern), icu::Locale("en_US_POSIX"),
                                     status);
        if (U_FAILURE(status))
            continue;
        icu::ParsePosition position(0);
        const UDate date = format.parse(toICU(text), position);
        if (position.getErrorIndex() < 0 && position.getIndex() > 0)
            return date;
    }
    return std::nullopt;
}

// Long date and short time in the user's locale.
QString displayedDate(UDate date)
{
    const icu::Locale locale(collationLocaleName().toUtf8().constData());
    std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateTimeInstance(
        icu::DateFormat::kLong, icu::DateFormat::kShort, locale));
    if (!format)
        return {};
    icu::UnicodeString text;
    format->format(date, text);
    return fromICU(text);
}

} // namespace

QString headerBlock(const QString &header)
{
    constexpr RegexOptions lines = RegexOption::AnchorsMatchLines;
    static const Regex senderName(QStringLiteral("^From: (.*?)(<|$)"), lines);
    static const Regex senderAddress(QStringLiteral("^From: .*?<(.*?)>"), lines);
    static const Regex recipientName(QStringLiteral("^To: (.*?)$"), lines);
    static const Regex recipientAddress(QStringLiteral("^To: .*?<(.*?)>"), lines);
    static const Regex dateLine(QStringLiteral(R"(^Date: (.*?)(\(|$))"), lines);
    static const Regex subjectLine(QStringLiteral("^Subject: (.*?)$"), lines);
    static const QString division = QStringLiteral(
        "<div style=\"padding: **HeaderPadding**%; font-family: **TavelleFont**;\">");

    QString block;
    const QString name = unquoted(lineCapture(senderName, header).value_or(QString()));
    const QString address = lineCapture(senderAddress, header).value_or(QString());
    if (!name.isEmpty() && !address.isEmpty())
        block += division +
                 QStringLiteral("<b><a href=\"mailto:%1\">%2</a></b><br/>").arg(address, name);
    else if (!name.isEmpty())
        block += division + QStringLiteral("<b>%1</b><br/>").arg(name);

    QString recipient = unquoted(lineCapture(recipientName, header).value_or(QString()));
    recipient.replace(u'<', QStringLiteral("&lt;")).replace(u'>', QStringLiteral("&gt;"));
    const QString recipientMail = lineCapture(recipientAddress, header).value_or(QString());
    if (!recipient.isEmpty() && !recipientMail.isEmpty())
        block +=
            QStringLiteral("To: <a href=\"mailto:%1\">%2</a><br/>\n").arg(recipientMail, recipient);
    else if (!recipient.isEmpty())
        block += QStringLiteral("To: %1<br/>\n").arg(recipient);

    if (const std::optional<QString> dateText = lineCapture(dateLine, header))
        if (const std::optional<UDate> date = parsedDate(*dateText))
            block += QStringLiteral("<font color=\"#999\">%1</font><hr/><br/>\n")
                         .arg(displayedDate(*date));

    if (const std::optional<QString> subject = lineCapture(subjectLine, header))
        block += QStringLiteral("<div style=\"font-size: 1.1em; line-height: 1.1em; font-weight: "
                                "bold;\">%1</div><div style=\"padding-bottom: 20px;\"></div>\n")
                     .arg(*subject);
    return block;
}

} // namespace tl::importers::detail
