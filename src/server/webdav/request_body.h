#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>

namespace server {

// The body of one request: small ones in memory, large and chunked ones
// spooled to a file of their own in the upload folder. The spooled file is
// removed when the body is discarded, whatever became of the request; a file
// already moved away is left alone.
class RequestBody
{
public:
    static constexpr uint64_t kMaxInMemorySize = 1048576;

    RequestBody() = default;
    ~RequestBody() { discard(); }

    RequestBody(const RequestBody &) = delete;
    RequestBody &operator=(const RequestBody &) = delete;

    // Starts a new body; a chunked one has no size.
    void prepare(std::optional<uint64_t> size);
    void append(const QByteArray &data);
    // Closes the spooled file; its bytes are all on disk.
    void finish();
    void discard();

    bool isPresent() const { return m_inMemory || !m_filePath.isEmpty(); }
    bool isInMemory() const { return m_inMemory; }
    const QByteArray &data() const { return m_data; }
    // The spooled file, or empty.
    const QString &filePath() const { return m_filePath; }
    // The body's bytes wherever they are; nothing when the spooled file
    // cannot be read.
    std::optional<QByteArray> readAll() const;

private:
    void failSpool();

    bool m_inMemory = false;
    QByteArray m_data;
    QString m_filePath;
    int m_fd = -1;
};

// The folder uploads are spooled to, below the temporary folder.
QString uploadFolder();
// Removes what earlier runs left in the upload folder.
void removeStaleUploads();

} // namespace server
