#include "library_fixture.h"
#include "platform/file_ops.h"
#include "store/item_icons.h"
#include "store/keys.h"
#include "store/properties.h"
#include "store/thumbnails.h"
#include "support/pdf_fixture.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <zip.h>

namespace tl::store {

// Found by the test framework next to the type, for readable failures.
void PrintTo(const ItemIcon &icon, std::ostream *os)
{
    *os << int(icon.kind) << ' ' << icon.value.toStdString();
}

namespace {

namespace P = keys::property;
using Kind = ItemIcon::Kind;

QByteArray pngOf(const QSize &size, QColor colour)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return png;
}

// A one-page PDF of 200 by 100 points saying "Hello PDF".
QByteArray onePagePdf()
{
    const QByteArray content = "BT /F1 24 Tf 20 40 Td (Hello PDF) Tj ET";
    const QList<QByteArray> objects{
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 200 100] /Contents 4 0 R "
        "/Resources << /Font << /F1 5 0 R >> >> >>",
        "<< /Length " + QByteArray::number(content.size()) + " >>\nstream\n" + content +
            "\nendstream",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>",
    };
    return tltest::pdfOfObjects(objects);
}

bool writeZip(const QString &path, const char *entry, const QByteArray &bytes)
{
    int error = 0;
    zip_t *archive =
        zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!archive)
        return false;
    zip_source_t *source =
        zip_source_buffer(archive, bytes.constData(), zip_uint64_t(bytes.size()), 0);
    if (!source || zip_file_add(archive, entry, source, 0) < 0) {
        zip_source_free(source);
        zip_discard(archive);
        return false;
    }
    return zip_close(archive) == 0;
}

class ItemIcons : public tltest::LibraryTest
{
protected:
    static ItemIcon named(const char *name) { return {Kind::Named, name}; }
};

TEST_F(ItemIcons, NamedIconsOfDocuments)
{
    // The rows where the icon is not simply named after the extension:
    // case, kin extensions and the media that share an icon.
    const std::pair<const char *, const char *> cases[] = {
        {"a.EML", "icon-doc-eml"},
        {"a.xlsx", "icon-doc-xls"},
        {"a.pptx", "icon-doc-ppt"},
        {"a.htm", "icon-doc-html"},
        {"a.rtfd", "icon-doc-rtf"},
        {"a.bike", "icon-doc-html"},
        {"a.markdown", "icon-doc-md"},
        {"a.text", "icon-doc-md"},
        {"a.py", "icon-doc-txt"},
        {"a.flac", "icon-doc-audio"},
        {"a.wav", "icon-doc-movie"},
        {"a.png", "icon-doc-photo"},
        {"a.fountain", "icon-doc-fountain"},
    };
    for (const auto &[name, icon] : cases) {
        makeFile(inRoot(name), "");
        EXPECT_EQ(tl_iconForPathLQ(inRoot(name)), named(icon)) << name;
    }
    makeFolder(inRoot("Deck.key"));
    EXPECT_EQ(tl_iconForPathLQ(inRoot("Deck.key")), named("icon-doc-key"));
}

TEST_F(ItemIcons, OtherFilesTakeTheDesktopIconOfTheirType)
{
    makeFile(inRoot("a.unknownext"), QByteArray("\x01\x02\x03\x00", 4));
    EXPECT_EQ(tl_iconForPathLQ(inRoot("a.unknownext")), named("icon-doc-generic"));
    EXPECT_EQ(tl_iconForPathLQ(inRoot("gone.unknownext")), named("icon-doc-generic"));
    makeFile(inRoot("a.tar"), QByteArray(1024, '\0'));
    EXPECT_EQ(tl_iconForPathLQ(inRoot("a.tar")), (ItemIcon{Kind::Platform, "application-x-tar"}));
}

TEST_F(ItemIcons, Books)
{
    makeFolder(inRoot("Plain"));
    makeFolder(inRoot("Tasks"));
    makeFile(inRoot("Tasks/TLTasklistDetails.plist"), "");
    makeFolder(inRoot("Red/Inner"));
    writePlist(inRoot("Red/BookProperties.plist"), QVariantMap{{P::CellColor, "red"}});
    makeFolder(inRoot("White"));
    writePlist(inRoot("White/BookProperties.plist"), QVariantMap{{P::CellColor, "white"}});
    EXPECT_EQ(tl_iconForPath(inRoot("Plain")), named("icon-book-default"));
    EXPECT_EQ(tl_iconForPath(inRoot("Tasks")), named("icon-book-tasks"));
    EXPECT_EQ(tl_iconForPath(inRoot("Red/Inner")), named("icon-book-red"));
    EXPECT_EQ(tl_iconForPath(inRoot("White")), named("icon-book-default"));
    setSetting("darkTheme", true);
    EXPECT_EQ(tl_iconForPath(inRoot("Red")), named("icon-book-red-dark"));
    EXPECT_EQ(tl_iconForPathLQ(inRoot("Red/a.csv")), named("icon-doc-csv-dark"));
}

