// The server over real loopback sockets, with curl as the client.
#include "server/core/http_server.h"
#include "server_test_support.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace server;
using namespace servertest;

namespace {

struct CurlResult
{
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

CurlResult curl(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral("curl"),
                  QStringList{"--silent", "--show-error", "--max-time", "60"} + arguments);
    CurlResult result;
    if (!process.waitForFinished(90000)) {
        process.kill();
        process.waitForFinished();
        return result;
    }
    result.exitCode = process.exitCode();
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

bool waitFor(const std::function<bool()> &condition)
{
    for (int i = 0; i < 5000; ++i) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return condition();
}

class ServerTest : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    QString root;
    QByteArray small = pattern(4096);
    std::unique_ptr<HTTPServer> server;

    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        root = dir.path() + "/library";
        QDir().mkpath(root + "/Book");
        QFile f(root + "/Book/small.txt");
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(small);
        f.close();
        server = std::make_unique<HTTPServer>();
        server->setInterface(QStringLiteral("127.0.0.1"));
        server->setPort(0);
        server->setDocumentRoot(root);
        server->setUsername(QStringLiteral("Tavelle"));
        server->setPassword(QStringLiteral("secret"));
    }

    void startServer()
    {
        std::error_code error;
        ASSERT_TRUE(server->start(&error)) << error.message();
        ASSERT_NE(server->listeningPort(), 0);
    }

    QString url(const QString &path) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(server->listeningPort()).arg(path);
    }
    QStringList digest(const QString &password = QStringLiteral("secret")) const
    {
        return {"--digest", "--user", "Tavelle:" + password};
    }
};

} // namespace

TEST_F(ServerTest, StartsOnAFreePortAndLogs)
{
    LogCatcher log;
    startServer();
    EXPECT_TRUE(server->isRunning());
    EXPECT_TRUE(log.contains(
        QStringLiteral("HTTPServer: Started HTTP server on port %1").arg(server->listeningPort())));
    server->stop();
    EXPECT_FALSE(server->isRunning());
    EXPECT_EQ(server->listeningPort(), 0);
}

TEST_F(ServerTest, CurlReusesTheConnection)
{
    startServer();
    const auto r =
        curl(digest() + QStringList{"--verbose", "--output", "/dev/null", "--output", "/dev/null",
                                    url("/Book/small.txt"), url("/Book/small.txt")});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains("Re-using existing connection")) << r.err.toStdString();
    EXPECT_EQ(r.err.count("Connected to 127.0.0.1"), 1);
}

TEST_F(ServerTest, CurlChunkedUploadIsDecoded)
{
    server->setConnectionClass<TestConnection>();
    startServer();
    const QByteArray body = pattern(700000);
    const QString file = dir.path() + "/upload.bin";
    {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(body);
    }
    const auto r =
        curl(digest() + QStringList{"--header", "Transfer-Encoding: chunked", "--header",
                                    "Expect:", "--data-binary", "@" + file, url("/echo")});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out.size(), body.size());
    EXPECT_TRUE(r.out == body);
}

TEST_F(ServerTest, CurlGetsALargeFileThroughTheThreadedResponse)
{
    startServer();
    const QByteArray big = pattern(HTTPConnection::kAsyncFileThreshold + 777777);
    {
        QFile f(root + "/Book/large.bin");
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(big);
    }
    const auto r = curl(digest() + QStringList{url("/Book/large.bin")});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out.size(), big.size());
    EXPECT_TRUE(r.out == big);
    const auto range =
        curl(digest() + QStringList{"--range", "16000000-16999999", url("/Book/large.bin")});
    EXPECT_TRUE(range.out == big.mid(16000000, 1000000));
}

TEST_F(ServerTest, AddressInUseIsRecognised)
{
    startServer();
    HTTPServer second;
    second.setInterface(QStringLiteral("127.0.0.1"));
    second.setPort(server->listeningPort());
    LogCatcher log;
    std::error_code error;
    EXPECT_FALSE(second.start(&error));
    EXPECT_TRUE(HTTPServer::isAddressInUse(error))
        << error.message() << " " << error.category().name() << " " << error.value();
    EXPECT_FALSE(second.isRunning());
    EXPECT_TRUE(log.contains("HTTPServer: Failed to start HTTP Server: "));
}

