#pragma once

#include "server/core/http_response.h"

namespace server {

// A response whose body is a block of bytes in memory.
class HTTPDataResponse : public HTTPResponse
{
public:
    explicit HTTPDataResponse(QByteArray data, int status = 200, HTTPHeaderList headers = {});

    uint64_t contentLength() override { return uint64_t(m_data.size()); }
    uint64_t offset() override { return m_offset; }
    void setOffset(uint64_t offset) override;
    QByteArray readDataOfLength(size_t length) override;
    bool isDone() override { return m_offset == uint64_t(m_data.size()); }
    int status() override { return m_status; }
    HTTPHeaderList httpHeaders() override { return m_headers; }

private:
    QByteArray m_data;
    uint64_t m_offset = 0;
    int m_status;
    HTTPHeaderList m_headers;
};

} // namespace server
