#pragma once

#include "server/core/http_response.h"
#include "server/core/responses/response_file.h"

#include <QString>
#include <memory>

namespace server {

class HTTPConnection;

// A file's bytes, read on the connection's queue. The size is taken once, at
// creation, through the path's symbolic links. The file opens on first use;
// a read error or an early end aborts the response, and the connection
// closes once its queued writes are out.
class HTTPFileResponse : public HTTPResponse
{
public:
    // Nothing when the file cannot be examined or is no regular file.
    static std::shared_ptr<HTTPFileResponse> create(const QString &filePath,
                                                    HTTPConnection *connection);

    uint64_t contentLength() override { return m_fileLength; }
    uint64_t offset() override { return m_fileOffset; }
    void setOffset(uint64_t offset) override;
    QByteArray readDataOfLength(size_t length) override;
    bool isDone() override { return m_fileOffset == m_fileLength; }

    const QString &filePath() const { return m_file.path(); }

private:
    HTTPFileResponse(const QString &filePath, uint64_t length, HTTPConnection *connection);

    HTTPConnection *m_connection;
    ResponseFile m_file;
    uint64_t m_fileLength;
    uint64_t m_fileOffset = 0;
    QByteArray m_buffer;
};

} // namespace server
