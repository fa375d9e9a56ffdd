#include "server/core/asio_socket.h"

#include "server/core/serial_queue.h"

#include <asio/write.hpp>

#include <algorithm>
#include <chrono>

namespace server {

namespace {
constexpr size_t kSmallestRead = 16384;
constexpr size_t kLargestRead = 1048576;
} // namespace

AsioSocket::AsioSocket(std::shared_ptr<SerialQueue> queue, asio::ip::tcp::socket socket)
    : StreamSocket(queue), m_socket(std::move(socket)), m_readTimer(queue->context()),
      m_writeTimer(queue->context())
{
    std::error_code ignored;
    m_socket.set_option(asio::ip::tcp::no_delay(true), ignored);
}

AsioSocket::~AsioSocket()
{
    std::error_code ignored;
    m_socket.close(ignored);
}

std::shared_ptr<AsioSocket> AsioSocket::self() { return std::static_pointer_cast<AsioSocket>(shared_from_this()); }

uint16_t AsioSocket::localPort() const
{
    std::error_code ec;
    const auto endpoint = m_socket.local_endpoint(ec);
    return ec ? 0 : endpoint.port();
}

void AsioSocket::transportRead(size_t wanted)
{
    const size_t size = std::clamp(wanted, kSmallestRead, kLargestRead);
    char *space = prepareReadSpace(size);
    m_socket.async_read_some(asio::buffer(space, size),
                             [me = self()](const std::error_code &error, size_t received) {
                                 me->transportDidRead(received, error, error == asio::error::eof);
                             });
}

void AsioSocket::transportWrite(const std::vector<QByteArray> &pieces)
{
    m_sending = pieces;
    std::vector<asio::const_buffer> buffers;
    buffers.reserve(m_sending.size());
    for (const QByteArray &piece : m_sending)
        buffers.emplace_back(piece.constData(), size_t(piece.size()));
    asio::async_write(m_socket, buffers, [me = self()](const std::error_code &error, size_t) {
        me->m_sending.clear();
        me->transportDidWrite(error);
    });
}

void AsioSocket::transportClose()
{
    std::error_code ignored;
    m_readTimer.cancel();
    m_writeTimer.cancel();
    m_socket.shutdown(asio::ip::tcp::socket::shutdown_both, ignored);
    m_socket.close(ignored);
}

void AsioSocket::armTimer(Timer timer, double seconds, uint64_t generation)
{
    asio::steady_timer &t = timer == Timer::read ? m_readTimer : m_writeTimer;
    t.expires_after(std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(seconds)));
    t.async_wait([me = self(), timer, generation](const std::error_code &error) {
        if (!error)
            me->timerDidFire(timer, generation);
    });
}

void AsioSocket::cancelTimer(Timer timer) { (timer == Timer::read ? m_readTimer : m_writeTimer).cancel(); }

} // namespace server
