#pragma once

#include "support/test_environment.h"

#include <QDir>
#include <QFile>
#include <QString>
#include <cstdlib>
#include <sys/stat.h>

namespace tltest {

// A folder below /dev/shm when that is another device than the sandbox, so
// moves between them cross devices; removed afterwards, empty when there is
// no other device.
class OtherDeviceFolder
{
public:
    OtherDeviceFolder()
    {
        struct stat sandbox, shm;
        if (::stat(QFile::encodeName(sandboxRoot()).constData(), &sandbox) != 0 ||
            ::stat("/dev/shm", &shm) != 0 || sandbox.st_dev == shm.st_dev)
            return;
        char templ[] = "/dev/shm/tavelle-test-XXXXXX";
        if (::mkdtemp(templ))
            path_ = QString::fromLocal8Bit(templ);
    }
    ~OtherDeviceFolder()
    {
        if (!path_.isEmpty())
            QDir(path_).removeRecursively();
    }
    OtherDeviceFolder(const OtherDeviceFolder &) = delete;
    OtherDeviceFolder &operator=(const OtherDeviceFolder &) = delete;
    const QString &path() const { return path_; }

private:
    QString path_;
};

} // namespace tltest
