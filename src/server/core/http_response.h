#pragma once

#include "server/core/http_message.h"

#include <QByteArray>

#include <cstdint>

namespace server {

// What every server response offers the connection. The connection asks for
// the body piece by piece with readDataOfLength(); a response that has no
// bytes at hand gives an empty piece and later tells the connection with
// responseHasAvailableData(). Everything here is called on the connection's
// queue.
class HTTPResponse
{
public:
    virtual ~HTTPResponse() = default;

    virtual uint64_t contentLength() = 0;
    virtual uint64_t offset() = 0;
    virtual void setOffset(uint64_t offset) = 0;
    virtual QByteArray readDataOfLength(size_t length) = 0;
    virtual bool isDone() = 0;

    // Optional parts, with the answers of a plain response.
    virtual bool isAsynchronous() { return false; }
    // True holds the headers back until responseHasAvailableData().
    virtual bool delayResponseHeaders() { return false; }
    virtual int status() { return 200; }
    // Header fields set on top of the connection's own, replacing same names.
    virtual HTTPHeaderList httpHeaders() { return {}; }
    // A chunked body has no length; pieces go out as they come.
    virtual bool isChunked() { return false; }
    // The response is finished with, whether sent or not.
    virtual void connectionDidClose() {}
};

} // namespace server
