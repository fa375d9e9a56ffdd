#include "server/core/stream_socket.h"

#include "server/core/serial_queue.h"

#include <algorithm>
#include <cstring>

namespace server {

namespace {
class SocketCategory : public std::error_category
{
public:
    const char *name() const noexcept override { return "socket"; }
    std::string message(int value) const override
    {
        switch (SocketErrc(value)) {
        case SocketErrc::timedOut:
            return "Operation timed out";
        case SocketErrc::maxLengthExceeded:
            return "Read operation reached set maximum length";
        case SocketErrc::closedByPeer:
            return "Socket closed by remote peer";
        }
        return "Unknown socket error";
    }
};
} // namespace

const std::error_category &socketCategory()
{
    static SocketCategory category;
    return category;
}

std::error_code make_error_code(SocketErrc e)
{
    return {int(e), socketCategory()};
}

const QByteArray &AsyncSocket::CRLFData()
{
    static const QByteArray crlf("\r\n", 2);
    return crlf;
}

StreamSocket::StreamSocket(std::shared_ptr<SerialQueue> queue) : m_queue(std::move(queue))
{
}

StreamSocket::~StreamSocket() = default;

void StreamSocket::setDelegate(std::weak_ptr<SocketDelegate> delegate)
{
    m_delegate = std::move(delegate);
}

size_t StreamSocket::queuedWriteByteCount() const
{
    size_t total = 0;
    for (const WriteOp &op : m_writes)
        total += size_t(op.data.size());
    return total;
}

// ---- reading ----

void StreamSocket::readDataToData(const QByteArray &separator, double timeout, size_t maxLength,
                                  long tag)
{
    if (m_closed || m_closeAfterWriting || separator.isEmpty())
        return;
    m_reads.push_back({true, separator, maxLength, 0, timeout, tag});
    scheduleReadPump();
}

void StreamSocket::readDataToLength(size_t length, double timeout, long tag)
{
    if (m_closed || m_closeAfterWriting || length == 0)
        return;
    m_reads.push_back({false, {}, 0, length, timeout, tag});
    scheduleReadPump();
}

StreamSocket::Outcome StreamSocket::extract(const ReadOp &op, QByteArray &out)
{
    const qsizetype available = m_buffer.size() - m_begin;
    const char *data = m_buffer.constData() + m_begin;
    qsizetype take = -1;
    if (!op.toData) {
        if (size_t(available) >= op.length)
            take = qsizetype(op.length);
    } else {
        const qsizetype window =
            op.maxLength ? std::min<qsizetype>(available, qsizetype(op.maxLength)) : available;
        const QByteArrayView haystack(data, window);
        const qsizetype at = haystack.indexOf(QByteArrayView(op.separator));
        if (at >= 0)
            take = at + op.separator.size();
        else if (op.maxLength && size_t(available) >= op.maxLength)
            return Outcome::maxedOut;
    }
    if (take < 0)
        return Outcome::needMore;
    if (m_begin == 0 && take == m_buffer.size() && !m_transportReading) {
        // The whole buffer is the answer: hand it over without copying.
        out = std::move(m_buffer);
        m_buffer = QByteArray();
    } else {
        out = QByteArray(data, take);
        m_begin += take;
        if (m_begin == m_buffer.size() && !m_transportReading) {
            m_buffer.resize(0);
            m_begin = 0;
        }
    }
    return Outcome::done;
}

void StreamSocket::scheduleReadPump()
{
    if (m_pumpingReads || m_readPumpScheduled)
        return;
    m_readPumpScheduled = true;
    m_queue->post([self = shared_from_this()] {
        self->m_readPumpScheduled = false;
        self->pumpReads();
    });
}

void StreamSocket::pumpReads()
{
    if (m_pumpingReads)
        return;
    auto self = shared_from_this();
    m_pumpingReads = true;
    while (!m_closed && !m_reads.empty()) {
        if (m_transportReading)
            break;
        const ReadOp &op = m_reads.front();
        QByteArray out;
        const Outcome outcome = extract(op, out);
        if (outcome == Outcome::done) {
            const long tag = op.tag;
            m_reads.pop_front();
            if (m_readTimerArmed) {
                m_readTimerArmed = false;
                ++m_readTimerGeneration;
                cancelTimer(Timer::read);
            }
            if (auto delegate = m_delegate.lock())
                delegate->socketDidReadData(*this, out, tag);
            continue;
        }
        if (outcome == Outcome::maxedOut) {
            closeWithError(SocketErrc::maxLengthExceeded);
            break;
        }
        if (m_eof) {
            closeWithError(SocketErrc::closedByPeer);
            break;
        }
        if (!m_readTimerArmed && op.timeout >= 0) {
            m_readTimerArmed = true;
            armTimer(Timer::read, op.timeout, ++m_readTimerGeneration);
        }
        const size_t available = size_t(m_buffer.size() - m_begin);
        size_t wanted;
        if (op.toData)
            wanted = op.maxLength ? op.maxLength - std::min(available, op.maxLength - 1) : 16384;
        else
            wanted = op.length - available;
        m_transportReading = true;
        transportRead(wanted);
        break;
    }
    m_pumpingReads = false;
}

char *StreamSocket::prepareReadSpace(size_t size)
{
    if (m_begin > 0) {
        m_buffer.remove(0, m_begin);
        m_begin = 0;
    }
    m_readBase = m_buffer.size();
    m_buffer.resize(m_readBase + qsizetype(size));
    return m_buffer.data() + m_readBase;
}

void StreamSocket::noteProgress()
{
    // A read of a length waits the time-out from the last bytes on.
    if (m_readTimerArmed && !m_reads.empty() && !m_reads.front().toData) {
        m_readTimerArmed = false;
        ++m_readTimerGeneration;
        cancelTimer(Timer::read);
    }
}

void StreamSocket::transportDidRead(size_t received, const std::error_code &error, bool endOfStream)
{
    m_transportReading = false;
    if (m_closed)
        return;
    m_buffer.resize(m_readBase + qsizetype(received));
    if (received > 0)
        noteProgress();
    if (endOfStream) {
        // The end of the stream is a state, not an error: the queued reads decide.
        m_eof = true;
    } else if (error) {
        closeWithError(error);
        return;
    }
    pumpReads();
}

void StreamSocket::appendReceived(const QByteArray &bytes)
{
    if (m_closed)
        return;
    if (m_begin > 0 && !m_transportReading) {
        m_buffer.remove(0, m_begin);
        m_begin = 0;
    }
    m_buffer.append(bytes);
    if (!bytes.isEmpty())
        noteProgress();
    if (m_transportReading) {
        m_transportReading = false;
        pumpReads();
    }
}

void StreamSocket::transportDidReachEnd()
{
    if (m_closed)
        return;
    m_eof = true;
    if (m_transportReading) {
        m_transportReading = false;
        pumpReads();
    }
}

// ---- writing ----

void StreamSocket::writeData(const QByteArray &data, double timeout, long tag)
{
    if (m_closed || m_closeAfterWriting)
        return;
    m_writes.push_back({data, timeout, tag});
    scheduleWritePump();
}

void StreamSocket::scheduleWritePump()
{
    if (m_writesInFlight || m_deliveringWrites || m_writePumpScheduled)
        return;
    m_writePumpScheduled = true;
    m_queue->post([self = shared_from_this()] {
        self->m_writePumpScheduled = false;
        self->pumpWrites();
    });
}

void StreamSocket::pumpWrites()
{
    if (m_closed || m_writesInFlight)
        return;
    if (m_writes.empty()) {
        finishIfDrained();
        return;
    }
    std::vector<QByteArray> pieces;
    pieces.reserve(m_writes.size());
    double timeout = 0;
    bool timed = true;
    for (const WriteOp &op : m_writes) {
        pieces.push_back(op.data);
        if (op.timeout < 0)
            timed = false;
        else
            timeout = std::max(timeout, op.timeout);
    }
    m_writesInFlight = m_writes.size();
    if (timed) {
        m_writeTimerArmed = true;
        armTimer(Timer::write, timeout, ++m_writeTimerGeneration);
    }
    transportWrite(pieces);
}

void StreamSocket::transportDidWrite(const std::error_code &error)
{
    if (m_closed)
        return;
    if (m_writeTimerArmed) {
        m_writeTimerArmed = false;
        ++m_writeTimerGeneration;
        cancelTimer(Timer::write);
    }
    if (error) {
        m_writesInFlight = 0;
        closeWithError(error);
        return;
    }
    auto self = shared_from_this();
    m_deliveringWrites = true;
    size_t count = m_writesInFlight;
    m_writesInFlight = 0;
    while (count-- > 0 && !m_closed && !m_writes.empty()) {
        const long tag = m_writes.front().tag;
        m_writes.pop_front();
        if (auto delegate = m_delegate.lock())
            delegate->socketDidWriteData(*this, tag);
    }
    m_deliveringWrites = false;
    pumpWrites();
}

void StreamSocket::finishIfDrained()
{
    if (m_closeAfterWriting && m_writes.empty() && !m_writesInFlight)
        closeWithError({});
}

// ---- closing ----

void StreamSocket::timerDidFire(Timer timer, uint64_t generation)
{
    if (m_closed)
        return;
    if (timer == Timer::read && (!m_readTimerArmed || generation != m_readTimerGeneration))
        return;
    if (timer == Timer::write && (!m_writeTimerArmed || generation != m_writeTimerGeneration))
        return;
    closeWithError(SocketErrc::timedOut);
}

void StreamSocket::disconnect()
{
    closeWithError({});
}

void StreamSocket::disconnectAfterWriting()
{
    if (m_closed)
        return;
    m_closeAfterWriting = true;
    m_reads.clear();
    if (m_readTimerArmed) {
        m_readTimerArmed = false;
        ++m_readTimerGeneration;
        cancelTimer(Timer::read);
    }
    if (!m_writesInFlight && !m_deliveringWrites)
        scheduleWritePump();
}

void StreamSocket::closeWithError(const std::error_code &error)
{
    if (m_closed)
        return;
    m_closed = true;
    m_reads.clear();
    m_writes.clear();
    m_writesInFlight = 0;
    if (m_readTimerArmed) {
        m_readTimerArmed = false;
        cancelTimer(Timer::read);
    }
    if (m_writeTimerArmed) {
        m_writeTimerArmed = false;
        cancelTimer(Timer::write);
    }
    transportClose();
    m_queue->post([self = shared_from_this(), error] {
        if (auto delegate = self->m_delegate.lock())
            delegate->socketDidDisconnect(*self, error);
    });
}

} // namespace server
