// Two starts of the program: the second hands its requests to the first.
#include "shell/single_instance.h"
#include "support/test_environment.h"

#include <QCoreApplication>
#include <QFile>
#include <future>
#include <gtest/gtest.h>

namespace {

using tl::shell::InstanceServer;

class SingleInstance : public ::testing::Test
{
protected:
    void SetUp() override
    {
        qputenv("XDG_RUNTIME_DIR", tltest::makeTemporaryFolder("runtime").toUtf8());
    }
    void TearDown() override { qunsetenv("XDG_RUNTIME_DIR"); }

    // Hands over from another thread while this one serves.
    static bool handOver(const QStringList &requests)
    {
        auto result = std::async(std::launch::async, [requests] {
            return tl::shell::handOverToRunningInstance(requests);
        });
        while (result.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        return result.get();
    }
};

TEST_F(SingleInstance, ASecondStartHandsItsRequestsToTheFirst)
{
    InstanceServer first;
    ASSERT_TRUE(first.listen());
    InstanceServer second;
    EXPECT_FALSE(second.listen());

    QStringList received;
    QObject::connect(&first, &InstanceServer::requestsReceived,
                     [&received](const QStringList &r) { received = r; });
    const QStringList requests{"tavelle://show/Book/Doc.md", "/home/someone/Letter.txt"};
    EXPECT_TRUE(handOver(requests));
    QCoreApplication::processEvents();
    EXPECT_EQ(received, requests);
}

TEST_F(SingleInstance, NoneRunningTakesNothingAndASocketLeftBehindIsTakenOver)
{
    EXPECT_FALSE(tl::shell::handOverToRunningInstance({"tavelle://search?x"}, 200));
    QFile leftBehind(tl::shell::instanceSocketPath());
    ASSERT_TRUE(leftBehind.open(QIODevice::WriteOnly));
    leftBehind.close();
    InstanceServer server;
    EXPECT_TRUE(server.listen());
}

TEST(InstanceRequests, AddressesAreToldFromPaths)
{
    EXPECT_TRUE(tl::shell::isTavelleAddress("TAVELLE://show/x"));
    EXPECT_FALSE(tl::shell::isTavelleAddress("/home/tavelle/x.md"));
}

} // namespace
