#pragma once

#include "server/core/http_response.h"

namespace server {

// A response that is a status and nothing else: the work is done when it is
// made, and there is no body.
class DAVStatusResponse : public HTTPResponse
{
public:
    uint64_t contentLength() override { return 0; }
    uint64_t offset() override { return 0; }
    void setOffset(uint64_t) override {}
    QByteArray readDataOfLength(size_t) override { return {}; }
    bool isDone() override { return true; }
    int status() override { return m_status; }

protected:
    int m_status = 200;
};

} // namespace server
