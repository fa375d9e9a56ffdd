#include "foundation/events.h"
#include "library_fixture.h"
#include "platform/document_converter.h"
#include "store/duplicate_as.h"
#include "store/keys.h"
#include "support/event_recorder.h"

#include <QFileInfo>

namespace tl::store {
namespace {

namespace P = keys::property;
using tltest::PostedEvent;

// Writes "FORMAT of NAME" to the target and answers a set status; with
// `image` set it also leaves that picture beside the target, as converters
// that extract images do.
class FakeConverter : public platform::DocumentConverter
{
public:
    int convert(const platform::ConversionRequest &request) override
    {
        requests.append(request);
        QByteArray text =
            request.format.toUtf8() + " of " + QFileInfo(request.source).fileName().toUtf8();
        if (!image.isEmpty()) {
            tltest::writeFile(QFileInfo(request.target).absolutePath() + "/" + image, "png");
            text += "<img src=\"file:///" + image.toUtf8() + "\">";
        }
        tltest::writeFile(request.target, text);
        return status;
    }
    QList<platform::ConversionRequest> requests;
    int status = 0;
    QString image;
};

class DuplicateAs : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        converter_ = std::make_shared<FakeConverter>();
        platform::setDocumentConverter(converter_);
    }
    void TearDown() override
    {
        platform::setDocumentConverter(nullptr);
        LibraryTest::TearDown();
    }
    QString doc(const QString &name, const QByteArray &text = "text")
    {
        makeFile(inRoot("Book/" + name), text);
        writePlist(inRoot("Book/" + name + ".plist"), QVariantMap{{P::Description, name}});
        return inRoot("Book/" + name);
    }
    QString book(const QString &name) const { return inRoot("Book/" + name); }
    std::shared_ptr<FakeConverter> converter_;
};

TEST_F(DuplicateAs, Plaintext)
{
    const QByteArray representation =
        "<html><!-- Plain Text Representation:\nplain caf\xC3\xA9\n--></html>";
    const struct
    {
        const char *source;
        QByteArray text;
        QString expected; // the new file's name; empty for nothing written
        QByteArray content;
    } cases[] = {
        {"Note.md", "# note", "Note.txt", "# note"},
        {"Code.py", "print()", "Code copy.py", "print()"},
        {"Formatted.html", representation, "Formatted.txt", "plain caf\xC3\xA9\n"},
        {"Empty.html", "<!-- Plain Text Representation:\n-->", "", ""},
        {"Letter.docx", "binary", "Letter.txt", "txt of Letter.docx"},
        {"Page.html", "<p>no representation</p>", "Page.txt", "txt of Page.html"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.source);
        const QString made = tl_duplicateItemAsPlaintext(doc(c.source, c.text));
        EXPECT_EQ(made, c.expected.isEmpty() ? QString() : book(c.expected));
        if (!made.isEmpty()) {
            EXPECT_EQ(tltest::readFile(made), c.content);
        }
    }
    EXPECT_EQ(readPlist(book("Note.txt.plist")).value(P::Description), "Note.md");
}

TEST_F(DuplicateAs, Markdown)
{
    const struct
    {
        const char *source;
        QByteArray text;
        QString expected;
    } cases[] = {
        {"Note.md", "# note", "Note copy.md"},
        {"Plain.txt", "plain", "Plain.md"},
        {"Formatted.html", "<!-- Plain Text Representation:\n# kept\n-->", "Formatted.md"},
        // HTML to Markdown and OPML land with the conversion subsystems.
        {"Page.htm", "<p>page</p>", ""},
        {"Outline.opml", "<opml/>", ""},
        {"Sheet.xlsx", "binary", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.source);
        const QString made = tl_duplicateItemAsMarkdown(doc(c.source, c.text));
        EXPECT_EQ(made, c.expected.isEmpty() ? QString() : book(c.expected));
    }
    EXPECT_EQ(tltest::readFile(book("Formatted.md")), "# kept\n");
    EXPECT_EQ(readPlist(book("Formatted.md.plist")).value(P::Description), "Formatted.html");
    EXPECT_TRUE(converter_->requests.isEmpty());
}

