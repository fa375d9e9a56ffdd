#pragma once

#include "server/core/stream_socket.h"

#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>

namespace server {

// A TCP socket of Asio under the socket interface. Its completions run on the
// queue whose context the socket belongs to.
class AsioSocket : public StreamSocket
{
public:
    AsioSocket(std::shared_ptr<SerialQueue> queue, asio::ip::tcp::socket socket);
    ~AsioSocket() override;

    uint16_t localPort() const override;

protected:
    void transportRead(size_t wanted) override;
    void transportWrite(const std::vector<QByteArray> &pieces) override;
    void transportClose() override;
    void armTimer(Timer timer, double seconds, uint64_t generation) override;
    void cancelTimer(Timer timer) override;

private:
    std::shared_ptr<AsioSocket> self();

    asio::ip::tcp::socket m_socket;
    asio::steady_timer m_readTimer;
    asio::steady_timer m_writeTimer;
    std::vector<QByteArray> m_sending;
};

} // namespace server
