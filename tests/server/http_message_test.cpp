#include "server/core/http_message.h"

#include <QList>
#include <gtest/gtest.h>

using server::HTTPMessage;

namespace {

HTTPMessage feedLines(const QList<QByteArray> &lines, bool *ok = nullptr)
{
    HTTPMessage message;
    bool good = true;
    for (const QByteArray &line : lines)
        good = message.appendData(line) && good;
    if (ok)
        *ok = good;
    return message;
}

} // namespace

TEST(HTTPMessage, ParsesRequestLineAndHeadersLineByLine)
{
    bool ok = false;
    const HTTPMessage m = feedLines({"GET /Books/a%20b.txt?x=1 HTTP/1.1\r\n", "Host: example\r\n",
                                     "X-Thing:   spaced value  \r\n", "\r\n"},
                                    &ok);
    ASSERT_TRUE(ok);
    EXPECT_TRUE(m.isHeaderComplete());
    EXPECT_EQ(m.method(), "GET");
    EXPECT_EQ(m.url(), "/Books/a%20b.txt?x=1");
    EXPECT_EQ(m.version(), "HTTP/1.1");
    EXPECT_EQ(m.headerField("host"), "example");
    EXPECT_EQ(m.headerField("X-THING"), "spaced value");
    EXPECT_TRUE(m.headerField("Missing").isNull());
}

TEST(HTTPMessage, AcceptsArbitrarySplitsAndKeepsTheBody)
{
    HTTPMessage m;
    const QByteArray head = "PUT /x HTTP/1.1\r\nContent-Length: 4\r\n\r\n";
    for (char c : head) {
        EXPECT_FALSE(m.isHeaderComplete()) << "complete before the blank line";
        ASSERT_TRUE(m.appendData(QByteArray(1, c)));
    }
    EXPECT_TRUE(m.isHeaderComplete());
    for (char c : QByteArray("body"))
        ASSERT_TRUE(m.appendData(QByteArray(1, c)));
    EXPECT_EQ(m.body(), "body");
}

TEST(HTTPMessage, FieldForms)
{
    bool ok = false;
    const HTTPMessage m = feedLines({"\r\n", "GET / HTTP/1.0\r\n", "X-Empty:\r\n", "Accept: a\r\n",
                                     "accept: b\r\n", "X-Long: one\r\n", "  two\r\n", "\r\n"},
                                    &ok);
    EXPECT_TRUE(ok) << "blank lines before the request line are tolerated";
    EXPECT_EQ(m.version(), "HTTP/1.0");
    EXPECT_FALSE(m.headerField("X-Empty").isNull());
    EXPECT_TRUE(m.headerField("X-Empty").isEmpty());
    EXPECT_EQ(m.headerField("Accept"), "a, b");
    EXPECT_EQ(m.headerField("X-Long"), "one two");
}

TEST(HTTPMessage, KeepsUnknownVersionsForTheConnectionToRefuse)
{
    for (const char *version : {"HTTP/0.9", "HTTP/2.0", "HTTP/1.2"}) {
        bool ok = false;
        const HTTPMessage m = feedLines({QByteArray("GET / ") + version + "\r\n", "\r\n"}, &ok);
        EXPECT_TRUE(ok) << version;
        EXPECT_EQ(m.version(), version);
    }
}

TEST(HTTPMessage, RejectsMalformedRequests)
{
    const QList<QList<QByteArray>> cases = {
        {"GET /\r\n"},                                       // no version
        {"GET / HTTP/1.1 extra\r\n"},                        // four parts
        {"GET / FTP/1.1\r\n"},                               // not HTTP
        {"GET / HTTP/1.x\r\n"},                              // bad version digits
        {"G(T / HTTP/1.1\r\n"},                              // method not a token
        {"GET /a\x01 HTTP/1.1\r\n"},                         // control character in the target
        {"GET /\xc3\xa9 HTTP/1.1\r\n"},                      // raw non-ASCII in the target
        {"GET / HTTP/1.1\r\n", "NoColon\r\n"},               // header without colon
        {"GET / HTTP/1.1\r\n", ": empty\r\n"},               // empty name
        {"GET / HTTP/1.1\r\n", "Bad Name: x\r\n"},           // blank inside the name
        {"GET / HTTP/1.1\r\n", " folded-first\r\n"},         // continuation with nothing before
        {"GET / HTTP/1.1\r\n", "X: a\rb\r\n"},               // bare CR inside
        {QByteArray("GET / HTTP/1.1\r\nX: a\0b\r\n", 24)},   // NUL inside
        {QByteArray(HTTPMessage::kMaxPendingLine + 1, 'a')}, // endless line
    };
    for (const auto &lines : cases) {
        bool ok = true;
        HTTPMessage m = feedLines(lines, &ok);
        EXPECT_FALSE(ok) << lines.join("|").toStdString();
        EXPECT_FALSE(m.appendData("GET / HTTP/1.1\r\n")) << "stays malformed";
    }
}

TEST(HTTPMessage, BuildsResponsesWithStandardReasonPhrases)
{
    HTTPMessage r(404, {}, server::HTTPVersion1_1);
    r.setHeaderField("Content-Length", "0");
    r.setHeaderField("content-length", "0"); // replaces, not adds
    EXPECT_EQ(r.messageData(), "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
    EXPECT_EQ(HTTPMessage(505, {}, server::HTTPVersion1_1).messageData(),
              "HTTP/1.1 505 HTTP Version Not Supported\r\n\r\n");
    EXPECT_EQ(HTTPMessage(207, "Custom", server::HTTPVersion1_1).messageData(),
              "HTTP/1.1 207 Custom\r\n\r\n");
    HTTPMessage withBody(200, {}, server::HTTPVersion1_1);
    withBody.setBody("abc");
    EXPECT_EQ(withBody.messageData(), "HTTP/1.1 200 OK\r\n\r\nabc");
    EXPECT_EQ(withBody.statusCode(), 200);
}
