// LOCK and UNLOCK: answers made up from the request, with nothing kept.
#include "webdav_test_support.h"

#include <QRegularExpression>

using namespace servertest;

namespace {

QByteArray lockInfo(const QByteArray &scope, const QByteArray &owner = {})
{
    return "<D:lockinfo xmlns:D=\"DAV:\"><D:lockscope><D:" + scope +
           "/></D:lockscope><D:locktype><D:write/></D:locktype>" + owner + "</D:lockinfo>";
}

QByteArray lockBody(const QByteArray &scope, const QByteArray &owner = {})
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>" + lockInfo(scope, owner);
}

QByteArray token(const QByteArray &body)
{
    static const QRegularExpression re(QStringLiteral("<D:locktoken><D:href>([^<]*)</D:href>"));
    return re.match(QString::fromUtf8(body)).captured(1).toUtf8();
}

} // namespace

TEST_F(WebDAVTest, LockAnswersTheWholeActiveLock)
{
    const auto r =
        request("LOCK", "/Book/note.txt", "Depth: 0\r\nTimeout: Second-3600\r\n",
                lockBody("exclusive", "<D:owner><D:href>mailto:me@example.org</D:href></D:owner>"));
    ASSERT_EQ(r->status, 200);
    EXPECT_EQ(r->header("Content-Type"), "application/xml; charset=\"utf-8\"");
    EXPECT_FALSE(r->hasHeader("Lock-Token"));
    const QByteArray lockToken = token(r->body);
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^urn:uuid:[0-9A-F-]{36}$"))
                    .match(QString::fromUtf8(lockToken))
                    .hasMatch())
        << lockToken.toStdString();
    EXPECT_EQ(r->body,
              "<?xml version=\"1.0\" encoding=\"utf-8\" ?><D:prop xmlns:D=\"DAV:\">\n"
              "<D:lockdiscovery>\n<D:activelock>\n"
              "<D:locktype><D:write/></D:locktype>\n"
              "<D:lockscope><D:exclusive/></D:lockscope>\n"
              "<D:depth>0</D:depth>\n"
              "<D:owner><D:href>mailto:me@example.org</D:href></D:owner>\n"
              "<D:timeout>Second-3600</D:timeout>\n"
              "<D:locktoken><D:href>" +
                  lockToken +
                  "</D:href></D:locktoken>\n"
                  "<D:lockroot><D:href>http://127.0.0.1:8080/Book/note.txt</D:href></D:lockroot>\n"
                  "</D:activelock>\n</D:lockdiscovery>\n</D:prop>");
}

TEST_F(WebDAVTest, LockOfANewNameMakesAnEmptyFileThatUnlockKeeps)
{
    ASSERT_EQ(request("LOCK", "/Book/locked.txt", "Depth: 0\r\n", lockBody("exclusive"))->status,
              200);
    ASSERT_TRUE(exists("Book/locked.txt"));
    EXPECT_EQ(QFileInfo(path("Book/locked.txt")).size(), 0);
    ASSERT_EQ(request("UNLOCK", "/Book/locked.txt", "Lock-Token: <urn:uuid:x>\r\n")->status, 204);
    EXPECT_TRUE(exists("Book/locked.txt"));
}

TEST_F(WebDAVTest, LockRefreshKeepsTheToken)
{
    const auto r =
        request("LOCK", "/Book/note.txt", "If: (<urn:uuid:ABC-1>)\r\nTimeout: Infinite\r\n");
    ASSERT_EQ(r->status, 200);
    EXPECT_EQ(token(r->body), "urn:uuid:ABC-1");
    EXPECT_TRUE(r->body.contains("<D:depth>0</D:depth>"));
    EXPECT_FALSE(r->body.contains("<D:owner>"));
}

TEST_F(WebDAVTest, LockIsNeverConsulted)
{
    ASSERT_EQ(request("LOCK", "/Book/note.txt", "Depth: 0\r\n", lockBody("exclusive"))->status,
              200);
    EXPECT_EQ(request("PUT", "/Book/note.txt", {}, "still writable")->status, 200);
    EXPECT_EQ(request("DELETE", "/Book/note.txt")->status, 200);
}

TEST_F(WebDAVTest, LockRefusalsAreLogged)
{
    LogCatcher log;
    EXPECT_EQ(request("LOCK", "/Book", "Depth: infinity\r\n", lockBody("exclusive"))->status, 403);
    EXPECT_TRUE(log.contains("Locking request \"exclusive/write/infinity\" for \"" + path("Book") +
                             "\" is not allowed"));
    EXPECT_EQ(
        request("LOCK", "/Book/note.txt", "Depth: 0\r\n", "<D:propfind xmlns:D=\"DAV:\"/>")->status,
        403);
    EXPECT_TRUE(log.contains("HTTP Server: Invalid DAV properties\n<D:propfind"));
}

TEST_F(WebDAVTest, LockOwnerIsEscapedAndEntitiesStayUnread)
{
    QFile secret(dir.path() + "/secret.txt");
    ASSERT_TRUE(secret.open(QIODevice::WriteOnly));
    secret.write("SECRET-CONTENT");
    secret.close();
    const QByteArray body =
        "<?xml version=\"1.0\"?><!DOCTYPE D:lockinfo [<!ENTITY x SYSTEM \"file://" +
        secret.fileName().toUtf8() + "\">]>" +
        lockInfo("exclusive", "<D:owner><D:href>&x;</D:href></D:owner>");
    const auto r = request("LOCK", "/Book/note.txt", "Depth: 0\r\n", body);
    ASSERT_EQ(r->status, 200) << body.toStdString();
    EXPECT_FALSE(r->body.contains("SECRET"));

    const auto escaped =
        request("LOCK", "/Book/note.txt", "Depth: 0\r\n",
                lockBody("exclusive", "<D:owner><D:href>a&lt;b&amp;c</D:href></D:owner>"));
    EXPECT_TRUE(escaped->body.contains("<D:owner><D:href>a&lt;b&amp;c</D:href></D:owner>"))
        << escaped->body.toStdString();
}
