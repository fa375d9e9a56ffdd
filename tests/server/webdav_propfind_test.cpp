// PROPFIND: the multistatus body, the property set asked for, href escaping.
#include "platform/file_ops.h"
#include "webdav_test_support.h"

#include <QRegularExpression>

using namespace servertest;

namespace {

const QByteArray kHeader =
    "<?xml version=\"1.0\" encoding=\"utf-8\" ?><D:multistatus xmlns:D=\"DAV:\">\n";

QByteArray propBody(const QByteArray &props)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?><D:propfind xmlns:D=\"DAV:\"><D:prop>" +
           props + "</D:prop></D:propfind>";
}

QStringList hrefs(const QByteArray &body)
{
    QStringList out;
    static const QRegularExpression href(QStringLiteral("<D:href>([^<]*)</D:href>"));
    for (const auto &m : href.globalMatch(QString::fromUtf8(body)))
        out << m.captured(1);
    return out;
}

} // namespace

TEST_F(WebDAVTest, PropfindOfAFileWithOneProperty)
{
    const auto r =
        request("PROPFIND", "/Book/note.txt", "Depth: 0\r\n", propBody("<D:getcontentlength/>"));
    ASSERT_EQ(r->status, 207);
    EXPECT_EQ(r->header("Content-Type"), "application/xml; charset=\"utf-8\"");
    EXPECT_EQ(r->body, kHeader + "<D:response><D:href>/Book/note.txt</D:href><D:propstat><D:prop>"
                                 "<D:getcontentlength>5</D:getcontentlength></D:prop>"
                                 "<D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response>\n"
                                 "</D:multistatus>");
}

TEST_F(WebDAVTest, PropfindOfABookWithoutBodyGivesAllFourButNoLength)
{
    const auto r = request("PROPFIND", "/Book", "Depth: 0\r\n");
    ASSERT_EQ(r->status, 207);
    EXPECT_TRUE(r->body.contains("<D:href>/Book</D:href>"));
    EXPECT_TRUE(r->body.contains("<D:resourcetype><D:collection/></D:resourcetype>"));
    EXPECT_TRUE(r->body.contains("<D:getlastmodified>"));
    EXPECT_FALSE(r->body.contains("getcontentlength"));
    // The creation date is there exactly when the file system records one.
    EXPECT_EQ(r->body.contains("<D:creationdate>"),
              tl::platform::creationDate(path("Book")).has_value());
}

TEST_F(WebDAVTest, PropfindDatesAreInGMTInTheirTwoFormats)
{
    ASSERT_TRUE(tl::platform::setModificationDate(
        path("Book/note.txt"), QDateTime(QDate(2021, 3, 7), QTime(9, 5, 4), Qt::UTC)));
    const auto r = request("PROPFIND", "/Book/note.txt", "Depth: 0\r\n");
    EXPECT_TRUE(
        r->body.contains("<D:getlastmodified>Sun, 7 Mar 2021 09:05:04 GMT</D:getlastmodified>"))
        << r->body.toStdString();
    static const QRegularExpression creation(QStringLiteral(
        "<D:creationdate>\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\+00:00</D:creationdate>"));
    if (tl::platform::creationDate(path("Book/note.txt"))) {
        EXPECT_TRUE(creation.match(QString::fromUtf8(r->body)).hasMatch());
    }
}

TEST_F(WebDAVTest, PropfindDepthOneListsEveryEntryEscaped)
{
    write(".hidden", "x");
    write("Book.plist", "<plist/>");
    const auto r = request("PROPFIND", "/", "Depth: 1\r\n");
    ASSERT_EQ(r->status, 207);
    QStringList listed = hrefs(r->body);
    ASSERT_FALSE(listed.isEmpty());
    EXPECT_EQ(listed.takeFirst(), "/");
    listed.sort();
    EXPECT_EQ(listed, (QStringList{"/.hidden", "/Book", "/Book.plist", "/Other",
                                   "/a%20file%20%26%20b:c.md"}));
}

TEST_F(WebDAVTest, PropfindDepthOneOfABookPutsItsNameInFront)
{
    const auto r = request("PROPFIND", "/Book", "Depth: 1\r\n", propBody("<D:resourcetype/>"));
    EXPECT_EQ(hrefs(r->body), (QStringList{"/Book", "/Book/note.txt"}));
    EXPECT_TRUE(r->body.contains("<D:resourcetype/>"));
}

