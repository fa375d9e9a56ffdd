#include "server/webdav/request_body.h"

#include "platform/file_ops.h"
#include "platform/folders.h"
#include "store/log.h"

#include <QDir>
#include <QFile>
#include <QUuid>
#include <fcntl.h>
#include <unistd.h>

namespace server {

QString uploadFolder()
{
    return tl::platform::temporaryFolder() + QStringLiteral("/WebDAV Uploads");
}

void removeStaleUploads()
{
    const QString folder = uploadFolder();
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &name : names)
        tl::platform::removeItem(folder + QLatin1Char('/') + name);
}

void RequestBody::prepare(std::optional<uint64_t> size)
{
    discard();
    if (size && *size <= kMaxInMemorySize) {
        m_inMemory = true;
        m_data.reserve(qsizetype(*size));
        return;
    }
    if (!tl::platform::makeFolder(uploadFolder()))
        return;
    const QString path = uploadFolder() + QLatin1Char('/') +
                         QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    m_fd =
        ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (m_fd < 0) {
        tl::logLine(QStringLiteral("Failed creating upload file \"%1\"").arg(path));
        return;
    }
    m_filePath = path;
}

void RequestBody::append(const QByteArray &data)
{
    if (m_inMemory) {
        m_data += data;
        return;
    }
    if (m_fd < 0)
        return;
    qsizetype written = 0;
    while (written < data.size()) {
        const ssize_t n = ::write(m_fd, data.constData() + written, size_t(data.size() - written));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            failSpool();
            return;
        }
        written += n;
    }
}

void RequestBody::finish()
{
    if (m_fd < 0)
        return;
    const bool closed = ::close(m_fd) == 0;
    m_fd = -1;
    if (!closed)
        failSpool();
}

void RequestBody::failSpool()
{
    // A body that did not reach the disk whole is no body.
    tl::logLine(QStringLiteral("Failed writing upload file \"%1\"").arg(m_filePath));
    discard();
}

void RequestBody::discard()
{
    if (m_fd >= 0) {
        ::close(m_fd);
        m_fd = -1;
    }
    if (!m_filePath.isEmpty()) {
        ::unlink(QFile::encodeName(m_filePath).constData());
        m_filePath.clear();
    }
    m_inMemory = false;
    m_data.clear();
}

std::optional<QByteArray> RequestBody::readAll() const
{
    if (m_inMemory)
        return m_data;
    if (m_filePath.isEmpty())
        return QByteArray();
    return tl::platform::readFile(m_filePath);
}

} // namespace server
