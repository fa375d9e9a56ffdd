#include "platform/file_flags.h"

#include <QFile>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tl::platform {

bool hasImmutableFlag(const QString &path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return false;
    int flags = 0;
    const bool known = ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    ::close(fd);
    return known && (flags & FS_IMMUTABLE_FL) != 0;
}

} // namespace tl::platform