TEST_F(DuplicateAs, FormattedFountainAndLatex)
{
    EXPECT_EQ(tl_duplicateItemAsFormattedDocument(doc("Page.html")), book("Page copy.html"));
    // Markdown to HTML and LaTeX land with the conversion subsystem.
    EXPECT_EQ(tl_duplicateItemAsFormattedDocument(doc("Note.md")), "");
    EXPECT_EQ(tl_duplicateAsLatex(book("Note.md")), "");
    EXPECT_EQ(tl_duplicateItemAsFountain(book("Note.md")), book("Note.fountain"));
    EXPECT_EQ(tl_duplicateItemAsFountain(book("Note.md")), book("Note 1.fountain"));
    EXPECT_FALSE(QFileInfo::exists(book("Note.html")) || QFileInfo::exists(book("Note.tex")));
}

TEST_F(DuplicateAs, FormattedThroughTheConverterMovesImagesIntoTLImages)
{
    converter_->image = "picture.png";
    tltest::EventRecorder recorder;
    const QString made = tl_duplicateItemAsFormattedDocument(doc("Letter.docx"));
    ASSERT_EQ(made, book("Letter.html"));
    EXPECT_EQ(tltest::readFile(made), "html of Letter.docx<img src=\"TLImages/picture.png\">");
    EXPECT_EQ(tltest::readFile(book("TLImages/picture.png")), "png");
    EXPECT_EQ(readPlist(book("Letter.html.plist")).value(P::Description), "Letter.docx");
    EXPECT_EQ(recorder.named(events::FileModifiedOnDisk).last(),
              (PostedEvent{events::FileModifiedOnDisk, {{"path", made}}}));
}

TEST_F(DuplicateAs, TheGeneralConverter)
{
    const QString letter = doc("Letter.docx");
    tltest::EventRecorder recorder;
    EXPECT_EQ(tl_duplicateItemAs(letter, "odt"), book("Letter.odt"));
    ASSERT_EQ(converter_->requests.size(), 1);
    const platform::ConversionRequest request = converter_->requests.first();
    EXPECT_EQ(request.format, "odt");
    EXPECT_EQ(request.source, letter);
    EXPECT_EQ(request.target, book("Letter.odt"));
    EXPECT_EQ(request.fontSize, 14);
    EXPECT_EQ(readPlist(book("Letter.odt.plist")).value(P::Description), "Letter.docx");
    EXPECT_EQ(recorder.events(),
              (QList<PostedEvent>{{events::FileModifiedOnDisk, {{"path", book("Letter.odt")}}}}));

    setSetting("noteFontSize", 17);
    tl_duplicateItemAs(letter, "odt");
    EXPECT_EQ(converter_->requests.last().fontSize, 17);
    EXPECT_EQ(converter_->requests.last().target, book("Letter 1.odt"));
    setSetting("printFontSize", 9.5);
    tl_duplicateItemAs(letter, "txt");
    EXPECT_EQ(converter_->requests.last().fontSize, 9.5);

    for (const char *unknown : {"pdf", "md", "", "TXT"})
        EXPECT_EQ(tl_duplicateItemAs(letter, unknown), "") << unknown;
    EXPECT_EQ(converter_->requests.size(), 3);
}

TEST_F(DuplicateAs, RtfBecomesRtfdForDocumentsWithAttachments)
{
    const QString page = doc("Page.html");
    tl_duplicateItemAs(page, "rtf");
    EXPECT_EQ(converter_->requests.last().format, "rtf");
    writePlist(page + ".plist", QVariantMap{{P::EmbeddedPhotos, QStringList{"a.png"}}});
    EXPECT_EQ(tl_duplicateItemAs(page, "rtf"), book("Page.rtfd"));
    EXPECT_EQ(converter_->requests.last().format, "rtfd");
}

TEST_F(DuplicateAs, AFailedConversionLeavesNothing)
{
    converter_->status = 1;
    const QString letter = doc("Letter.docx");
    EXPECT_EQ(tl_duplicateItemAs(letter, "txt"), "");
    EXPECT_FALSE(QFileInfo::exists(book("Letter.txt")));
    EXPECT_FALSE(QFileInfo::exists(book("Letter.txt.plist")));
    EXPECT_EQ(tltest::readFile(letter), "text");
    // Markdown goes through HTML, which has no renderer yet.
    converter_->status = 0;
    EXPECT_EQ(tl_duplicateItemAs(doc("Note.md"), "docx"), "");
    EXPECT_EQ(converter_->requests.size(), 1);
}

} // namespace
} // namespace tl::store
