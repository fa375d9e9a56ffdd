// Request bodies: small ones in memory, large and chunked ones through a
// spooled file that is gone when the request ends, whatever its outcome.
#include "webdav_test_support.h"

using namespace servertest;

namespace {

QByteArray chunked(const QByteArray &body, qsizetype piece)
{
    QByteArray out;
    for (qsizetype at = 0; at < body.size(); at += piece) {
        const QByteArray part = body.mid(at, piece);
        out += QByteArray::number(part.size(), 16) + "\r\n" + part + "\r\n";
    }
    return out + "0\r\n\r\n";
}

} // namespace

TEST_F(WebDAVTest, LargeUploadPassesThroughASpooledFile)
{
    const QByteArray body = pattern(server::RequestBody::kMaxInMemorySize + 1);
    const auto r = request("PUT", "/Book/large.bin", {}, body);
    ASSERT_EQ(r->status, 201);
    EXPECT_TRUE(read("Book/large.bin") == body);
    EXPECT_TRUE(uploads().isEmpty());
}

TEST_F(WebDAVTest, UploadOfExactlyTheLimitStaysInMemory)
{
    const QByteArray body = pattern(server::RequestBody::kMaxInMemorySize);
    harness->send(head("PUT", "/Book/limit.bin",
                       "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n") +
                  body.left(1000));
    EXPECT_TRUE(uploads().isEmpty());
    harness->send(body.mid(1000));
    QByteArray out = harness->output();
    EXPECT_EQ(takeResponse(out)->status, 201);
    EXPECT_TRUE(read("Book/limit.bin") == body);
}

TEST_F(WebDAVTest, ChunkedUploadIsSpooledAndReplacesTheFile)
{
    const QByteArray body = pattern(300000);
    harness->send(head("PUT", "/Book/note.txt", "Transfer-Encoding: chunked\r\n\r\n") +
                  chunked(body, 70000).left(1000));
    EXPECT_EQ(uploads().size(), 1);
    harness->send(chunked(body, 70000).mid(1000));
    QByteArray out = harness->output();
    EXPECT_EQ(takeResponse(out)->status, 200);
    EXPECT_TRUE(read("Book/note.txt") == body);
    EXPECT_TRUE(uploads().isEmpty());
}

TEST_F(WebDAVTest, FailedLargeUploadLeavesNoSpooledFile)
{
    const auto r = request("PUT", "/Missing/large.bin", {},
                           pattern(server::RequestBody::kMaxInMemorySize + 10));
    EXPECT_EQ(r->status, 403);
    EXPECT_TRUE(uploads().isEmpty());
    EXPECT_FALSE(exists("Missing"));
}

TEST_F(WebDAVTest, ChunkedBodyOfAnotherMethodIsReadFromItsFile)
{
    const QByteArray body = "<D:lockinfo xmlns:D=\"DAV:\"><D:lockscope><D:exclusive/></D:lockscope>"
                            "<D:locktype><D:write/></D:locktype></D:lockinfo>";
    const auto r = request("LOCK", "/Book/note.txt", "Depth: 0\r\nTransfer-Encoding: chunked\r\n",
                           chunked(body, 40));
    ASSERT_EQ(r->status, 200);
    EXPECT_TRUE(r->body.contains("<D:lockscope><D:exclusive/></D:lockscope>"));
    EXPECT_TRUE(uploads().isEmpty());
}

TEST_F(WebDAVTest, ParsedBodyOfExactlyTheLimitIsRead)
{
    const QByteArray start =
        "<D:propfind xmlns:D=\"DAV:\"><D:prop><D:getcontentlength/></D:prop></D:propfind>";
    const QByteArray body =
        start + QByteArray(server::DAVConnection::kMaxParsedBodySize - start.size(), ' ');
    const auto r = request("PROPFIND", "/Book/note.txt", "Depth: 0\r\n", body);
    ASSERT_EQ(r->status, 207);
    EXPECT_TRUE(r->body.contains("<D:getcontentlength>5</D:getcontentlength>"));
    EXPECT_FALSE(r->body.contains("resourcetype"));
}

TEST_F(WebDAVTest, ParsedBodiesOverTheLimitGet413WithoutBeingRead)
{
    const QByteArray over = QByteArray::number(server::DAVConnection::kMaxParsedBodySize + 1);
    const QByteArray heads[] = {
        head("PROPFIND", "/Book", "Depth: 0\r\nContent-Length: " + over + "\r\n\r\n"),
        head("LOCK", "/Book/note.txt", "Depth: 0\r\nContent-Length: " + over + "\r\n\r\n"),
        head("LOCK", "/Book/note.txt", "Depth: 0\r\nTransfer-Encoding: chunked\r\n\r\n") +
            chunked(pattern(server::DAVConnection::kMaxParsedBodySize + 1), 65536),
        // No PROPPATCH is served: its body is refused before it is read.
        head("PROPPATCH", "/Book", "Content-Length: " + over + "\r\n\r\n"),
    };
    const int statuses[] = {413, 413, 413, 400};
    for (size_t i = 0; i < std::size(heads); ++i) {
        Harness<server::DAVConnection> h(root);
        const auto r = h.exchange(heads[i]);
        ASSERT_TRUE(r) << i;
        EXPECT_EQ(r->status, statuses[i]) << i;
        EXPECT_EQ(r->header("Connection"), "close") << i;
        EXPECT_TRUE(h.socket->isDisconnected()) << i;
        EXPECT_TRUE(uploads().isEmpty()) << i;
    }
    EXPECT_EQ(read("Book/note.txt"), "hello");
}

TEST_F(WebDAVTest, UnauthenticatedUploadIsNeverSpooled)
{
    Harness<server::DAVConnection> h(root);
    h.send("PUT /Book/big.bin HTTP/1.1\r\nHost: " + QByteArray(kHost) +
           "\r\nContent-Length: 5000000\r\n\r\n" + pattern(600000));
    QByteArray out = h.output();
    const auto r = takeResponse(out);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->status, 401);
    EXPECT_TRUE(uploads().isEmpty());
    EXPECT_TRUE(h.socket->isDisconnected());
    EXPECT_FALSE(exists("Book/big.bin"));
}

TEST_F(WebDAVTest, ClientGoneMidUploadLeavesNoSpooledFile)
{
    harness->send(head("PUT", "/Book/cut.bin", "Content-Length: 5000000\r\n\r\n") +
                  pattern(600000));
    EXPECT_EQ(uploads().size(), 1);
    harness->socket->feedEnd();
    harness->queue->drain();
    EXPECT_TRUE(harness->died);
    EXPECT_TRUE(uploads().isEmpty());
    EXPECT_FALSE(exists("Book/cut.bin"));
}

TEST_F(WebDAVTest, StaleUploadsGoAtLaunch)
{
    QDir().mkpath(server::uploadFolder());
    QFile stale(server::uploadFolder() + "/0A1B-stale");
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    stale.close();
    server::removeStaleUploads();
    EXPECT_TRUE(uploads().isEmpty());
}

TEST_F(WebDAVTest, ConnectionKeepsAnsweringAfterUploads)
{
    for (int i = 0; i < 3; ++i) {
        const QByteArray name = "/Book/n" + QByteArray::number(i) + ".txt";
        EXPECT_EQ(request("PUT", name, {}, pattern(100 + i))->status, 201);
        EXPECT_EQ(request("GET", name)->body, pattern(100 + i));
    }
}
