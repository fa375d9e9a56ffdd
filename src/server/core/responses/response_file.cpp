#include "server/core/responses/response_file.h"

#include <QFile>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace server {

std::optional<uint64_t> ResponseFile::examine(const QString &path)
{
    const QByteArray encoded = QFile::encodeName(path);
    if (encoded.isEmpty() || encoded.contains('\0'))
        return std::nullopt;
    // stat() and open() both follow symbolic links through the whole path, so
    // the file examined and the file read are the link's target.
    struct stat info;
    if (::stat(encoded.constData(), &info) != 0 || !S_ISREG(info.st_mode))
        return std::nullopt;
    return uint64_t(info.st_size);
}

ResponseFile::ResponseFile(const QString &path, std::function<void()> aborted)
    : m_path(path), m_aborted(std::move(aborted))
{
}

ResponseFile::~ResponseFile()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

bool ResponseFile::openIfNeeded()
{
    if (m_isAborted)
        return false;
    if (m_fd >= 0)
        return true;
    m_fd = ::open(QFile::encodeName(m_path).constData(), O_RDONLY | O_CLOEXEC);
    if (m_fd < 0) {
        abort();
        return false;
    }
    return true;
}

void ResponseFile::abort()
{
    if (m_aborted)
        m_aborted();
    m_isAborted = true;
}

} // namespace server
