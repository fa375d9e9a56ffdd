#pragma once

#include "server/core/http_connection.h"
#include "server/webdav/request_body.h"

namespace server {

// The connection the server installs: the library as a WebDAV share. The
// document root is the library root, so a URI path is a path below it and a
// book is a collection. Every request must authenticate by digest.
class DAVConnection : public HTTPConnection
{
public:
    using HTTPConnection::HTTPConnection;

    // The most bytes of a body that is parsed (PROPFIND, LOCK).
    static constexpr uint64_t kMaxParsedBodySize = 1048576;

    bool supportsMethod(const QString &method, const QString &path) override;
    bool expectsRequestBodyFromMethod(const QString &method, const QString &path) override;
    std::shared_ptr<HTTPResponse> httpResponseForMethod(const QString &method,
                                                        const QString &path) override;
    void prepareForBodyWithSize(uint64_t contentLength) override;
    uint64_t maximumBodySize(const QString &method, const QString &path) override;
    void processBodyData(const QByteArray &data) override;
    void finishBody() override;
    void finishResponse() override;

protected:
    void die() override;

private:
    RequestBody m_requestContentBody;
};

} // namespace server
