#include "importers/location.h"

#include "platform/file_ops.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/safe_names.h"

#include <QBuffer>
#include <QLocale>
#include <QStringList>
#include <cmath>
#include <spdlog/spdlog.h>

namespace tl::importers {

namespace {

// The maps service the coordinates link to; it centres on "ll".
constexpr char kMapsLink[] = "https://maps.google.com/?ll=%1,%2";

// Extensions whose plain text shows the picture.
const QStringList &picturedExtensions()
{
    static const QStringList list{"md", "markdown", "text", "mdown", "rmd"};
    return list;
}

QString decoded(const QString &value)
{
    return store::percentDecoded(value).value_or(value);
}

// "latitude,longitude"; false when either is not a number.
bool readPair(const QString &value, LocationFix &fix)
{
    const QStringList parts = value.split(u',');
    if (parts.size() != 2)
        return false;
    bool latitudeRead = false, longitudeRead = false;
    const double latitude = parts[0].trimmed().toDouble(&latitudeRead);
    const double longitude = parts[1].trimmed().toDouble(&longitudeRead);
    if (!latitudeRead || !longitudeRead)
        return false;
    fix.latitude = latitude;
    fix.longitude = longitude;
    return true;
}

// One word of "q": a number with its hemisphere letter, negative for the
// second letter ("S" or "W").
std::optional<double> hemisphereValue(const QString &word, QChar positive, QChar negative)
{
    const QString upper = word.toUpper();
    const bool south = upper.contains(negative);
    if (!south && !upper.contains(positive))
        return std::nullopt;
    bool read = false;
    const double value = QString(upper).remove(positive).remove(negative).toDouble(&read);
    if (!read)
        return std::nullopt;
    return south ? -value : value;
}

void readQuery(const QString &value, LocationFix &fix)
{
    const QStringList words = decoded(value).remove(QChar(0x00B0)).split(u' ', Qt::SkipEmptyParts);
    if (words.size() != 2)
        return;
    const std::optional<double> latitude = hemisphereValue(words[0], u'N', u'S');
    const std::optional<double> longitude = hemisphereValue(words[1], u'E', u'W');
    if (!latitude || !longitude)
        return;
    fix.latitude = *latitude;
    fix.longitude = *longitude;
}

bool isValidCoordinate(double latitude, double longitude)
{
    return std::isfinite(latitude) && std::isfinite(longitude) && std::abs(latitude) <= 90 &&
           std::abs(longitude) <= 180;
}

QString coordinatesText(double latitude, double longitude)
{
    return latitudeInDegrees(latitude) + u' ' + longitudeInDegrees(longitude);
}

QString attachmentLink(const QString &pictureName)
{
    return QLatin1String(names::TLImages) + u'/' + store::percentEncodedForPath(pictureName);
}

std::optional<QString> savePicture(const LocationFix &fix, const QString &documentPath)
{
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    if (!tl_drawLocationPicture(fix.latitude, fix.longitude).save(&buffer, "PNG"))
        return std::nullopt;
    const QString target =
        store::tl_uniqueNameForFileatPath(tl_locationPictureName(fix.latitude, fix.longitude),
                                          store::tl_imagesFolderAtMyPath(documentPath));
    if (!platform::writeFileAtomically(target, png)) {
        spdlog::warn("location: cannot write {}", target.toStdString());
        return std::nullopt;
    }
    return target.section(u'/', -1);
}

} // namespace

std::optional<LocationFix> tl_locationFromString(const QString &link)
{
    LocationFix fix;
    const qsizetype question = link.indexOf(u'?');
    const QString query = question < 0 ? link : link.mid(question + 1);
    for (const QString &pair : query.split(u'&', Qt::SkipEmptyParts)) {
        const QString key = pair.section(u'=', 0, 0);
        const QString value = pair.section(u'=', 1);
        if (key == u"ll")
            readPair(value, fix);
        else if (key == u"daddr")
            readPair(decoded(QString(value).remove(u'(').remove(u')')), fix);
        else if (key == u"q")
            readQuery(value, fix);
        else if (key == u"utc")
            fix.dateTime = QDateTime::fromSecsSinceEpoch(value.toLongLong(), Qt::UTC);
        else if (key == u"acc")
            fix.accuracy = value.toDouble();
    }
    if (fix.latitude == 0 && fix.longitude == 0)
        return std::nullopt;
    return fix;
}

QString latitudeInDegrees(double latitude)
{
    return QString::asprintf("%f", std::abs(latitude)) +
           (latitude < 0 ? QStringLiteral("°S") : QStringLiteral("°N"));
}

QString longitudeInDegrees(double longitude)
{
    const double magnitude = std::abs(longitude);
    const char *padding = magnitude < 10 ? "00" : magnitude < 100 ? "0" : "";
    return QLatin1String(padding) + QString::asprintf("%f", magnitude) +
           (longitude < 0 ? QStringLiteral("°W") : QStringLiteral("°E"));
}

QString tl_locationPictureName(double latitude, double longitude)
{
    return latitudeInDegrees(latitude) + longitudeInDegrees(longitude) + QStringLiteral(".png");
}

QString tl_locationLabel(const LocationFix &fix)
{
    QString label = QStringLiteral("Coordinates");
    if (fix.accuracy > 0)
        label += QString::asprintf(" (%.0fm)", fix.accuracy);
    if (fix.dateTime.isValid())
        label =
            QStringLiteral("Time: %1\n%2")
                .arg(QLocale().toString(fix.dateTime.toLocalTime(), QLocale::ShortFormat), label);
    return label;
}

QString tl_mapsLink(double latitude, double longitude)
{
    return QString::fromLatin1(kMapsLink).arg(QString::asprintf("%f", latitude),
                                              QString::asprintf("%f", longitude));
}

QString tl_locationAsHTML(const LocationFix &fix, const QString &address,
                          const QString &pictureName)
{
    const QString breaks = QStringLiteral("<br>");
    QString html = address.toHtmlEscaped().replace(u'\n', breaks);
    html += QStringLiteral("<p><br>%1: <a href=\"%2\">%3</a>")
                .arg(tl_locationLabel(fix).toHtmlEscaped().replace(u'\n', breaks),
                     tl_mapsLink(fix.latitude, fix.longitude),
                     coordinatesText(fix.latitude, fix.longitude));
    if (!pictureName.isEmpty())
        html += QStringLiteral("<br><img src=\"%1\">").arg(attachmentLink(pictureName));
    return html + QStringLiteral("</p>");
}

QString tl_locationAsMarkdown(const LocationFix &fix, const QString &address,
                              const QString &pictureName)
{
    QString text = address.isEmpty() ? QString() : address + QStringLiteral("  \n");
    text += QStringLiteral("%1: [%2](%3)")
                .arg(tl_locationLabel(fix), coordinatesText(fix.latitude, fix.longitude),
                     tl_mapsLink(fix.latitude, fix.longitude));
    if (!pictureName.isEmpty())
        text += QStringLiteral(" ![](%1)").arg(attachmentLink(pictureName));
    return text;
}

bool tl_locationShowsPicture(const QString &documentPath, bool markdownSource)
{
    const QString extension = store::lowerCasedExtension(documentPath);
    return picturedExtensions().contains(extension) ||
           (markdownSource && (extension == u"html" || extension == u"htm"));
}

std::optional<QString> tl_locationTextForDocument(const LocationFix &fix,
                                                  const QString &documentPath, LocationForm form,
                                                  bool markdownSource)
{
    if (!isValidCoordinate(fix.latitude, fix.longitude)) {
        spdlog::info("invalid coordinate");
        return std::nullopt;
    }
    const bool pictured =
        !documentPath.isEmpty() &&
        (form == LocationForm::HTML || tl_locationShowsPicture(documentPath, markdownSource));
    QString picture;
    if (pictured) {
        const std::optional<QString> saved = savePicture(fix, documentPath);
        if (!saved)
            return std::nullopt;
        picture = *saved;
    }
    // Addresses come from a geocoding service, which the program does without.
    return form == LocationForm::HTML ? tl_locationAsHTML(fix, QString(), picture)
                                      : tl_locationAsMarkdown(fix, QString(), picture);
}

} // namespace tl::importers
