#include "importers/text_recognition.h"
#include "links/backlinks.h"
#include "platform/text_recognizer.h"
#include "store/keys.h"
#include "store/library_fixture.h"
#include "store/properties.h"
#include "support/drawn_text.h"
#include "support/scripted_text_recognizer.h"

#include <QDir>
#include <gtest/gtest.h>

namespace {

using namespace tl::importers;

QString ocrOf(const QString &path)
{
    return tl::store::tl_propertyForKey(path, QStringLiteral("OCR")).toString();
}

class TextRecognition : public tltest::LibraryTest
{
protected:
    void TearDown() override
    {
        tl::platform::setTextRecognizer(nullptr);
        tltest::LibraryTest::TearDown();
    }

    QString drawnImage(const QString &relative, const QStringList &lines)
    {
        const QString path = inRoot(relative);
        QDir().mkpath(QFileInfo(path).absolutePath());
        EXPECT_TRUE(tltest::drawnText(lines).save(path));
        return path;
    }

    // The run's text and the status texts it showed, in order, once each.
    QString recognize(const QString &path)
    {
        RecognitionRun run;
        run.showStatus = [this](const QString &text, double) {
            if (statuses.isEmpty() || statuses.last() != text)
                statuses << text;
        };
        return tl_recognizeText(path, run);
    }

    QStringList documentsIn(const QString &relative) const
    {
        return QDir(inRoot(relative)).entryList({"*.html"}, QDir::Files);
    }

