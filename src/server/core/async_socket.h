#pragma once

#include <QByteArray>
#include <cstdint>
#include <memory>
#include <system_error>

namespace server {

class AsyncSocket;

// What a socket reports. Every call arrives on the socket's queue, one at a time.
class SocketDelegate
{
public:
    virtual ~SocketDelegate() = default;
    virtual void socketDidReadData(AsyncSocket &socket, const QByteArray &data, long tag) = 0;
    virtual void socketDidWriteData(AsyncSocket &socket, long tag) = 0;
    // The socket is gone; error is empty after disconnect().
    virtual void socketDidDisconnect(AsyncSocket &socket, const std::error_code &error) = 0;
};

// Why a socket closed by itself.
enum class SocketErrc {
    timedOut = 1,      // a read or write time-out passed
    maxLengthExceeded, // no separator within the most bytes a read allows
    closedByPeer,      // the peer closed while a read waited for more
};
const std::error_category &socketCategory();
std::error_code make_error_code(SocketErrc e);

// A stream socket driven by completions. Reads and writes are queued and
// carried out in order; each completes with the tag it was given. A negative
// time-out means none. Time-outs and over-long reads end the socket with
// socketDidDisconnect. Reads and writes are independent of each other.
class AsyncSocket
{
public:
    virtual ~AsyncSocket() = default;

    // The delegate's calls run on the queue the socket was made with.
    virtual void setDelegate(std::weak_ptr<SocketDelegate> delegate) = 0;

    // Reads through the separator (which is part of the data). Fails when the
    // separator does not end within maxLength bytes; 0 means no limit.
    virtual void readDataToData(const QByteArray &separator, double timeout, size_t maxLength,
                                long tag) = 0;
    // Reads exactly length bytes. Its time-out counts from the last bytes
    // that arrived, so a long read that keeps moving never times out.
    virtual void readDataToLength(size_t length, double timeout, long tag) = 0;
    virtual void writeData(const QByteArray &data, double timeout, long tag) = 0;

    // Closes at once; queued reads and writes are dropped.
    virtual void disconnect() = 0;
    // Ignores further reads and writes and closes once the queued writes are out.
    virtual void disconnectAfterWriting() = 0;

    virtual bool isDisconnected() const = 0;
    virtual uint16_t localPort() const = 0;

    static const QByteArray &CRLFData();
};

} // namespace server

template <> struct std::is_error_code_enum<server::SocketErrc> : std::true_type
{
};
