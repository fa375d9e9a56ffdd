#pragma once

#include "server/core/stream_socket.h"

#include <utility>

namespace server {

// An in-memory socket for tests: the test plays the peer. Bytes fed in are
// read by the connection; bytes written are kept. Writes complete at once
// unless told otherwise; time-outs fire only when the test fires them.
class FakeSocket : public StreamSocket
{
public:
    using Timer = StreamSocket::Timer;

    static std::shared_ptr<FakeSocket> create(std::shared_ptr<SerialQueue> queue,
                                              uint16_t port = 8080);

    // Peer side. Both post to the queue; run it to deliver.
    void feed(const QByteArray &bytes);
    void feedEnd();

    // Everything the transport has sent, and the part not yet taken.
    const QByteArray &written() const { return m_written; }
    QByteArray takeWritten();
    // Tag and size of every write, in the order issued.
    const std::vector<std::pair<long, qsizetype>> &writeLog() const { return m_writeLog; }
    // The most bytes ever waiting in the write queue.
    size_t mostUnsentBytes() const { return m_mostUnsent; }

    // With false, writes stay in flight until completeWrites().
    void setAutoCompleteWrites(bool automatic) { m_autoComplete = automatic; }
    bool hasWritesInFlight() const { return m_inFlight; }
    void completeWrites();

    bool timerArmed(Timer timer) const;
    double timerSeconds(Timer timer) const;
    // How often the timer was armed, restarts included.
    int timerArmings(Timer timer) const { return m_timers[int(timer)].armings; }
    void fireTimer(Timer timer);

    uint16_t localPort() const override { return m_port; }
    void writeData(const QByteArray &data, double timeout, long tag) override;

protected:
    void transportRead(size_t wanted) override;
    void transportWrite(const std::vector<QByteArray> &pieces) override;
    void transportClose() override;
    void armTimer(Timer timer, double seconds, uint64_t generation) override;
    void cancelTimer(Timer timer) override;

private:
    FakeSocket(std::shared_ptr<SerialQueue> queue, uint16_t port);

    struct TimerState
    {
        bool armed = false;
        double seconds = 0;
        uint64_t generation = 0;
        int armings = 0;
    };

    uint16_t m_port;
    QByteArray m_written;
    qsizetype m_taken = 0;
    std::vector<std::pair<long, qsizetype>> m_writeLog;
    size_t m_mostUnsent = 0;
    bool m_autoComplete = true;
    bool m_inFlight = false;
    QByteArray m_inFlightBytes;
    TimerState m_timers[2];
};

} // namespace server
