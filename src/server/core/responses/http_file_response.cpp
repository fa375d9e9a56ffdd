#include "server/core/responses/http_file_response.h"

#include "server/core/http_connection.h"

#include <cerrno>
#include <unistd.h>

namespace server {

std::shared_ptr<HTTPFileResponse> HTTPFileResponse::create(const QString &filePath,
                                                           HTTPConnection *connection)
{
    const auto length = ResponseFile::examine(filePath);
    if (!length)
        return nullptr;
    return std::shared_ptr<HTTPFileResponse>(new HTTPFileResponse(filePath, *length, connection));
}

HTTPFileResponse::HTTPFileResponse(const QString &filePath, uint64_t length,
                                   HTTPConnection *connection)
    : m_connection(connection), m_file(filePath,
                                       [this] {
                                           if (m_connection)
                                               m_connection->responseDidAbort(this);
                                       }),
      m_fileLength(length)
{
}

void HTTPFileResponse::setOffset(uint64_t offset)
{
    if (!m_file.openIfNeeded())
        return;
    m_fileOffset = offset;
    if (::lseek(m_file.descriptor(), off_t(offset), SEEK_SET) == off_t(-1))
        m_file.abort();
}

QByteArray HTTPFileResponse::readDataOfLength(size_t length)
{
    if (!m_file.openIfNeeded())
        return {};
    const uint64_t left = m_fileLength - std::min(m_fileOffset, m_fileLength);
    const size_t wanted = size_t(std::min<uint64_t>(length, left));
    if (wanted == 0)
        return {};
    // Reuse the buffer once the bytes handed out before have been sent.
    if (!m_buffer.isDetached() || m_buffer.capacity() < qsizetype(wanted))
        m_buffer = QByteArray(qsizetype(wanted), Qt::Uninitialized);
    else
        m_buffer.resize(qsizetype(wanted));
    ssize_t got;
    do {
        got = ::read(m_file.descriptor(), m_buffer.data(), wanted);
    } while (got < 0 && errno == EINTR);
    if (got <= 0) {
        m_file.abort();
        return {};
    }
    m_buffer.resize(qsizetype(got));
    m_fileOffset += uint64_t(got);
    return m_buffer;
}

} // namespace server
