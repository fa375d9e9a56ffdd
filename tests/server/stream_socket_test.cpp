#include "server/core/fake_socket.h"
#include "server/core/serial_queue.h"

#include <gtest/gtest.h>

using namespace server;

namespace {

struct Recorder : SocketDelegate
{
    std::vector<std::pair<long, QByteArray>> reads;
    std::vector<long> writes;
    std::optional<std::error_code> disconnected;
    std::function<void(AsyncSocket &, long)> onRead;

    void socketDidReadData(AsyncSocket &socket, const QByteArray &data, long tag) override
    {
        reads.emplace_back(tag, data);
        if (onRead)
            onRead(socket, tag);
    }
    void socketDidWriteData(AsyncSocket &, long tag) override { writes.push_back(tag); }
    void socketDidDisconnect(AsyncSocket &, const std::error_code &error) override
    {
        disconnected = error;
    }
};

struct SocketFixture : ::testing::Test
{
    std::shared_ptr<SerialQueue> queue = SerialQueue::createManual();
    std::shared_ptr<FakeSocket> socket = FakeSocket::create(queue);
    std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
    void SetUp() override { socket->setDelegate(recorder); }
};

} // namespace

TEST_F(SocketFixture, ReadsThroughTheSeparatorInOrderAndKeepsTheRest)
{
    socket->readDataToData(AsyncSocket::CRLFData(), 30, 100, 1);
    socket->readDataToData(AsyncSocket::CRLFData(), 30, 100, 2);
    socket->readDataToLength(3, -1, 3);
    socket->feed("one\r\ntw");
    queue->drain();
    ASSERT_EQ(recorder->reads.size(), 1u);
    EXPECT_EQ(recorder->reads[0], std::make_pair(1L, QByteArray("one\r\n")));
    socket->feed("o\r\nabcdef");
    queue->drain();
    ASSERT_EQ(recorder->reads.size(), 3u);
    EXPECT_EQ(recorder->reads[1], std::make_pair(2L, QByteArray("two\r\n")));
    EXPECT_EQ(recorder->reads[2], std::make_pair(3L, QByteArray("abc")));
    EXPECT_EQ(socket->bufferedByteCount(), 3u);
}

TEST_F(SocketFixture, ReadsIssuedFromACallbackUseBufferedBytes)
{
    recorder->onRead = [](AsyncSocket &s, long tag) {
        if (tag < 3)
            s.readDataToData(AsyncSocket::CRLFData(), 30, 100, tag + 1);
    };
    socket->readDataToData(AsyncSocket::CRLFData(), 30, 100, 1);
    socket->feed("a\r\nb\r\nc\r\n");
    queue->drain();
    ASSERT_EQ(recorder->reads.size(), 3u);
    EXPECT_EQ(recorder->reads[2].second, "c\r\n");
}

TEST_F(SocketFixture, MaxLengthCountsTheSeparator)
{
    socket->readDataToData(AsyncSocket::CRLFData(), 30, 10, 1);
    socket->feed(QByteArray(8, 'x') + "\r\n");
    queue->drain();
    ASSERT_EQ(recorder->reads.size(), 1u);
    EXPECT_FALSE(recorder->disconnected);

    socket->readDataToData(AsyncSocket::CRLFData(), 30, 10, 2);
    socket->feed(QByteArray(9, 'x') + "\r\n");
    queue->drain();
    EXPECT_EQ(recorder->reads.size(), 1u);
    ASSERT_TRUE(recorder->disconnected);
    EXPECT_EQ(*recorder->disconnected, SocketErrc::maxLengthExceeded);
}

TEST_F(SocketFixture, ReadTimeOutClosesAndNegativeMeansNone)
{
    socket->readDataToLength(5, -1, 1);
    queue->drain();
    EXPECT_FALSE(socket->timerArmed(FakeSocket::Timer::read));
    socket->feed("12345");
    queue->drain();

    socket->readDataToData(AsyncSocket::CRLFData(), 30, 100, 2);
    queue->drain();
    socket->feed("x\r\n");
    queue->drain();
    EXPECT_FALSE(socket->timerArmed(FakeSocket::Timer::read)) << "a completed read disarms it";

    socket->readDataToData(AsyncSocket::CRLFData(), 30, 100, 3);
    queue->drain();
    ASSERT_TRUE(socket->timerArmed(FakeSocket::Timer::read));
    EXPECT_EQ(socket->timerSeconds(FakeSocket::Timer::read), 30);
    socket->fireTimer(FakeSocket::Timer::read);
    queue->drain();
    ASSERT_TRUE(recorder->disconnected);
    EXPECT_EQ(*recorder->disconnected, SocketErrc::timedOut);
}

TEST_F(SocketFixture, EndOfStreamWithAReadWaitingCloses)
{
    socket->readDataToData(AsyncSocket::CRLFData(), 30, 100, 1);
    socket->feed("partial");
    socket->feedEnd();
    queue->drain();
    ASSERT_TRUE(recorder->disconnected);
    EXPECT_EQ(*recorder->disconnected, SocketErrc::closedByPeer);
}

TEST_F(SocketFixture, WritesCompleteInOrderAndGoOutTogether)
{
    socket->writeData("head", 30, 21);
    socket->writeData("body", -1, 90);
    queue->drain();
    EXPECT_EQ(recorder->writes, (std::vector<long>{21, 90}));
    EXPECT_EQ(socket->written(), "headbody");
}

TEST_F(SocketFixture, DisconnectAfterWritingWaitsForTheQueue)
{
    socket->setAutoCompleteWrites(false);
    socket->writeData("last", 30, 90);
    socket->readDataToLength(1, -1, 1);
    socket->disconnectAfterWriting();
    socket->writeData("ignored", 30, 91);
    queue->drain();
    EXPECT_FALSE(recorder->disconnected);
    socket->completeWrites();
    queue->drain();
    EXPECT_EQ(socket->written(), "last");
    ASSERT_TRUE(recorder->disconnected);
    EXPECT_FALSE(*recorder->disconnected);
    EXPECT_TRUE(recorder->reads.empty());
}

TEST_F(SocketFixture, DisconnectDropsEverythingAndReportsOnce)
{
    socket->setAutoCompleteWrites(false);
    socket->writeData("never", 30, 90);
    queue->drain();
    socket->disconnect();
    socket->disconnect();
    queue->drain();
    EXPECT_TRUE(socket->isDisconnected());
    EXPECT_TRUE(socket->written().isEmpty());
    EXPECT_TRUE(recorder->writes.empty());
    ASSERT_TRUE(recorder->disconnected);
}

TEST_F(SocketFixture, WriteTimeOutCoversTimedWritesOnly)
{
    socket->setAutoCompleteWrites(false);
    socket->writeData("body", -1, 22);
    queue->drain();
    EXPECT_FALSE(socket->timerArmed(FakeSocket::Timer::write));
    socket->completeWrites();
    socket->writeData("head", 30, 21);
    queue->drain();
    EXPECT_TRUE(socket->timerArmed(FakeSocket::Timer::write));
    socket->fireTimer(FakeSocket::Timer::write);
    queue->drain();
    ASSERT_TRUE(recorder->disconnected);
    EXPECT_EQ(*recorder->disconnected, SocketErrc::timedOut);
}
