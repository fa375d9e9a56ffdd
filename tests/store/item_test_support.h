#pragma once

// Helpers of the item operation tests: a recorder of posted events, and a
// folder on another device than the sandbox.

#include "foundation/notification_center.h"
#include "support/other_device_folder.h"
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

} // namespace tltest
