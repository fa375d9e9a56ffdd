#include "convert/note_preview.h"
#include "convert_test_support.h"
#include "store/keys.h"
#include "store/properties.h"
#include "support/pdf_fixture.h"

#include <QFileInfo>

namespace {

using namespace tl::convert;
namespace P = tl::keys::property;

class NotePreview : public tltest::ConvertTest
{
protected:
    QString preview(const QString &path)
    {
        return tl_previewOfNoteWithTitle(path, QFileInfo(path).fileName());
    }
};

struct PreviewCase
{
    const char *name;
    const char *file;
    QByteArray content;
    QString expected;
};

TEST_F(NotePreview, TextOfEachKindWithoutItsTitleLine)
{
    const QString cut = QString(440, u'x') + " **abcdefghijkl**";
    const PreviewCase cases[] = {
        {"first line equal to the name is dropped", "Shopping.txt", "Shopping\nMilk\n\n\nEggs\n",
         "Milk\nEggs"},
        {"name compared in lower case, title marks trimmed", "Plans.txt", "# PLANS #\nsoon",
         "soon"},
        {"other first line stays", "Shopping.txt", "Groceries\nMilk", "Groceries\nMilk"},
        {"empty text", "Empty.txt", "  \n ", ""},
        {"Markdown holds no marks", "Note.md",
         "Note\n\n**Bold** and _em_ [link](x.md)\n\n# Head\n\n- one\n",
         "Bold and em link\nHead\n- one"},
        {"a cut construct converts as it stands", "Long.md", cut.toUtf8(),
         QString(440, u'x') + " **abcdef"},
        {"a long plain text is cut to 449", "Long.txt", QByteArray(600, 'y'), QString(449, u'y')},
        {"HTML by its text", "Page.html",
         "<html><head><title>T</title></head><body><h1>Page</h1>\n<p>Some &amp; "
         "more</p></body></html>",
         "Some & more"},
        {"other kinds show nothing", "Data.bin", "binary", ""},
        {"Windows-1252 text read in its encoding", "Caf\xc3\xa9.txt", "Men\xfc\r\nsoup",
         "Men\u00fc\nsoup"},
    };
    for (const PreviewCase &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(preview(document(QString::fromUtf8(c.file), c.content)), c.expected);
    }
}

TEST_F(NotePreview, DescriptionComesFirst)
{
    const QString path = document("Note.md", "Note\nbody");
    tl::store::tl_setProperty(path, QStringLiteral("  Described  "), P::Description);
    EXPECT_EQ(preview(path), "Described");
}

TEST_F(NotePreview, SideCarTextAndRecognisedText)
{
    const QString photo = document("Photo.png", "not really a picture");
    EXPECT_EQ(preview(photo), "");
    tltest::writeFile(tl::store::tl_sideCarPath(photo), "Seen in the picture");
    EXPECT_EQ(preview(photo), "Seen in the picture");
    tltest::writeFile(tl::store::tl_sideCarPath(photo),
                      "<!DOCTYPE html><html><body><p>As a page</p></body></html>");
    EXPECT_EQ(preview(photo), "As a page");

    // A side-car written from an empty view goes.
    tltest::writeFile(tl::store::tl_sideCarPath(photo), "No Document Selected\n");
    EXPECT_EQ(preview(photo), "");
    EXPECT_FALSE(QFileInfo::exists(tl::store::tl_sideCarPath(photo)));

    const QString scan = document("Scan.pdf", "not a PDF");
    tl::store::tl_setProperty(scan, QStringLiteral("Recognised words"), P::OCR);
    EXPECT_EQ(preview(scan), "Recognised words");
}

TEST_F(NotePreview, APdfIsReadOnceThroughItsSideCar)
{
    const QString path =
        document("Paper.pdf", tltest::pdfOfPages({"Short first page", "Second page"}));
    const QString preview = tl_previewOfNoteWithTitle(path, QStringLiteral("Paper.pdf"));
    EXPECT_TRUE(preview.contains("Short first page")) << preview;
    EXPECT_TRUE(preview.contains("Second page")) << preview;
    const QString sideCar = tl::store::tl_sideCarPath(path);
    EXPECT_TRUE(QFileInfo::exists(sideCar));
    // The side-car answers from now on, not the file.
    tltest::writeFile(sideCar, "Kept text");
    EXPECT_EQ(tl_previewOfNoteWithTitle(path, QStringLiteral("Paper.pdf")), "Kept text");
}

TEST_F(NotePreview, StrictMarkdownKeepsEveryLine)
{
    const QString path = document("Lines.md", "one\ntwo\nthree");
    setSetting("useMarkdownStrictly", true);
    EXPECT_EQ(preview(path), "one\ntwo\nthree");
    setSetting("ignoreCommentsForWordCount", true);
    tltest::writeFile(path, "one\n// hidden\ntwo");
    EXPECT_EQ(preview(path), "one\ntwo");
}

} // namespace