TEST_F(ServerTest, LoopbackNameListensOnBothFamilies)
{
    server->setInterface(QStringLiteral("localhost"));
    startServer();
    const auto v4 = curl(digest() + QStringList{url("/Book/small.txt")});
    EXPECT_TRUE(v4.out == small);
    // Where the machine has IPv6 loopback, the server must answer there too.
    const int probe = ::socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_addr = in6addr_loopback;
    const bool hasV6 =
        probe >= 0 && ::bind(probe, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
    if (probe >= 0)
        ::close(probe);
    if (!hasV6)
        GTEST_SKIP() << "no IPv6 loopback here";
    const auto v6 = curl(
        digest() +
        QStringList{"--globoff",
                    QStringLiteral("http://[::1]:%1/Book/small.txt").arg(server->listeningPort())});
    EXPECT_EQ(v6.exitCode, 0) << v6.err.toStdString();
    EXPECT_TRUE(v6.out == small);
}

TEST_F(ServerTest, StopEndsTheConnectionsUnlessKept)
{
    startServer();
    RawClient kept(server->listeningPort());
    ASSERT_TRUE(kept.connected());
    ASSERT_TRUE(waitFor([&] { return server->numberOfHTTPConnections() == 1; }));
    server->stop(true);
    kept.send("GET /Book/small.txt HTTP/1.1\r\nHost: x\r\n\r\n");
    const auto answer = kept.receive();
    ASSERT_TRUE(answer) << "a kept connection still answers";
    EXPECT_EQ(answer->status, 401);
    EXPECT_EQ(server->numberOfHTTPConnections(), 1u);

    startServer();
    RawClient dropped(server->listeningPort());
    ASSERT_TRUE(waitFor([&] { return server->numberOfHTTPConnections() == 2; }));
    server->stop();
    EXPECT_EQ(server->numberOfHTTPConnections(), 0u);
    EXPECT_TRUE(dropped.closedByPeer());
    EXPECT_TRUE(kept.closedByPeer());
}

TEST_F(ServerTest, ConnectionAcceptedBeforeTheCredentialsNeverPasses)
{
    server->setUsername(QString());
    server->setPassword(QString());
    startServer();
    RawClient early(server->listeningPort());
    ASSERT_TRUE(waitFor([&] { return server->numberOfHTTPConnections() == 1; }));
    server->setUsername(QStringLiteral("Tavelle"));
    server->setPassword(QStringLiteral("secret"));

    early.send("GET /Book/small.txt HTTP/1.1\r\nHost: x\r\n\r\n");
    const auto challenge = early.receive();
    ASSERT_TRUE(challenge);
    DigestClient client;
    client.takeChallenge(*challenge);
    early.send("GET /Book/small.txt HTTP/1.1\r\nHost: x\r\nAuthorization: " +
               client.authorization("GET", "/Book/small.txt") + "\r\n\r\n");
    EXPECT_EQ(early.receive()->status, 401);

    const auto later = curl(digest() + QStringList{"--output", "/dev/null", "--write-out",
                                                   "%{http_code}", url("/Book/small.txt")});
    EXPECT_EQ(later.out, "200");
}

TEST_F(ServerTest, MalformedInputClosesWithoutHarm)
{
    startServer();
    RawClient client(server->listeningPort());
    client.send(QByteArray("\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03", 11) +
                QByteArray(300, '\x7f') + "\r\n");
    const auto r = client.receive();
    ASSERT_TRUE(r);
    EXPECT_EQ(r->status, 400);
    EXPECT_TRUE(client.closedByPeer());
    EXPECT_TRUE(waitFor([&] { return server->numberOfHTTPConnections() == 0; }));
    const auto after = curl(digest() + QStringList{"--output", "/dev/null", "--write-out",
                                                   "%{http_code}", url("/Book/small.txt")});
    EXPECT_EQ(after.out, "200");
}

TEST_F(ServerTest, PublicationWithoutDaemonLogsAndGoesOn)
{
    LogCatcher log;
    server->setType(QStringLiteral("_http._tcp."));
    server->setName(QStringLiteral("Tavelle"));
    startServer();
    EXPECT_TRUE(server->isRunning());
    ASSERT_TRUE(waitFor([&] {
        return log.contains("Failed to Publish Service: domain(local.) type(_http._tcp.) "
                            "name(Tavelle) - ") ||
               log.contains(
                   "Bonjour Service Published: domain(local.) type(_http._tcp.) name(Tavelle)");
    })) << log.lines().join("\n").toStdString();
    const auto r = curl(digest() + QStringList{"--output", "/dev/null", "--write-out",
                                               "%{http_code}", url("/Book/small.txt")});
    EXPECT_EQ(r.out, "200");
}

namespace {
// Shares its records with the test, since the server may withdraw the service
// again when it is destroyed after the test's own frame is gone.
struct RecordingPublisher : ServicePublisher
{
    std::shared_ptr<std::vector<ServiceDescription>> published;
    std::shared_ptr<int> withdrawn;
    void publish(const ServiceDescription &service) override { published->push_back(service); }
    void unpublish() override { ++*withdrawn; }
    QString publishedName() const override
    {
        return published->empty() ? QString() : published->back().name;
    }
};
} // namespace

TEST_F(ServerTest, PublishesTypeNamePortAndRecord)
{
    const auto publishedRecords = std::make_shared<std::vector<ServiceDescription>>();
    const auto withdrawals = std::make_shared<int>(0);
    const std::vector<ServiceDescription> &published = *publishedRecords;
    const int &withdrawn = *withdrawals;
    server->setPublisherFactory([publishedRecords, withdrawals] {
        auto p = std::make_unique<RecordingPublisher>();
        p->published = publishedRecords;
        p->withdrawn = withdrawals;
        return p;
    });
    startServer();
    EXPECT_TRUE(published.empty()) << "nothing without a type";
    server->stop();

    server->setType(QStringLiteral("_http._tcp."));
    server->setName(QStringLiteral("Tavelle"));
    server->setTXTRecordDictionary({{"path", "/"}});
    startServer();
    ASSERT_EQ(published.size(), 1u);
    EXPECT_EQ(published[0].domain, "local.");
    EXPECT_EQ(published[0].type, "_http._tcp.");
    EXPECT_EQ(published[0].name, "Tavelle");
    EXPECT_EQ(published[0].port, server->listeningPort());
    EXPECT_EQ(published[0].txtRecord.value("path"), "/");
    EXPECT_EQ(server->publishedName(), "Tavelle");
    server->republishBonjour();
    EXPECT_EQ(published.size(), 2u);
    const int before = withdrawn;
    server->stop();
    EXPECT_EQ(withdrawn, before + 1);
}
