#include "server/core/responses/http_file_response.h"

#include "server/core/http_connection.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace server {

bool examineRegularFile(const QString &filePath, uint64_t &length)
{
    const QByteArray encoded = QFile::encodeName(filePath);
    if (encoded.isEmpty() || encoded.contains('\0'))
        return false;
    // stat() and open() both follow symbolic links through the whole path, so
    // the file examined and the file read are the link's target.
    struct stat info;
    if (::stat(encoded.constData(), &info) != 0 || !S_ISREG(info.st_mode))
        return false;
    length = uint64_t(info.st_size);
    return true;
}

std::shared_ptr<HTTPFileResponse> HTTPFileResponse::create(const QString &filePath, HTTPConnection *connection)
{
    uint64_t length = 0;
    if (!examineRegularFile(filePath, length))
        return nullptr;
    return std::shared_ptr<HTTPFileResponse>(new HTTPFileResponse(filePath, length, connection));
}

HTTPFileResponse::HTTPFileResponse(const QString &filePath, uint64_t length, HTTPConnection *connection)
    : m_connection(connection), m_filePath(filePath), m_fileLength(length)
{
}

HTTPFileResponse::~HTTPFileResponse()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

void HTTPFileResponse::abort()
{
    if (m_connection)
        m_connection->responseDidAbort(this);
    m_aborted = true;
}

bool HTTPFileResponse::openFileIfNeeded()
{
    if (m_aborted)
        return false;
    if (m_fd >= 0)
        return true;
    m_fd = ::open(QFile::encodeName(m_filePath).constData(), O_RDONLY | O_CLOEXEC);
    if (m_fd < 0) {
        abort();
        return false;
    }
    return true;
}

void HTTPFileResponse::setOffset(uint64_t offset)
{
    if (!openFileIfNeeded())
        return;
    m_fileOffset = offset;
    if (::lseek(m_fd, off_t(offset), SEEK_SET) == off_t(-1))
        abort();
}

QByteArray HTTPFileResponse::readDataOfLength(size_t length)
{
    if (!openFileIfNeeded())
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
        got = ::read(m_fd, m_buffer.data(), wanted);
    } while (got < 0 && errno == EINTR);
    if (got <= 0) {
        abort();
        return {};
    }
    m_buffer.resize(qsizetype(got));
    m_fileOffset += uint64_t(got);
    return m_buffer;
}

} // namespace server
