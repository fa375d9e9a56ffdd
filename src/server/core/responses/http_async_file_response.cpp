#include "server/core/responses/http_async_file_response.h"

#include "server/core/http_connection.h"

#include <cerrno>
#include <pthread.h>
#include <unistd.h>

namespace server {

std::shared_ptr<HTTPAsyncFileResponse> HTTPAsyncFileResponse::create(const QString &filePath,
                                                                     HTTPConnection *connection)
{
    const auto length = ResponseFile::examine(filePath);
    if (!length)
        return nullptr;
    return std::shared_ptr<HTTPAsyncFileResponse>(
        new HTTPAsyncFileResponse(filePath, *length, connection));
}

HTTPAsyncFileResponse::HTTPAsyncFileResponse(const QString &filePath, uint64_t length,
                                             HTTPConnection *connection)
    : m_file(filePath, [this] { tellAborted(); }), m_fileLength(length), m_connection(connection)
{
}

HTTPAsyncFileResponse::~HTTPAsyncFileResponse()
{
    stopThread();
}

void HTTPAsyncFileResponse::stopThread()
{
    {
        std::lock_guard lock(m_mutex);
        m_stopping = true;
        m_connection = nullptr;
    }
    m_wake.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

void HTTPAsyncFileResponse::connectionDidClose()
{
    stopThread();
}

void HTTPAsyncFileResponse::tellAborted()
{
    HTTPConnection *connection;
    {
        std::lock_guard lock(m_mutex);
        connection = m_connection;
    }
    if (connection)
        connection->responseDidAbort(this);
}

bool HTTPAsyncFileResponse::openFileIfNeeded()
{
    if (!m_file.openIfNeeded())
        return false;
    std::lock_guard lock(m_mutex);
    if (!m_stopping && !m_thread.joinable())
        m_thread = std::thread([this] { run(); });
    return true;
}

void HTTPAsyncFileResponse::setOffset(uint64_t offset)
{
    if (!openFileIfNeeded())
        return;
    m_fileOffset = std::min(offset, m_fileLength);
}

void HTTPAsyncFileResponse::requestLocked(uint64_t offset, size_t length)
{
    m_wanted = Request{offset, length, ++m_generation};
    m_wake.notify_one();
}

QByteArray HTTPAsyncFileResponse::readDataOfLength(size_t length)
{
    if (!openFileIfNeeded())
        return {};
    const uint64_t left = m_fileLength - m_fileOffset;
    const size_t wanted = size_t(std::min<uint64_t>(length, left));
    if (wanted == 0)
        return {};
    m_lastWanted = std::max(m_lastWanted, wanted);

    std::unique_lock lock(m_mutex);
    if (m_failed) {
        lock.unlock();
        m_file.abort();
        return {};
    }
    if (!m_ready.isEmpty() && m_readyOffset == m_fileOffset) {
        QByteArray piece;
        if (size_t(m_ready.size()) <= wanted) {
            piece = std::move(m_ready);
            m_ready = QByteArray();
        } else {
            piece = m_ready.left(qsizetype(wanted));
            m_ready.remove(0, qsizetype(wanted));
            m_readyOffset += wanted;
        }
        m_fileOffset += uint64_t(piece.size());
        // Read the next piece ahead while this one is sent.
        if (m_ready.isEmpty() && m_fileOffset < m_fileLength && !m_wanted && !m_inFlight)
            requestLocked(m_fileOffset,
                          size_t(std::min<uint64_t>(m_lastWanted, m_fileLength - m_fileOffset)));
        return piece;
    }
    m_ready.clear();
    m_notifyWhenReady = true;
    const bool coming = (m_inFlight && m_inFlight->offset == m_fileOffset &&
                         m_inFlight->generation == m_generation) ||
                        (m_wanted && m_wanted->offset == m_fileOffset);
    if (!coming)
        requestLocked(m_fileOffset, wanted);
    return {};
}

void HTTPAsyncFileResponse::run()
{
    pthread_setname_np(pthread_self(), "HTTPAsyncFileRe");
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stopping || m_wanted.has_value(); });
        if (m_stopping)
            return;
        m_inFlight = m_wanted;
        m_wanted.reset();
        const Request request = *m_inFlight;
        lock.unlock();

        QByteArray bytes(qsizetype(request.length), Qt::Uninitialized);
        size_t got = 0;
        bool failed = false;
        while (got < request.length) {
            const ssize_t n = ::pread(m_file.descriptor(), bytes.data() + got, request.length - got,
                                      off_t(request.offset + got));
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                // A read error or an early end of the file.
                failed = true;
                break;
            }
            got += size_t(n);
        }

        lock.lock();
        m_inFlight.reset();
        if (m_stopping)
            return;
        if (request.generation != m_generation)
            continue; // asked for before a seek: no longer wanted
        if (failed)
            m_failed = true;
        else {
            m_ready = std::move(bytes);
            m_readyOffset = request.offset;
        }
        if (!m_notifyWhenReady)
            continue;
        m_notifyWhenReady = false;
        HTTPConnection *connection = m_connection;
        lock.unlock();
        // The connection hops onto its own queue; it may not outlive this call
        // otherwise, for connectionDidClose() waits for this thread.
        if (connection) {
            if (failed)
                connection->responseDidAbort(this);
            else
                connection->responseHasAvailableData(this);
        }
        lock.lock();
    }
}

} // namespace server
