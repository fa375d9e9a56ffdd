#pragma once

#include "server/core/http_response.h"
#include "server/core/responses/response_file.h"

#include <QString>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace server {

class HTTPConnection;

// A large file's bytes, read on a thread of the response's own
// ("HTTPAsyncFileResponse") so that the connection's queue never waits on
// the disk. readDataOfLength() hands over the bytes that have arrived, if
// any; otherwise it asks the thread for them and gives nothing, and the
// thread calls responseHasAvailableData() when they are there. While one
// piece is handed out the next is read ahead, so at most two pieces are held.
class HTTPAsyncFileResponse : public HTTPResponse
{
public:
    // Nothing when the file cannot be examined or is no regular file.
    static std::shared_ptr<HTTPAsyncFileResponse> create(const QString &filePath,
                                                         HTTPConnection *connection);
    ~HTTPAsyncFileResponse() override;

    uint64_t contentLength() override { return m_fileLength; }
    uint64_t offset() override { return m_fileOffset; }
    void setOffset(uint64_t offset) override;
    QByteArray readDataOfLength(size_t length) override;
    bool isDone() override { return m_fileOffset == m_fileLength; }
    bool isAsynchronous() override { return true; }
    void connectionDidClose() override;

    const QString &filePath() const { return m_file.path(); }

private:
    HTTPAsyncFileResponse(const QString &filePath, uint64_t length, HTTPConnection *connection);
    bool openFileIfNeeded();
    void tellAborted();
    void requestLocked(uint64_t offset, size_t length);
    void run();
    void stopThread();

    ResponseFile m_file;
    uint64_t m_fileLength;
    uint64_t m_fileOffset = 0;
    size_t m_lastWanted = 0;

    struct Request
    {
        uint64_t offset;
        size_t length;
        uint64_t generation;
    };

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::thread m_thread;
    HTTPConnection *m_connection;      // guarded by m_mutex
    bool m_stopping = false;           // guarded by m_mutex
    bool m_failed = false;             // guarded by m_mutex
    bool m_notifyWhenReady = false;    // guarded by m_mutex
    uint64_t m_generation = 0;         // guarded by m_mutex
    std::optional<Request> m_wanted;   // guarded by m_mutex
    std::optional<Request> m_inFlight; // guarded by m_mutex
    QByteArray m_ready;                // guarded by m_mutex
    uint64_t m_readyOffset = 0;        // guarded by m_mutex
};

} // namespace server
