#include "foundation/events.h"
#include "foundation/plist.h"
#include "importers/pasteboard.h"
#include "platform/document_converter.h"
#include "store/keys.h"
#include "store/library_fixture.h"
#include "support/event_recorder.h"

#include <QDir>
#include <QFileInfo>
#include <QtEndian>

namespace {

using namespace tl::importers;
namespace T = pasteboard_type;

struct Entry
{
    const char *type;
    QByteArray data;
};

QByteArray archive(const char *url)
{
    return tl::plist::toBinary(QVariantMap{
        {"WebMainResource", QVariantMap{{"WebResourceData", QByteArray("<p>page</p>")},
                                        {"WebResourceURL", QString::fromLatin1(url)},
                                        {"WebResourceMIMEType", QStringLiteral("text/html")}}}});
}

class PasteboardImport : public tltest::LibraryTest
{
protected:
    QString book() { return makeFolder(inRoot("Book")); }
    static Pasteboard board(const QList<Entry> &entries)
    {
        Pasteboard pasteboard;
        for (const Entry &e : entries)
            pasteboard.add(QString::fromLatin1(e.type), e.data);
        return pasteboard;
    }
};

TEST_F(PasteboardImport, TheSourcesOrderOfFormatsDecides)
{
    const QString outsideFile = makeFile(outside("Report.odt"), "odt bytes");
    const QByteArray page = archive("https://example.com/a");
    const struct
    {
        const char *name;
        QList<Entry> entries;
        QString expected; // the new document's name; empty for none
        QByteArray content;
        QString address = {};
        const char *documentType = nullptr; // DefaultDocumentType; null for unset
    } cases[] = {
        {"text before HTML gives text",
         {{T::PlainText, "Hello\nworld"}, {T::HTML, "<b>Hello</b>"}},
         "Hello.txt",
         "Hello\nworld"},
        {"HTML before text gives HTML named by the text",
         {{T::HTML, "<b>Hello</b>"}, {T::PlainText, "Hello\nworld"}},
         "Hello.html",
         "<b>Hello</b>"},
        {"a web archive after text is stored as text",
         {{"public.unknown", "x"}, {T::PlainText, "Notes"}, {T::WebArchive, page}},
         "Notes.txt",
         "Notes"},
        {"a web archive first keeps the archive, capitalised name and address",
         {{T::WebArchive, page}, {T::PlainText, "an EXAMPLE page"}},
         "An Example Page.webarchive",
         page,
         "https://example.com/a"},
        {"an image named from the text keeps an extension of its type",
         {{T::PNG, "png bytes"}, {T::PlainText, "/shots/Photo.PNG"}},
         "Photo.PNG",
         "png bytes"},
        {"an image whose name lacks the extension gains it",
         {{T::JPEG, "jpg bytes"}, {T::PlainText, "Holiday"}},
         "Holiday.jpg",
         "jpg bytes"},
        {"an image with no text is the pasteboard's",
         {{T::TIFF, "tiff bytes"}},
         "Pasteboard.tiff",
         "tiff bytes"},
        {"rich text is written as it came",
         {{T::RTF, "{\\rtf1 Letter}"}, {T::PlainText, "Letter"}},
         "Letter.rtf",
         "{\\rtf1 Letter}"},
        {"a file is copied in under its name",
         {{T::FileURL, "file://" + outsideFile.toUtf8()}, {T::PlainText, "Report.odt"}},
         "Report.odt",
         "odt bytes"},
        {"Markdown as the kind of new documents",
         {{T::PlainText, "# Idea"}},
         "Idea.md",
         "# Idea",
         "",
         "md"},
        {"formatted as the kind of new documents still takes text as text",
         {{T::PlainText, "Plain"}},
         "Plain.txt",
         "Plain",
         "",
         "html"},
        {"a reader view's address opens in any browser",
         {{T::PlainText, "Read"}, {T::URL, "safari-reader://example.com/r"}},
         "Read.txt",
         "Read",
         "http://example.com/r"},
        {"nothing the import knows", {{"public.unknown", "x"}}, "", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const QString folder = book();
        if (c.documentType)
            setSetting(tl::keys::setting::DefaultDocumentType, c.documentType);
        else
            tl::platform::settings().remove(tl::keys::setting::DefaultDocumentType);
        tltest::EventRecorder events;
        const PastedDocument pasted = tl_addDocumentFromPasteboard(folder, board(c.entries));
        EXPECT_EQ(pasted.address, c.address);
        if (c.expected.isEmpty()) {
            EXPECT_TRUE(pasted.path.isEmpty());
            continue;
        }
        EXPECT_EQ(pasted.path, folder + "/" + c.expected);
        EXPECT_EQ(tltest::readFile(pasted.path), c.content);
        EXPECT_EQ(events.named(tl::events::FileModifiedOnDisk).size(), 1);
        if (c.address.startsWith("http:")) {
            EXPECT_EQ(readPlist(pasted.path + ".plist").value("URL").toString(), c.address);
        }
        QDir(folder).removeRecursively();
    }
}

TEST_F(PasteboardImport, AnAskedTypeAndTakenNames)
{
    const QString folder = book();
    makeFile(folder + "/Hello.html");
    const Pasteboard pasteboard = board({{T::PlainText, "Hello"}, {T::HTML, "<p>Hello</p>"}});
    EXPECT_EQ(tl_addDocumentFromPasteboard(folder, pasteboard, T::HTML).path,
              folder + "/Hello 1.html");
    EXPECT_TRUE(tl_addDocumentFromPasteboard(folder, pasteboard, T::PNG).path.isEmpty());
}

TEST_F(PasteboardImport, ALinksTitleNamesThePage)
{
    Pasteboard pasteboard =
        board({{T::HTML, "<a href=\"https://x.org\">X</a>"}, {T::PlainText, "https://x.org"}});
    pasteboard.setName("The X Page");
    EXPECT_EQ(tl_addDocumentFromPasteboard(book(), pasteboard).path,
              inRoot("Book/The X Page.html"));
}

// Converts a package by its TXT.rtf and an HTML page to text, as the
// platform's converter does, showing the pictures by file address.
class PackageConverter : public tl::platform::DocumentConverter
{
public:
    int convert(const tl::platform::ConversionRequest &request) override
    {
        const QByteArray text = request.format == "html"
                                    ? "<p>" + tltest::readFile(request.source + "/TXT.rtf") +
                                          "</p><img src=\"file:///pic.png\">"
                                    : QByteArray(title);
        return tltest::writeFile(request.target, text) ? 0 : 1;
    }
    const char *title = "Trip notes";
};

QByteArray flatPackage(const QList<std::pair<QByteArray, QByteArray>> &files)
{
    auto number = [](quint32 value) {
        QByteArray bytes(4, '\0');
        qToLittleEndian(value, bytes.data());
        return bytes;
    };
    QByteArray flat = "rtfd" + number(3) + number(quint32(files.size()));
    for (const auto &file : files)
        flat += number(quint32(file.first.size()));
    for (const auto &file : files)
        flat += number(quint32(file.second.size()));
    for (const auto &file : files)
        flat += file.first;
    for (const auto &file : files)
        flat += file.second;
    return flat;
}

TEST_F(PasteboardImport, RichTextWithPicturesBecomesAFormattedDocument)
{
    auto converter = std::make_shared<PackageConverter>();
    tl::platform::setDocumentConverter(converter);
    const QString folder = book();
    makeFile(folder + "/TLImages/pic.png", "older picture");
    const QByteArray flat = flatPackage(
        {{".", "attributes"}, {"TXT.rtf", "rich"}, {"pic.png", "png"}, {"../evil.png", "x"}});

    const PastedDocument pasted =
        tl_addDocumentFromPasteboard(folder, board({{T::FlatRTFD, flat}}));
    EXPECT_EQ(pasted.path, folder + "/Trip notes.html");
    EXPECT_EQ(tltest::readFile(pasted.path), "<p>rich</p><img src=\"TLImages/pic 1.png\">");
    EXPECT_EQ(tltest::readFile(folder + "/TLImages/pic 1.png"), "png");
    EXPECT_EQ(readPlist(pasted.path + ".plist").value("Embedded Photos").toStringList(),
              QStringList{"pic 1.png"});
    EXPECT_FALSE(QFileInfo::exists(folder + "/evil.png"));

    converter->title = "";
    EXPECT_EQ(tl_addDocumentFromPasteboard(folder, board({{T::FlatRTFD, flat}})).path,
              folder + "/Pasted Item.html");
    EXPECT_TRUE(
        tl_addDocumentFromPasteboard(folder, board({{T::FlatRTFD, flat.left(20)}})).path.isEmpty());
    tl::platform::setDocumentConverter(nullptr);
}

} // namespace
