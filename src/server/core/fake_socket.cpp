#include "server/core/fake_socket.h"

#include "server/core/serial_queue.h"

namespace server {

FakeSocket::FakeSocket(std::shared_ptr<SerialQueue> queue, uint16_t port)
    : StreamSocket(std::move(queue)), m_port(port)
{
}

std::shared_ptr<FakeSocket> FakeSocket::create(std::shared_ptr<SerialQueue> queue, uint16_t port)
{
    return std::shared_ptr<FakeSocket>(new FakeSocket(std::move(queue), port));
}

void FakeSocket::feed(const QByteArray &bytes)
{
    auto me = std::static_pointer_cast<FakeSocket>(shared_from_this());
    queue().post([me, bytes] { me->appendReceived(bytes); });
}

void FakeSocket::feedEnd()
{
    auto me = std::static_pointer_cast<FakeSocket>(shared_from_this());
    queue().post([me] { me->transportDidReachEnd(); });
}

QByteArray FakeSocket::takeWritten()
{
    QByteArray rest = m_written.mid(m_taken);
    m_taken = m_written.size();
    return rest;
}

void FakeSocket::writeData(const QByteArray &data, double timeout, long tag)
{
    if (isDisconnected())
        return;
    m_writeLog.emplace_back(tag, data.size());
    StreamSocket::writeData(data, timeout, tag);
    m_mostUnsent = std::max(m_mostUnsent, queuedWriteByteCount());
}

void FakeSocket::completeWrites()
{
    if (!m_inFlight)
        return;
    m_inFlight = false;
    m_written.append(m_inFlightBytes);
    m_inFlightBytes.clear();
    transportDidWrite({});
}

void FakeSocket::transportRead(size_t)
{
}

void FakeSocket::transportWrite(const std::vector<QByteArray> &pieces)
{
    m_inFlight = true;
    for (const QByteArray &piece : pieces)
        m_inFlightBytes.append(piece);
    if (m_autoComplete) {
        auto me = std::static_pointer_cast<FakeSocket>(shared_from_this());
        queue().post([me] { me->completeWrites(); });
    }
}

void FakeSocket::transportClose()
{
    // Bytes in flight when the socket closes were never sent.
    m_inFlight = false;
    m_inFlightBytes.clear();
}

void FakeSocket::armTimer(Timer timer, double seconds, uint64_t generation)
{
    TimerState &state = m_timers[int(timer)];
    state = {true, seconds, generation, state.armings + 1};
}

void FakeSocket::cancelTimer(Timer timer)
{
    m_timers[int(timer)].armed = false;
}

bool FakeSocket::timerArmed(Timer timer) const
{
    return m_timers[int(timer)].armed;
}

double FakeSocket::timerSeconds(Timer timer) const
{
    return m_timers[int(timer)].seconds;
}

void FakeSocket::fireTimer(Timer timer)
{
    TimerState &state = m_timers[int(timer)];
    if (!state.armed)
        return;
    state.armed = false;
    timerDidFire(timer, state.generation);
}

} // namespace server
