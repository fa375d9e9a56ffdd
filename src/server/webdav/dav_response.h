#pragma once

#include "server/core/http_response.h"
#include "server/webdav/dav_request.h"

#include <memory>
#include <optional>

namespace server {

// The answer to one WebDAV method other than GET, HEAD, PUT and DELETE:
// OPTIONS, PROPFIND, MKCOL, MOVE, COPY, LOCK and UNLOCK. The whole method is
// carried out when the response is made; nothing made means 404.
class DAVResponse : public HTTPResponse
{
public:
    static std::shared_ptr<DAVResponse> create(const DAVRequest &request);

    uint64_t contentLength() override { return m_data ? uint64_t(m_data->size()) : 0; }
    uint64_t offset() override { return m_offset; }
    void setOffset(uint64_t offset) override { m_offset = offset; }
    QByteArray readDataOfLength(size_t length) override;
    bool isDone() override { return !m_data || m_offset >= uint64_t(m_data->size()); }
    int status() override { return m_status; }
    HTTPHeaderList httpHeaders() override { return m_headers; }

private:
    DAVResponse() = default;

    // Each carries out its method and answers false to give nothing.
    bool options(const DAVRequest &request);
    bool propfind(const DAVRequest &request);
    bool mkcol(const DAVRequest &request);
    bool copyOrMove(const DAVRequest &request);
    bool lock(const DAVRequest &request);
    bool unlock(const DAVRequest &request);

    void setXMLBody(QByteArray xml);

    uint64_t m_offset = 0;
    HTTPHeaderList m_headers;
    std::optional<QByteArray> m_data;
    int m_status = 200;
};

} // namespace server
