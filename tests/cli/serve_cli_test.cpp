// tavelle serve: serves until SIGTERM and stops cleanly; a start failure
// prints the alert and exits 1.
#include "cli_support.h"
#include "support/test_environment.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

class ServeCommand : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        QDir().mkpath(library + "/Book");
    }
    void TearDown() override
    {
        if (server.state() != QProcess::NotRunning) {
            server.kill();
            server.waitForFinished(10000);
        }
    }

    // Starts the command and waits, at most 30 seconds, for the password line.
    bool startServing(const QStringList &options)
    {
        server.setProcessEnvironment(tltest::tavelleEnvironment(home));
        server.start(qEnvironmentVariable("TAVELLE_CLI"),
                     QStringList{"--library", library, "serve", "--interface", "127.0.0.1"} +
                         options);
        // The details end with the password, in text or in JSON.
        const auto told = [this] {
            return output.contains("Password: ") || output.contains("\"password\"");
        };
        for (int i = 0; i < 300 && !told(); ++i) {
            if (!server.waitForReadyRead(100) && server.state() == QProcess::NotRunning)
                return false;
            output += server.readAllStandardOutput();
        }
        while (!output.endsWith('\n') && server.waitForReadyRead(1000))
            output += server.readAllStandardOutput();
        return told();
    }
    int port() const
    {
        static const QRegularExpression re(QStringLiteral("\n\nhttp://[^:\n]+:(\\d+)"));
        return re.match(QString::fromUtf8(output)).captured(1).toInt();
    }
    static QByteArray curl(const QStringList &arguments)
    {
        QProcess process;
        process.start("curl", QStringList{"--silent", "--max-time", "20"} + arguments);
        process.waitForFinished(30000);
        return process.readAllStandardOutput();
    }

    QProcess server;
    QByteArray output;
};

} // namespace

TEST_F(ServeCommand, ServesWithTheGivenCredentialsUntilTerminated)
{
    ASSERT_TRUE(startServing({"--port", "8655", "--password", "open-sesame"}))
        << output.toStdString();
    EXPECT_TRUE(output.startsWith(
        "Use the credentials above to connect to one of the given server addresses.\n\nhttp://"));
    EXPECT_TRUE(output.contains("\nUser: Tavelle\nPassword: open-sesame\n"))
        << output.toStdString();
    ASSERT_GE(port(), 8655);
    // Listening on the loopback address alone, that is the one address shown.
    EXPECT_TRUE(
        output.startsWith(QStringLiteral("Use the credentials above to connect to one of the "
                                         "given server addresses.\n\nhttp://127.0.0.1:%1\n\n")
                              .arg(port())
                              .toUtf8()))
        << output.toStdString();
    const QString url = QStringLiteral("http://127.0.0.1:%1/Book/new.txt").arg(port());
    QFile upload(home + "/upload.txt");
    ASSERT_TRUE(upload.open(QIODevice::WriteOnly));
    upload.write("uploaded");
    upload.close();
    EXPECT_EQ(curl({"--digest", "--user", "Tavelle:open-sesame", "--upload-file", upload.fileName(),
                    "--output", "/dev/null", "--write-out", "%{http_code}", url}),
              "201");
    EXPECT_EQ(curl({"--digest", "--user", "Tavelle:open-sesame", url}), "uploaded");
    EXPECT_EQ(curl({"--digest", "--user", "Tavelle:wrong", "--output", "/dev/null", "--write-out",
                    "%{http_code}", url}),
              "401");

    server.terminate();
    ASSERT_TRUE(server.waitForFinished(30000));
    EXPECT_EQ(server.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(server.exitCode(), 0) << server.readAllStandardError().toStdString();
}

TEST_F(ServeCommand, WithJsonTheDetailsAreData)
{
    ASSERT_TRUE(startServing({"--port", "8675", "--password", "open-sesame", "--json"}))
        << output.toStdString();
    const QJsonObject details = QJsonDocument::fromJson(output).object();
    EXPECT_EQ(details.value("addresses").toArray(), QJsonArray{"127.0.0.1"})
        << output.toStdString();
    EXPECT_GE(details.value("port").toInt(), 8675);
    EXPECT_EQ(details.value("user").toString(), "Tavelle");
    EXPECT_EQ(details.value("password").toString(), "open-sesame");
    server.terminate();
    ASSERT_TRUE(server.waitForFinished(30000));
    EXPECT_EQ(server.exitCode(), 0);
}

TEST_F(ServeCommand, MakesAPasswordOnceAndKeepsIt)
{
    ASSERT_TRUE(startServing({"--port", "8665"}));
    const QRegularExpression passwordLine(QStringLiteral("Password: ([0-9a-f-]{9})\n"));
    const QString first = passwordLine.match(QString::fromUtf8(output)).captured(1);
    EXPECT_FALSE(first.isEmpty()) << output.toStdString();
    server.terminate();
    ASSERT_TRUE(server.waitForFinished(30000));
    output.clear();
    ASSERT_TRUE(startServing({}));
    EXPECT_EQ(passwordLine.match(QString::fromUtf8(output)).captured(1), first);
}

TEST_F(ServeCommand, ABusyPortFrom9000OnGivesTheAlertAndExitsOne)
{
    const int holder = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ASSERT_EQ(::bind(holder, reinterpret_cast<sockaddr *>(&address), length), 0);
    ASSERT_EQ(::listen(holder, 1), 0);
    ASSERT_EQ(::getsockname(holder, reinterpret_cast<sockaddr *>(&address), &length), 0);
    const int busy = ntohs(address.sin_port);
    ASSERT_GE(busy, 9000);
    const auto r = run({"serve", "--interface", "127.0.0.1", "--port", QString::number(busy)});
    ::close(holder);
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.err.startsWith("Could not Start Tavelle Server: ")) << r.err.toStdString();
    EXPECT_TRUE(r.out.isEmpty());
}

TEST_F(ServeCommand, RefusesABadPort)
{
    const auto r = run({"serve", "--port", "70000"});
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_EQ(r.err, "--port needs a number from 0 to 65535\n");
}