TEST_F(WebDAVTest, PropfindDepthOneOfAFileListsTheFileAlone)
{
    const auto r = request("PROPFIND", "/Book/note.txt", "Depth: 1\r\n");
    EXPECT_EQ(hrefs(r->body), QStringList{"/Book/note.txt"});
}

TEST_F(WebDAVTest, PropfindEscapesWhatURLsCannotHold)
{
    write("x+y?z#<é>.txt", "x");
    const auto r = request("PROPFIND", "/", "Depth: 1\r\n", propBody("<D:resourcetype/>"));
    EXPECT_TRUE(hrefs(r->body).contains("/x%2By%3Fz%23%3C%C3%A9%3E.txt")) << r->body.toStdString();
}

TEST_F(WebDAVTest, PropfindLeavesOutNamesThatAreNoUTF8)
{
    const QByteArray name = root.toUtf8() + "/bad\xff.txt";
    FILE *f = std::fopen(name.constData(), "w");
    ASSERT_TRUE(f);
    std::fclose(f);
    const auto r = request("PROPFIND", "/", "Depth: 1\r\n");
    ASSERT_EQ(r->status, 207);
    EXPECT_FALSE(r->body.contains("bad"));
}

TEST_F(WebDAVTest, PropfindPropertySets)
{
    struct Case
    {
        QByteArray body;
        QList<QByteArray> present;
        QList<QByteArray> absent;
        QString logged;
    };
    const Case cases[] = {
        {propBody("<D:resourcetype/><D:getlastmodified/>"),
         {"resourcetype", "getlastmodified"},
         {"getcontentlength", "creationdate"},
         {}},
        {propBody("<D:displayname/>"),
         {"resourcetype", "getlastmodified", "getcontentlength"},
         {},
         "Unknown DAV property requested \"displayname\""},
        {propBody(""), {"resourcetype", "getlastmodified", "getcontentlength"}, {}, {}},
        {"<D:propfind xmlns:D=\"DAV:\"><D:allprop/></D:propfind>",
         {"resourcetype", "getlastmodified", "getcontentlength"},
         {},
         "HTTP Server: Invalid DAV properties\n<D:propfind"},
        {"not xml at all", {"resourcetype", "getlastmodified", "getcontentlength"}, {}, {}},
        // Another namespace prefix, and none at all, name the same properties.
        {"<propfind xmlns=\"DAV:\"><prop><getcontentlength/></prop></propfind>",
         {"getcontentlength"},
         {"resourcetype"},
         {}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.body.toStdString());
        LogCatcher log;
        const auto r = request("PROPFIND", "/Book/note.txt", "Depth: 0\r\n", c.body);
        ASSERT_EQ(r->status, 207);
        for (const QByteArray &p : c.present)
            EXPECT_TRUE(r->body.contains("<D:" + p)) << p.toStdString();
        for (const QByteArray &p : c.absent)
            EXPECT_FALSE(r->body.contains("<D:" + p)) << p.toStdString();
        if (!c.logged.isEmpty()) {
            EXPECT_TRUE(log.contains(c.logged)) << log.lines().join('|').toStdString();
        }
    }
}

TEST_F(WebDAVTest, PropfindNeverLoadsExternalEntities)
{
    QFile secret(dir.path() + "/secret.txt");
    ASSERT_TRUE(secret.open(QIODevice::WriteOnly));
    secret.write("SECRET-CONTENT");
    secret.close();
    LogCatcher log;
    const QByteArray body =
        "<?xml version=\"1.0\"?><!DOCTYPE D:propfind [<!ENTITY x SYSTEM \"file://" +
        secret.fileName().toUtf8() +
        "\">]><D:propfind xmlns:D=\"DAV:\"><D:prop><D:getcontentlength/>&x;</D:prop>"
        "</D:propfind>";
    const auto r = request("PROPFIND", "/Book/note.txt", "Depth: 0\r\n", body);
    ASSERT_EQ(r->status, 207);
    EXPECT_FALSE(r->body.contains("SECRET"));
    EXPECT_FALSE(log.contains("SECRET"));
}

TEST_F(WebDAVTest, PropfindLogsAnUnsupportedDepth)
{
    LogCatcher log;
    EXPECT_EQ(request("PROPFIND", "/", "Depth: infinity\r\n")->status, 404);
    EXPECT_TRUE(log.contains("Unsupported DAV depth \"infinity\""));
}
