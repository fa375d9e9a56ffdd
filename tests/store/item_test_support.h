#pragma once

// Helpers of the item operation tests: a recorder of posted events, and a
// folder on another device than the sandbox.

#include "foundation/notification_center.h"
#include "support/test_environment.h"

#include <QDir>
#include <QFile>
#include <QList>
#include <QString>
#include <QVariantMap>
#include <sys/stat.h>

namespace tltest {

struct PostedEvent
{
    QString name;
    QVariantMap payload;
    bool operator==(const PostedEvent &) const = default;
};

inline std::ostream &operator<<(std::ostream &os, const PostedEvent &event)
{
    os << event.name.toStdString() << " {";
    for (auto it = event.payload.cbegin(); it != event.payload.cend(); ++it)
        os << ' ' << it.key().toStdString() << '=' << it.value().toString().toStdString();
    return os << " }";
}

// Every event posted while it lives, oldest first.
class EventRecorder
{
public:
    EventRecorder()
        : observer_({}, [this](const QString &name, const QVariantMap &payload) {
              events_.append({name, payload});
          })
    {
    }
    const QList<PostedEvent> &events() const { return events_; }
    QList<PostedEvent> named(const QString &name) const
    {
        QList<PostedEvent> result;
        for (const PostedEvent &e : events_)
            if (e.name == name)
                result << e;
        return result;
    }

private:
    QList<PostedEvent> events_;
    tl::ScopedObserver observer_;
};

// A folder below /dev/shm when that is another device than the sandbox,
// removed afterwards; empty when there is none.
class OtherDeviceFolder
{
public:
    OtherDeviceFolder()
    {
        struct stat sandbox, shm;
        if (::stat(QFile::encodeName(sandboxRoot()).constData(), &sandbox) != 0 ||
            ::stat("/dev/shm", &shm) != 0 || sandbox.st_dev == shm.st_dev)
            return;
        char templ[] = "/dev/shm/tavelle-items-XXXXXX";
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
