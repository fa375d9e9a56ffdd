#include "cli_support.h"
#include "support/pdf_fixture.h"
#include "support/test_environment.h"

#include <QFile>
#include <QImage>
#include <gtest/gtest.h>

namespace {

using OcrCommand = tltest::CommandTest;

TEST_F(OcrCommand, PrintsTheTextOrSavesItOrSaysWhyNot)
{
    ASSERT_TRUE(tltest::writeFile(library + "/Scans/memo.pdf",
                                  tltest::pdfOfPages({"Quarterly report"}, 28)));
    QImage blank(600, 300, QImage::Format_RGB32);
    blank.fill(Qt::white);
    ASSERT_TRUE(blank.save(library + "/Scans/blank.png"));
    ASSERT_TRUE(tltest::writeFile(library + "/Scans/note.md", "Note\n"));
    ASSERT_TRUE(tltest::writeFile(home + "/outside.pdf", tltest::pdfOfPages({"Outside"}, 28)));
    const QString doc = library + "/Scans/Quarterly report.html";
    const struct
    {
        QStringList arguments;
        int exitCode;
        QString out;
    } cases[] = {
        {{"ocr", library + "/Scans/memo.pdf"}, 0, "Quarterly report\n"},
        {{"--json", "ocr", "--save", library + "/Scans/memo.pdf"},
         0,
         "{\"document\":\"" + doc + "\",\"text\":\"Quarterly report\"}\n"},
        {{"ocr", library + "/Scans/blank.png"}, 1, ""},
        {{"ocr", library + "/Scans/note.md"}, 1, ""},
        {{"ocr", library + "/Scans/missing.png"}, 1, ""},
        {{"ocr", "--save", home + "/outside.pdf"}, 1, ""},
        {{"ocr"}, 2, ""},
    };
    for (const auto &c : cases) {
        const auto r = run(c.arguments);
        SCOPED_TRACE(c.arguments.join(u' ').toStdString());
        EXPECT_EQ(r.exitCode, c.exitCode) << r.err.toStdString();
        EXPECT_EQ(r.out, c.out);
        EXPECT_EQ(r.err.count(u'\n'), c.exitCode ? 1 : 0) << r.err.toStdString();
    }
    EXPECT_TRUE(QFile::exists(doc));
}

} // namespace
