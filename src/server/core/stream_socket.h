#pragma once

#include "server/core/async_socket.h"

#include <deque>
#include <vector>

namespace server {

class SerialQueue;

// The queueing, buffering and time-out logic shared by every socket; the
// subclass only moves bytes (the transport). All of it runs on the queue.
class StreamSocket : public AsyncSocket, public std::enable_shared_from_this<StreamSocket>
{
public:
    explicit StreamSocket(std::shared_ptr<SerialQueue> queue);
    ~StreamSocket() override;

    void setDelegate(std::weak_ptr<SocketDelegate> delegate) override;
    void readDataToData(const QByteArray &separator, double timeout, size_t maxLength,
                        long tag) override;
    void readDataToLength(size_t length, double timeout, long tag) override;
    void writeData(const QByteArray &data, double timeout, long tag) override;
    void disconnect() override;
    void disconnectAfterWriting() override;
    bool isDisconnected() const override { return m_closed; }

    // Bytes received and not yet handed to a read.
    size_t bufferedByteCount() const { return size_t(m_buffer.size() - m_begin); }
    // Bytes of queued writes not yet reported written.
    size_t queuedWriteByteCount() const;

protected:
    enum class Timer { read, write };

    // Start receiving: call prepareReadSpace(), fill it, then transportDidRead().
    virtual void transportRead(size_t wanted) = 0;
    // Send all pieces in order, then call transportDidWrite().
    virtual void transportWrite(const std::vector<QByteArray> &pieces) = 0;
    virtual void transportClose() = 0;
    // Call timerDidFire(timer, generation) when it expires.
    virtual void armTimer(Timer timer, double seconds, uint64_t generation) = 0;
    virtual void cancelTimer(Timer timer) = 0;

    // For transports that receive into the buffer directly. The space stays
    // valid until transportDidRead().
    char *prepareReadSpace(size_t size);
    // received bytes were put at the prepared space.
    void transportDidRead(size_t received, const std::error_code &error, bool endOfStream);
    // For transports that hand over bytes they already have.
    void appendReceived(const QByteArray &bytes);
    void transportDidReachEnd();
    void transportDidWrite(const std::error_code &error);
    void timerDidFire(Timer timer, uint64_t generation);

    void closeWithError(const std::error_code &error);
    bool transportReading() const { return m_transportReading; }
    SerialQueue &queue() { return *m_queue; }

private:
    struct ReadOp
    {
        bool toData;
        QByteArray separator;
        size_t maxLength;
        size_t length;
        double timeout;
        long tag;
    };
    struct WriteOp
    {
        QByteArray data;
        double timeout;
        long tag;
    };
    enum class Outcome { done, needMore, maxedOut };

    Outcome extract(const ReadOp &op, QByteArray &out);
    void noteProgress();
    void scheduleReadPump();
    void pumpReads();
    void scheduleWritePump();
    void pumpWrites();
    void finishIfDrained();

    std::shared_ptr<SerialQueue> m_queue;
    std::weak_ptr<SocketDelegate> m_delegate;

    QByteArray m_buffer;
    qsizetype m_begin = 0;
    qsizetype m_readBase = 0;
    std::deque<ReadOp> m_reads;
    bool m_transportReading = false;
    bool m_readPumpScheduled = false;
    bool m_pumpingReads = false;
    bool m_eof = false;
    bool m_readTimerArmed = false;
    uint64_t m_readTimerGeneration = 0;

    std::deque<WriteOp> m_writes;
    size_t m_writesInFlight = 0;
    bool m_writePumpScheduled = false;
    bool m_deliveringWrites = false;
    bool m_writeTimerArmed = false;
    uint64_t m_writeTimerGeneration = 0;

    bool m_closed = false;
    bool m_closeAfterWriting = false;
};

} // namespace server