    QStringList statuses;
};

TEST_F(TextRecognition, DrawnTextComesBackLineByLine)
{
    const struct
    {
        const char *name;
        QStringList lines;
        QString expected;
    } cases[] = {
        {"clean text", {"Invoice number 4711"}, "Invoice number 4711"},
        {"two lines", {"Meeting notes", "Buy more coffee"}, "Meeting notes  \nBuy more coffee"},
        {"no text", {}, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const QString image = drawnImage(QStringLiteral("Scans/%1.png").arg(c.name), c.lines);
        EXPECT_EQ(recognize(image), c.expected);
        EXPECT_EQ(ocrOf(image), c.expected);
    }
    EXPECT_EQ(statuses, QStringList{"Recognizing text..."});
}

TEST_F(TextRecognition, AnImageWithoutTextMakesNoDocument)
{
    const QString image = drawnImage("Scans/blank.png", {});
    EXPECT_EQ(tl_saveRecognizedText(image, recognize(image)), QString());
    EXPECT_EQ(documentsIn("Scans"), QStringList());
}

TEST_F(TextRecognition, AnAttachmentGivesADocumentInItsBookLinkingBack)
{
    const QString image = drawnImage("Trip/TLImages/receipt 1.png", {"Hotel receipt"});
    const QString document = tl_saveRecognizedText(image, recognize(image));
    EXPECT_EQ(document, inRoot("Trip/Hotel receipt.html"));
    const QString html = QString::fromUtf8(tltest::readFile(document));
    EXPECT_TRUE(
        html.contains("<a href=\"TLImages/receipt%201.png\"><img src=\"TLImages/receipt%201.png\""))
        << html;
    EXPECT_TRUE(html.contains("<p>Hotel receipt</p>")) << html;
    EXPECT_EQ(tl::links::backlinksOf(image), QStringList{"/Trip/Hotel receipt.html"});
}

TEST_F(TextRecognition, APDFIsReadPageByPageAndRebuiltOnEveryRun)
{
    const QString pdf = inRoot("Scans/letter.pdf");
    QDir().mkpath(inRoot("Scans"));
    ASSERT_TRUE(tltest::drawnPDF(pdf, {{"Dear reader"}, {"Kind regards"}}));
    for (int run = 0; run < 2; ++run) {
        SCOPED_TRACE(run);
        statuses.clear();
        EXPECT_EQ(recognize(pdf), "Dear reader  \nKind regards");
        EXPECT_EQ(ocrOf(pdf), "Dear reader  \nKind regards");
        EXPECT_EQ(statuses, QStringList({"Recognizing text...", "Recognizing page 1 of 2",
                                         "Recognizing page 2 of 2"}));
    }
}

// The rest needs no engine.
class RecognizedText : public TextRecognition
{
protected:
    void SetUp() override
    {
        TextRecognition::SetUp();
        tl::platform::setTextRecognizer(recognizer);
    }
    std::shared_ptr<tltest::ScriptedTextRecognizer> recognizer =
        std::make_shared<tltest::ScriptedTextRecognizer>();
};

TEST_F(RecognizedText, TheDocumentShowsOrNamesItsSourceByType)
{
    const struct
    {
        const char *type;
        const char *source;
        const char *document;
        const char *content;
    } cases[] = {
        {"txt", "Box/my scan.png", "Box/Total 12.txt",
         "Total 12\n\ntavelle:///Box/my%20scan.png\n\nTotal 12  \nPaid\n\n"
         "Original: tavelle:///Box/my%20scan.png"},
        {"md", "Box/my scan.png", "Box/Total 12.md",
         "Total 12\n\n[![](tavelle:///Box/my%20scan.png)](tavelle:///Box/my%20scan.png)\n\n----  "
         "\n\nTotal 12  \nPaid"},
        {"md", "Box/TLImages/my scan.png", "Box/Total 12 1.md",
         "Total 12\n\n[![](TLImages/my%20scan.png)](TLImages/my%20scan.png)\n\n----  "
         "\n\nTotal 12  \nPaid"},
        {"txt", "Box/TLImages/scan.pdf", "Box/Total 12 1.txt",
         "Total 12\n\ntavelle:///Box/TLImages/scan.pdf\n\nTotal 12  \nPaid\n\n"
         "Original: tavelle:///Box/TLImages/scan.pdf"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.type) + " " + c.source);
        setSetting("DefaultDocumentType", c.type);
        const QString source = makeFile(inRoot(c.source), "picture");
        const QString document = tl_saveRecognizedText(source, "Total 12  \nPaid");
        EXPECT_EQ(document, inRoot(c.document));
        EXPECT_EQ(QString::fromUtf8(tltest::readFile(document)), c.content);
    }
}

TEST_F(RecognizedText, AStoppedPDFKeepsThePagesReadAndMakesNoText)
{
    const QString pdf = inRoot("Scans/long.pdf");
    QDir().mkpath(inRoot("Scans"));
    ASSERT_TRUE(tltest::drawnPDF(pdf, {{"one"}, {"two"}, {"three"}}));
    tl::store::tl_setProperty(pdf, QStringLiteral("from before"), QStringLiteral("OCR"));
    recognizer->push({"first", "page"});
    recognizer->push({"second"});
    RecognitionRun run;
    recognizer->beforeAnswer = [&run](int picture, const auto &) {
        if (picture == 2)
            run.cancelled = true;
    };
    EXPECT_EQ(tl_recognizeText(pdf, run), QString());
    EXPECT_EQ(ocrOf(pdf), "first  \npage");
    EXPECT_EQ(recognizer->pictures().size(), 2);
    EXPECT_EQ(recognizer->pictures().first().height(), 3508) << "A4 at 300 dpi";
}

TEST_F(RecognizedText, OtherKindsAreNotRead)
{
    const QString note = makeFile(inRoot("Notes/todo.md"), "text");
    RecognitionRun run;
    EXPECT_FALSE(tl_canRecognizeText(note));
    EXPECT_TRUE(tl_canRecognizeText("/a/B.JPG"));
    EXPECT_TRUE(tl_canRecognizeText("/a/b.pdf"));
    EXPECT_EQ(tl_recognizeText(note, run), QString());
    EXPECT_TRUE(recognizer->pictures().isEmpty());
}

} // namespace
