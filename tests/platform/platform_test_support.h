#pragma once

// Helpers shared by the platform tests: fresh folders in the sandbox, probes
// for what the machine allows, and guards that restore process state.

#include "support/other_device_folder.h"
#include "support/test_environment.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QString>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <linux/fs.h>
#include <optional>
#include <ostream>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

// Readable failure messages for texts.
inline void PrintTo(const QString &text, std::ostream *os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace tltest {

// A new empty folder below the sandbox, unique per call.
inline QString freshFolder(const QString &name)
{
    static int counter = 0;
    const QString path = sandboxRoot() + "/work/" + name + "-" + QString::number(++counter);
    QDir().mkpath(path);
    return path;
}

// Keeps anyone from adding, removing or renaming entries in a folder while
// it lives. Permission bits alone do not hold root back, so root's folder is
// also marked immutable, where the file system allows it.
class ReadOnlyFolder
{
public:
    explicit ReadOnlyFolder(const QString &path) : path_(QFile::encodeName(path))
    {
        ::chmod(path_.constData(), 0555);
        held_ = ::geteuid() != 0 || setImmutable(true);
    }
    ~ReadOnlyFolder()
    {
        if (::geteuid() == 0)
            setImmutable(false);
        ::chmod(path_.constData(), 0755);
    }
    // False where root cannot be held back here.
    bool held() const { return held_; }

private:
    bool setImmutable(bool on)
    {
        const int fd = ::open(path_.constData(), O_RDONLY | O_DIRECTORY);
        int flags = 0;
        bool done = fd >= 0 && ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
        flags = on ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
        done = done && ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
        if (fd >= 0)
            ::close(fd);
        return done;
    }

    QByteArray path_;
    bool held_ = false;
};

// Whether the sandbox's file system takes user extended attributes.
inline bool sandboxTakesUserAttributes()
{
    static const bool supported = [] {
        const QString probe = freshFolder("xattr-probe") + "/probe";
        writeFile(probe, "x");
        return ::setxattr(QFile::encodeName(probe).constData(), "user.probe", "1", 1, 0) == 0;
    }();
    return supported;
}

// Caps the size of any file this process writes, so that writes fail part
// way even for root; SIGXFSZ is ignored so the write answers EFBIG instead.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &saved_);
        previousHandler_ = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = saved_;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &saved_);
        std::signal(SIGXFSZ, previousHandler_);
    }

private:
    rlimit saved_{};
    void (*previousHandler_)(int) = nullptr;
};

// Sets or unsets an environment variable, restoring it afterwards.
class EnvironmentOverride
{
public:
    EnvironmentOverride(const char *name, std::optional<QByteArray> value) : name_(name)
    {
        if (const char *old = std::getenv(name))
            saved_ = QByteArray(old);
        apply(value);
    }
    ~EnvironmentOverride() { apply(saved_); }

private:
    void apply(const std::optional<QByteArray> &value)
    {
        if (value)
            ::setenv(name_, value->constData(), 1);
        else
            ::unsetenv(name_);
    }

    const char *name_;
    std::optional<QByteArray> saved_;
};

// Everything a copy must keep, entry by entry below root (root itself under
// "."): kind, permission bits, modification time in nanoseconds, content or
// link target, and user attributes. Links are described, never followed.
inline QMap<QString, QString> describeTree(const QString &root, const QString &relative = ".")
{
    QMap<QString, QString> tree;
    const QString path = relative == "." ? root : root + "/" + relative;
    const QByteArray native = QFile::encodeName(path);
    struct stat st;
    if (::lstat(native.constData(), &st) != 0)
        return tree;
    QString entry = QString::number(st.st_mode & 07777, 8) + " " +
                    QString::number(qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec);
    char names[4096];
    const ssize_t length = ::llistxattr(native.constData(), names, sizeof names);
    for (ssize_t i = 0; i < length; i += ssize_t(qstrlen(names + i)) + 1) {
        char value[4096];
        const ssize_t size = ::lgetxattr(native.constData(), names + i, value, sizeof value);
        entry += QString(" [%1=%2]").arg(names + i, QByteArray(value, size > 0 ? size : 0));
    }
    if (S_ISLNK(st.st_mode)) {
        char target[4096];
        const ssize_t size = ::readlink(native.constData(), target, sizeof target);
        entry.prepend("link -> " + QString::fromLocal8Bit(target, size > 0 ? size : 0) + " ");
    } else if (S_ISREG(st.st_mode)) {
        entry.prepend("file " + QString::fromUtf8(readFile(path)) + " ");
    } else if (S_ISDIR(st.st_mode)) {
        entry.prepend("folder ");
        const QStringList children = QDir(path).entryList(QDir::AllEntries | QDir::Hidden |
                                                          QDir::System | QDir::NoDotAndDotDot);
        for (const QString &child : children)
            tree.insert(describeTree(root, relative == "." ? child : relative + "/" + child));
    }
    tree.insert(relative, entry);
    return tree;
}

} // namespace tltest
