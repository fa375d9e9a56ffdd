#include "epub_test_support.h"
#include "foundation/path_string.h"
#include "platform/folders.h"
#include "publish_test_support.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

using namespace tltest;

namespace {

// One red pixel.
const QByteArray kPicture =
    QByteArray::fromBase64("iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mP8z8DwHwAFBQI"
                           "AX8jx0gAAAABJRU5ErkJggg==");

class EPubTest : public PublishTest
{
protected:
    std::optional<QString> make(const QStringList &paths)
    {
        tl::publish::EBookAttributes attributes;
        attributes.title = "Book Title";
        attributes.author = "Ann Author";
        return compiler_.tl_makeePubWithAttributes(attributes, paths);
    }
    QString opf(const QString &book) { return zipEntry(book, "OPS/content.opf"); }
};

TEST_F(EPubTest, MimetypeComesFirstAndStored)
{
    const std::optional<QString> book = make({doc("a.md", "# A")});
    ASSERT_TRUE(book);
    const QStringList entries = zipEntries(*book);
    EXPECT_EQ(entries, QStringList({"mimetype", "META-INF/com.apple.ibooks.display-options.xml",
                                    "META-INF/container.xml", "OPS/a.html", "OPS/content.opf",
                                    "OPS/css/style.css", "OPS/toc.ncx"}));
    // The first local header: method 0 (stored), no extra field, the name.
    const QByteArray bytes = readFile(*book);
    EXPECT_EQ(bytes.mid(8, 2), QByteArray(2, '\0'));
    EXPECT_EQ(bytes.mid(28, 2), QByteArray(2, '\0'));
    EXPECT_EQ(bytes.mid(30, 28), "mimetypeapplication/epub+zip");
}

TEST_F(EPubTest, CoverImageBecomesTheCoverAndNoPage)
{
    const std::optional<QString> book = make({doc("a.md", "# A"), doc("cover.png", kPicture)});
    ASSERT_TRUE(book);
    const QString package = opf(*book);
    EXPECT_TRUE(package.contains("<meta name=\"cover\" content=\"cover-image\" />"));
    EXPECT_TRUE(package.contains("<spine toc=\"ncx\">\n<itemref idref=\"cover\"/>\n"));
    EXPECT_TRUE(zipEntries(*book).contains("OPS/cover.html"));
    EXPECT_FALSE(zipEntries(*book).contains("OPS/cover.html.html"));
    EXPECT_EQ(package.count("application/xhtml+xml"), 2); // the cover and a
}

TEST_F(EPubTest, LinksBetweenChaptersPointToTheirPages)
{
    const QString a =
        doc("a.md", "[next](b%23c%26d.md#Part) [gone](nothing.md) [web](http://x.y/)");
    doc("b#c&d.md", "# Part");
    const std::optional<QString> book = make({book_});
    ASSERT_TRUE(book);
    const QString page = zipEntry(*book, "OPS/a.html");
    EXPECT_TRUE(page.contains("<a href=\"b-c+d.html#Part\">next</a>")) << page;
    EXPECT_TRUE(page.contains("<a>gone</a>")) << page;
    EXPECT_TRUE(page.contains("<a href=\"http://x.y/\">web</a>")) << page;
    EXPECT_TRUE(zipEntries(*book).contains("OPS/b-c+d.html"));
}

TEST_F(EPubTest, ASuppliedNavigationReplacesTheGeneratedOne)
{
    const std::optional<QString> book = make({doc("a.md", "# A"), doc("own.ncx", "<ncx/>")});
    ASSERT_TRUE(book);
    EXPECT_TRUE(zipEntries(*book).contains("OPS/own.ncx"));
    EXPECT_FALSE(zipEntries(*book).contains("OPS/toc.ncx"));
    EXPECT_TRUE(opf(*book).contains("<item id=\"ncx\" href=\"own.ncx\""));
}

TEST_F(EPubTest, StopLeavesNothing)
{
    compiler_.setProgressSheet({{}, [this](double) { compiler_.stopProcess = true; }, {}});
    EXPECT_FALSE(make({doc("a.md", "one"), doc("b.md", "two")}));
    EXPECT_TRUE(QDir(book_).entryList({"*.epub"}).isEmpty());
    EXPECT_FALSE(QFileInfo::exists(tl::platform::temporaryFolder() + "/Book Title"));
}

// The checker is a Java program; CI has it, elsewhere its absence skips.
QStringList epubcheckCommand()
{
    const QString jar = "/usr/share/java/epubcheck.jar";
    if (QFileInfo::exists(jar) && !QStandardPaths::findExecutable("java").isEmpty())
        return {"java", "-jar", jar};
    return {};
}

TEST_F(EPubTest, BookPassesTheChecker)
{
    const QStringList command = epubcheckCommand();
    if (command.isEmpty()) {
        if (!qEnvironmentVariableIsEmpty("TAVELLE_CI"))
            FAIL() << "epubcheck is missing (Debian package epubcheck)";
        GTEST_SKIP() << "epubcheck not installed (Debian package epubcheck)";
    }
    makeFile(book_ + "/pic.png", kPicture);
    doc("1 Start.md", "# One &amp; only\n\nA note[^1], \"quotes\" -- and &copy;.\n\n"
                      "[^1]: The note.\n\n### Deep\n\n![pic](pic.png)\n\n"
                      "* [ ] task\n\n    code\n\n| a | b |\n|---|:-:|\n| 1 | 2 |\n\n"
                      "[on](2%20Next.md#Two) <br> ==mark==\n");
    doc("2 Next.md", "## Two\n\n<p class=\"x\">raw <img src=\"pic.png\"></p>\n");
    doc("a#b&c.txt", "plain & text");
    doc("Cover.png", kPicture);
    const std::optional<QString> book = make({});
    ASSERT_TRUE(book);
    QProcess check;
    check.setProcessChannelMode(QProcess::MergedChannels);
    check.start(command.first(), command.mid(1) << *book);
    ASSERT_TRUE(check.waitForFinished(120000));
    const QString report = QString::fromUtf8(check.readAll());
    EXPECT_EQ(check.exitCode(), 0) << report;
    EXPECT_TRUE(report.contains("0 fatals / 0 errors")) << report;
}

} // namespace
