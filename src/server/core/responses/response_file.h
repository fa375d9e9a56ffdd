#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <optional>

namespace server {

// The file a response reads. It opens read-only on first use and closes
// with the holder. A file that cannot be opened aborts the response, and so
// does a read error the response meets; after that nothing more is read.
class ResponseFile
{
public:
    // The size of the file the path leads to, through symbolic links; nothing
    // when it cannot be examined or is no regular file.
    static std::optional<uint64_t> examine(const QString &path);

    // aborted tells the connection; it is called on every abort.
    ResponseFile(const QString &path, std::function<void()> aborted);
    ~ResponseFile();

    ResponseFile(const ResponseFile &) = delete;
    ResponseFile &operator=(const ResponseFile &) = delete;

    // Opens the file the first time; false once the response was aborted.
    bool openIfNeeded();
    void abort();

    int descriptor() const { return m_fd; }
    const QString &path() const { return m_path; }

private:
    QString m_path;
    std::function<void()> m_aborted;
    int m_fd = -1;
    bool m_isAborted = false;
};

} // namespace server
