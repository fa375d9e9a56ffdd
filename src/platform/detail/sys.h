#pragma once

// Small helpers shared by the services that talk to the kernel directly.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <cerrno>
#include <string>
#include <system_error>
#include <unistd.h>

namespace tl::platform::detail {

// The path in the file system's encoding.
inline QByteArray nativePath(const QString &path)
{
    return QFile::encodeName(path);
}

// Text for log lines.
inline std::string utf8(const QString &text)
{
    return text.toStdString();
}
inline std::string utf8(const QByteArray &bytes)
{
    return bytes.toStdString();
}

// The message for an errno value; strerror is not thread-safe.
inline std::string systemError(int error)
{
    return std::generic_category().message(error);
}

// Path arithmetic on native paths that are absolute and clean.
inline QByteArray parentOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash <= 0 ? QByteArray("/") : path.left(slash);
}
inline QByteArray childOf(const QByteArray &folder, const QByteArray &name)
{
    return folder.endsWith('/') ? folder + name : folder + '/' + name;
}
inline QByteArray lastComponent(const QByteArray &path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

// write(2) until everything is written.
inline bool writeAll(int fd, const char *data, qsizetype size)
{
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size_t(size));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += written;
        size -= written;
    }
    return true;
}

} // namespace tl::platform::detail
