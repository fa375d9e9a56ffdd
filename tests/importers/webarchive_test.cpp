#include "foundation/plist.h"
#include "importers/webarchive.h"
#include "store/keys.h"
#include "store/library_fixture.h"
#include "store/properties.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace {

using tl::importers::tl_saveWebarchiveAsHTML;
using tl::importers::tl_webarchiveToHTML;

struct Resource
{
    const char *url;
    const char *mimeType;
    QByteArray data;
};

QVariantMap resource(const Resource &r)
{
    return {{"WebResourceURL", QString::fromUtf8(r.url)},
            {"WebResourceMIMEType", QString::fromUtf8(r.mimeType)},
            {"WebResourceData", r.data}};
}

// The archive as the browser writes it: a binary property list.
QByteArray archive(const QByteArray &page, const std::vector<Resource> &subresources = {},
                   const char *url = "https://example.org/page")
{
    QVariantList list;
    for (const Resource &r : subresources)
        list << resource(r);
    return tl::plist::toBinary(QVariantMap{{"WebMainResource", resource({url, "text/html", page})},
                                           {"WebSubresources", list}});
}

using Files = std::vector<std::pair<const char *, QByteArray>>;

struct ShowCase
{
    const char *name;
    QByteArray page;
    std::vector<Resource> subresources;
    // "X" stands for the extract folder.
    const char *expected;
    Files files;
};

class WebArchive : public tltest::LibraryTest
{
protected:
    QString write(const QByteArray &bytes, const QString &name = "Book/Page.webarchive")
    {
        return makeFile(inRoot(name), bytes);
    }
};

TEST_F(WebArchive, ShownPagesTakeTheirResourcesFromTheExtractFolder)
{
    const QByteArray latin1 = QString("caf\u00e9").toLatin1();
    const ShowCase cases[] = {
        {"an address listed twice is written once",
         "<img src=\"http://x/img/a.png\">",
         {{"http://x/img/a.png", "image/png", "one"}, {"http://x/img/a.png", "image/png", "two"}},
         "<img src=\"file://X/a.png\">",
         {{"a.png", "one"}}},
        {"the same name from two folders overwrites",
         "<img src=\"http://x/one/a.png\">",
         {{"http://x/one/a.png", "image/png", "one"}, {"http://x/two/a.png", "image/png", "two"}},
         "<img src=\"file://X/a.png\">",
         {{"a.png", "two"}}},
        {"site-relative and relative references, style sheets too",
         "<link href=\"/css/s.css\"><img src=\"pics/b.png\"><img src=\"/img/b.png\">",
         {{"http://x/css/s.css", "text/css", "p{}"}, {"http://x/img/b.png", "image/gif", "b"}},
         "<link href=\"file://X/s.css\"><img src=\"file://X/b.png\"><img src=\"file://X/b.png\">",
         {{"s.css", "p{}"}, {"b.png", "b"}}},
        {"scripts and pages are left out",
         "<script src=\"http://x/s.js\"></script>",
         {{"http://x/s.js", "application/javascript", "s"}},
         "<script src=\"http://x/s.js\"></script>",
         {}},
        {"the name stands unescaped in the expression",
         "<img src=\"pics/a+b.png\"><img src=\"pics/aab.png\">",
         {{"http://x/img/a+b.png", "image/png", "p"}},
         "<img src=\"pics/a+b.png\"><img src=\"file://X/a+b.png\">",
         {{"a+b.png", "p"}}},
        {"a name that does not compile leaves the text; the full address still goes",
         "<img src=\"pics/a(.png\"><img src=\"http://x/a(.png\">",
         {{"http://x/a(.png", "image/png", "p"}},
         "<img src=\"pics/a(.png\"><img src=\"file://X/a(.png\">",
         {{"a(.png", "p"}}},
        {"relative steps before a file link go, in any case",
         "<img src=\"../FILE://y\">",
         {{"http://x/c.png", "image/png", "c"}},
         "<img src=\"file://y\">",
         {}},
        {"escapes of the address stay in the name",
         "<img src=\"http://x/a%20b.png\">",
         {{"http://x/a%20b.png", "image/png", "s"}},
         "<img src=\"file://X/a%20b.png\">",
         {{"a%20b.png", "s"}}},
        {"an address without a path names no file",
         "<img src=\"data:image/png;base64,AA\">",
         {{"data:image/png;base64,AA", "image/png", "d"}},
         "<img src=\"data:image/png;base64,AA\">",
         {}},
        {"a page that is not UTF-8 gives nothing", latin1, {}, "", {}},
    };
    const QString extract = tl::importers::webarchiveExtractFolder();
    for (const ShowCase &c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = write(archive(c.page, c.subresources));
        EXPECT_EQ(tl_webarchiveToHTML(path),
                  QString(c.expected).replace("file://X", "file://" + extract));
        for (const auto &[name, bytes] : c.files)
            EXPECT_EQ(tltest::readFile(extract + "/" + name), bytes) << name;
    }
    EXPECT_EQ(tl_webarchiveToHTML(write("not an archive")), QString());
    EXPECT_EQ(tl_webarchiveToHTML(write(tl::plist::toBinary(QVariantMap{{"WebMainResource", 1}}))),
              QString());
}