TEST_F(ItemIcons, FormattedDocuments)
{
    const QString mine = makeFile(inRoot("Mine.html"), "<!-- Generator: Tavelle 3 -->");
    const QString other = makeFile(inRoot("Other.html"), "<html><!-- Plain Text "
                                                         "Representation:\n# md\n--></html>");
    EXPECT_EQ(tl_iconForPath(mine), named("icon-doc-formatted"));
    EXPECT_EQ(tl_propertyForKey(other, P::Markdown), "");
    EXPECT_EQ(tl_iconForPath(other), named("icon-doc-formatted-md"));
    EXPECT_EQ(tl_propertyForKey(other, P::Markdown), "EDITING");
    tl_setProperty(mine, "EDITING", P::Markdown);
    EXPECT_EQ(tl_iconForPath(mine), named("icon-doc-formatted-md"));
    tl_setProperty(mine, "1", P::ReadOnly);
    EXPECT_EQ(tl_iconForPath(mine), named("icon-doc-formatted"));
}

TEST_F(ItemIcons, PicturesWithPreviews)
{
    const QString image = makeFile(inRoot("Book/Photo.png"), pngOf({64, 32}, Qt::red));
    const ItemIcon icon = tl_iconForPath(image);
    ASSERT_EQ(icon.kind, Kind::Picture);
    EXPECT_EQ(icon.value, tl_thumbnailPath(image, 1));
    EXPECT_EQ(QImage(icon.value).size(), QSize(32, 16));

    const QString note = makeFile(inRoot("Book/Note.md"));
    makeFile(inRoot("Book/TLImages/Attached.png"), pngOf({10, 10}, Qt::blue));
    writePlist(note + ".plist", QVariantMap{{P::EmbeddedPhotos, QStringList{"Attached.png"}}});
    EXPECT_EQ(tl_iconForPath(note),
              (ItemIcon{Kind::Picture, tl_thumbnailPath(inRoot("Book/TLImages/Attached.png"), 1)}));
    EXPECT_EQ(tl_iconForPathLQ(note), named("icon-doc-md"));

    writePlist(note + ".plist", QVariantMap{{P::EmbeddedPhotos, QStringList{"Gone.png"}}});
    EXPECT_EQ(tl_iconForPath(note), named("icon-doc-md"));

    const QString mindMap = inRoot("Book/Map.itmz");
    ASSERT_TRUE(writeZip(mindMap, "preview.png", pngOf({8, 8}, Qt::green)));
    const ItemIcon preview = tl_iconForPath(mindMap);
    ASSERT_EQ(preview.kind, Kind::Picture);
    EXPECT_EQ(QImage(preview.value).size(), QSize(8, 8));
    ASSERT_TRUE(writeZip(mindMap, "other.png", "x"));
    EXPECT_EQ(tl_iconForPath(mindMap), named("icon-doc-itmz"));
}

// Thumbnails ------------------------------------------------------------------

using Thumbnails = tltest::LibraryTest;

TEST_F(Thumbnails, ImagesScaleIntoThirtyTwoPointsPerScale)
{
    const QString image = makeFile(inRoot("Tall.jpg"), pngOf({40, 80}, Qt::red));
    const struct
    {
        int scale;
        const char *suffix;
        QSize size;
    } cases[] = {{1, ".png", {16, 32}}, {2, "@2x.png", {32, 64}}, {3, "@3x.png", {48, 96}}};
    for (const auto &c : cases) {
        const std::optional<QString> thumbnail = tl_thumbnailForPath(image, c.scale);
        ASSERT_TRUE(thumbnail) << c.scale;
        EXPECT_EQ(*thumbnail, tl_sideCarPath(image) + c.suffix);
        EXPECT_EQ(QImage(*thumbnail).size(), c.size);
    }
}

TEST_F(Thumbnails, AFreshThumbnailIsKeptAndAStaleOneRemade)
{
    const QString image = makeFile(inRoot("Photo.png"), pngOf({64, 64}, Qt::red));
    ASSERT_TRUE(platform::setModificationDate(image, oldDate()));
    const QString thumbnail = *tl_thumbnailForPath(image);
    tltest::writeFile(thumbnail, "kept");
    EXPECT_EQ(tl_thumbnailForPath(image), thumbnail);
    EXPECT_EQ(tltest::readFile(thumbnail), "kept");

    ASSERT_TRUE(platform::setModificationDate(thumbnail, oldDate().addSecs(-60)));
    EXPECT_EQ(tl_thumbnailForPath(image), thumbnail);
    EXPECT_EQ(QImage(thumbnail).size(), QSize(32, 32));
}

TEST_F(Thumbnails, APdfShowsItsFirstPageInAFrame)
{
    const QString pdf = makeFile(inRoot("Paper.pdf"), onePagePdf());
    const std::optional<QString> thumbnail = tl_thumbnailForPath(pdf);
    ASSERT_TRUE(thumbnail);
    const QImage image(*thumbnail);
    EXPECT_EQ(image.size(), QSize(512, 256));
    // The frame is translucent grey, the page inside it white.
    EXPECT_EQ(qAlpha(image.pixel(2, 2)), 102);
    EXPECT_EQ(image.pixel(256, 20), qRgb(255, 255, 255));
}

TEST_F(Thumbnails, NothingForOtherKindsAndUnreadableFiles)
{
    for (const char *name : {"Note.md", "Broken.png", "Broken.pdf", "Movie.mov"}) {
        makeFile(inRoot(name), "not a picture");
        EXPECT_FALSE(tl_thumbnailForPath(inRoot(name))) << name;
    }
}

} // namespace
} // namespace tl::store
