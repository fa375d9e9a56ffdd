#pragma once

#include <QDateTime>
#include <QImage>
#include <QString>
#include <optional>

// A position put into a document: a map picture in the attachment folder,
// the coordinates as a link to the maps service, the accuracy and the time.
namespace tl::importers {

struct LocationFix
{
    double latitude = 0;
    double longitude = 0;
    // In metres; negative when unknown.
    double accuracy = -1;
    // An invalid date stands for the distant past: no time is told.
    QDateTime dateTime;
};

// A link of the maps service read into a position: "ll" and "daddr" as
// "latitude,longitude", "q" as "48.85°N 2.29°E", "utc" seconds since 1970,
// "acc" the accuracy. Nothing for a position at 0, 0.
std::optional<LocationFix> tl_locationFromString(const QString &link);

// The degree forms: "48.858400°N", "002.294500°E" (three digits before the
// point); the picture is named by both, "48.858400°N002.294500°E.png".
QString latitudeInDegrees(double latitude);
QString longitudeInDegrees(double longitude);
QString tl_locationPictureName(double latitude, double longitude);

// "Coordinates", with the accuracy in metres when known; with a time,
// "Time: <short date and time>\n" before it.
QString tl_locationLabel(const LocationFix &fix);
QString tl_mapsLink(double latitude, double longitude);

// The text put in: the address (empty when there is none), the label and
// the linked coordinates, then the picture (named in the attachment folder;
// empty for none).
QString tl_locationAsHTML(const LocationFix &fix, const QString &address,
                          const QString &pictureName);
QString tl_locationAsMarkdown(const LocationFix &fix, const QString &address,
                              const QString &pictureName);

// Whether the text of a document in the plain-text editor shows the
// picture: Markdown and HTML edited as its Markdown source do, plain text
// doesn't.
bool tl_locationShowsPicture(const QString &documentPath, bool markdownSource);

enum class LocationForm { HTML, Markdown };
// tl_insertLocationAtCoordinate: the text to insert in the document, its
// picture saved in the document's attachment folder under a free name when
// the text shows it (never with no document); nothing (logged) for an
// invalid coordinate or a picture that cannot be written.
std::optional<QString> tl_locationTextForDocument(const LocationFix &fix,
                                                  const QString &documentPath, LocationForm form,
                                                  bool markdownSource = false);

// The map picture, drawn here as the maps service is out of reach: 500 by
// 500, a pin at the centre inside rounded corners, the coordinates and a
// scale. Needs no fonts, so it draws in the command and the tests too.
QImage tl_drawLocationPicture(double latitude, double longitude);

} // namespace tl::importers