struct SaveCase
{
    const char *name;
    QByteArray archive;
    const char *expected;
    Files images;
    // The URL property, if any.
    const char *url;
};

TEST_F(WebArchive, SavedPagesBecomeDocumentsOfTheBook)
{
    const char *head = "<!DOCTYPE html>\n<html>\n<head>\n<meta name= \"viewport\" content = "
                       "\"initial-scale=1.0\">\n<meta http-equiv=\"Content-Type\" "
                       "content=\"text/html; charset=UTF-8\" />\n<!-- Generator: Tavelle -->\n"
                       "<style ></style>\n</head>\n<body>\n";
    const SaveCase cases[] = {
        {"a page without a head is wrapped",
         archive("<!DOCTYPE html><p>x</p>"),
         "\x01<p>x</p>\n</body>\n</html>",
         {},
         "https://example.org/page"},
        {"the generator before the head's end, the body's attributes gone",
         archive("<html><head><title>t</title></head><body class=x\nstyle=\"a\">y</body></html>"),
         "<html><head><title>t</title><!-- Generator: Tavelle -->\n<style ></style>\n</head>"
         "<body>y</body></html>",
         {},
         "https://example.org/page"},
        {"two pictures of one name are both kept, linked relatively",
         archive("<head></head><img src=\"http://x/one/a.png\"><a href=\"http://x/two/a.png\">"
                 "<img src=\"/one/a.png\">",
                 {{"http://x/one/a.png", "image/png", "one"},
                  {"http://x/two/a.png", "image/png", "two"},
                  {"http://x/one/a.png", "image/png", "again"}}),
         "<head><!-- Generator: Tavelle -->\n<style ></style>\n</head><img src=\"TLImages/a.png\">"
         "<a href=\"TLImages/a 1.png\"><img src=\"TLImages/a.png\">",
         {{"a.png", "one"}, {"a 1.png", "two"}},
         "https://example.org/page"},
        {"relative steps before the attachment folder go",
         archive("<head></head><img src=\"./../tlimages/z.png\">",
                 {{"http://x/c.png", "image/png", "c"}}),
         "<head><!-- Generator: Tavelle -->\n<style ></style>\n</head><img src=\"TLImages/z.png\">",
         {{"c.png", "c"}},
         "https://example.org/page"},
        {"a page saved from a file has no URL",
         archive("<head></head>", {}, "file:///home/a/page.html"),
         "<head><!-- Generator: Tavelle -->\n<style ></style>\n</head>",
         {},
         nullptr},
    };
    int n = 0;
    for (const SaveCase &c : cases) {
        SCOPED_TRACE(c.name);
        const QString book = inRoot(QString("Book%1").arg(++n));
        const QString source = write(c.archive, QString("Book%1/Page.webarchive").arg(n));
        const QString saved = tl_saveWebarchiveAsHTML(source);
        ASSERT_EQ(saved, book + "/Page.html");
        EXPECT_EQ(QString::fromUtf8(tltest::readFile(saved)),
                  QString(c.expected).replace("\x01", head));
        for (const auto &[name, bytes] : c.images)
            EXPECT_EQ(tltest::readFile(book + "/TLImages/" + name), bytes) << name;
        EXPECT_EQ(QDir(book + "/TLImages").entryList(QDir::Files).size(),
                  qsizetype(c.images.size()));
        EXPECT_EQ(tl::store::tl_propertyForKey(saved, "CSS").toString(),
                  "CSS/Minimalist Theme.css");
        EXPECT_EQ(tl::store::tl_propertyForKey(saved, "URL").toString(), QString(c.url));
        EXPECT_TRUE(QFileInfo::exists(source));
    }
}

TEST_F(WebArchive, SavingTakesAFreeNameAndNothingForAPageThatIsNotUTF8)
{
    makeFile(inRoot("Book/Page.html"), "mine");
    const QString source = write(archive("<p>x</p>"));
    EXPECT_EQ(tl_saveWebarchiveAsHTML(source), inRoot("Book/Page 1.html"));
    EXPECT_EQ(tltest::readFile(inRoot("Book/Page.html")), "mine");

    const QString latin1 = write(archive(QString("caf\u00e9").toLatin1()), "Other/Page.webarchive");
    EXPECT_EQ(tl_saveWebarchiveAsHTML(latin1), QString());
    EXPECT_FALSE(QFileInfo::exists(inRoot("Other/Page.html")));
}

} // namespace
