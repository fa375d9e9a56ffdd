#include "importers/location.h"
#include "support/test_environment.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace tl::importers {
namespace {

TEST(Location, MapsLinksAreRead)
{
    const struct
    {
        const char *link;
        double latitude, longitude, accuracy;
        qint64 utc; // 0: no time
    } cases[] = {
        {"https://maps.google.com/?ll=48.858400,2.294500", 48.8584, 2.2945, -1, 0},
        {"http://maps.apple.com/?q=48.8584%C2%B0N%202.2945%C2%B0E", 48.8584, 2.2945, -1, 0},
        {"http://maps.apple.com/?q=33.8688%C2%B0S%20151.2093%C2%B0W&z=12", -33.8688, -151.2093, -1,
         0},
        {"?daddr=(40.7128,-74.0060)", 40.7128, -74.006, -1, 0},
        {"?ll=51.5,-0.12&acc=65&utc=1700000000", 51.5, -0.12, 65, 1700000000},
        // A place name in "q" is not a position.
        {"?ll=51.5,-0.12&q=Big%20Ben", 51.5, -0.12, -1, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.link);
        const std::optional<LocationFix> fix = tl_locationFromString(QString::fromUtf8(c.link));
        ASSERT_TRUE(fix);
        EXPECT_DOUBLE_EQ(fix->latitude, c.latitude);
        EXPECT_DOUBLE_EQ(fix->longitude, c.longitude);
        EXPECT_DOUBLE_EQ(fix->accuracy, c.accuracy);
        EXPECT_EQ(fix->dateTime.isValid(), c.utc != 0);
        if (c.utc) {
            EXPECT_EQ(fix->dateTime.toSecsSinceEpoch(), c.utc);
        }
    }
    for (const char *nowhere : {"https://maps.google.com/?ll=0,0", "?q=Paris", "no link"})
        EXPECT_FALSE(tl_locationFromString(QString::fromUtf8(nowhere))) << nowhere;
}

TEST(Location, PicturesAreNamedByDegrees)
{
    const struct
    {
        double latitude, longitude;
        const char *name;
    } cases[] = {
        {48.8584, 2.2945, "48.858400°N002.294500°E.png"},
        {-33.8688, -151.2093, "33.868800°S151.209300°W.png"},
        {1.5, -74.006, "1.500000°N074.006000°W.png"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_locationPictureName(c.latitude, c.longitude), QString::fromUtf8(c.name));
}

TEST(Location, LabelTellsAccuracyAndTime)
{
    EXPECT_EQ(tl_locationLabel({1, 2, -1, {}}), QStringLiteral("Coordinates"));
    EXPECT_EQ(tl_locationLabel({1, 2, 64.6, {}}), QStringLiteral("Coordinates (65m)"));
    const QString timed =
        tl_locationLabel({1, 2, 10, QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC)});
    EXPECT_TRUE(timed.startsWith(QStringLiteral("Time: "))) << qPrintable(timed);
    EXPECT_TRUE(timed.endsWith(QStringLiteral("\nCoordinates (10m)"))) << qPrintable(timed);
}

TEST(Location, InsertedAsHTMLAndMarkdown)
{
    const LocationFix fix{48.8584, 2.2945, 65, {}};
    const QString picture = QStringLiteral("48.858400°N002.294500°E 1.png");
    const QString link = QStringLiteral("https://maps.google.com/?ll=48.858400,2.294500");
    const QString image = QStringLiteral("TLImages/48.858400%C2%B0N002.294500%C2%B0E%201.png");
    EXPECT_EQ(tl_locationAsHTML(fix, QStringLiteral("Tower\nParis"), picture),
              QStringLiteral("Tower<br>Paris<p><br>Coordinates (65m): <a href=\"%1\">48.858400°N "
                             "002.294500°E</a><br><img src=\"%2\"></p>")
                  .arg(link, image));
    EXPECT_EQ(tl_locationAsMarkdown(fix, QStringLiteral("Tower\nParis"), picture),
              QStringLiteral("Tower\nParis  \nCoordinates (65m): [48.858400°N 002.294500°E](%1) "
                             "![](%2)")
                  .arg(link, image));
    EXPECT_EQ(tl_locationAsMarkdown(fix, QString(), QString()),
              QStringLiteral("Coordinates (65m): [48.858400°N 002.294500°E](%1)").arg(link));
}

TEST(Location, PictureGoesInTheAttachmentFolderWhereTheTextShowsIt)
{
    const QString book = tltest::makeTemporaryFolder(QStringLiteral("location"));
    const LocationFix fix{48.8584, 2.2945, -1, {}};
    const struct
    {
        const char *document;
        LocationForm form;
        bool markdownSource;
        bool pictured;
    } cases[] = {
        {"Note.md", LocationForm::Markdown, false, true},
        {"Note.txt", LocationForm::Markdown, false, false},
        {"Page.html", LocationForm::Markdown, true, true},
        {"Page.html", LocationForm::HTML, false, true},
    };
    int pictures = 0;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.document);
        const QString document = book + u'/' + QLatin1String(c.document);
        const std::optional<QString> text =
            tl_locationTextForDocument(fix, document, c.form, c.markdownSource);
        ASSERT_TRUE(text);
        EXPECT_EQ(text->contains(QStringLiteral("TLImages/")), c.pictured);
        pictures += c.pictured ? 1 : 0;
        EXPECT_EQ(QDir(book + QStringLiteral("/TLImages")).entryList(QDir::Files).size(), pictures);
    }
    EXPECT_TRUE(QFile::exists(book + QStringLiteral("/TLImages/48.858400°N002.294500°E 2.png")));
    EXPECT_FALSE(tl_locationTextForDocument({95, 0, -1, {}}, book + QStringLiteral("/Note.md"),
                                            LocationForm::Markdown));
}

TEST(Location, PictureIsFiveHundredSquareWithRoundedCorners)
{
    const QImage picture = tl_drawLocationPicture(-33.8688, -151.2093);
    EXPECT_EQ(picture.size(), QSize(500, 500));
    EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(picture.pixel(250, 400)), 255);
}

} // namespace
} // namespace tl::importers
