#pragma once

#include "foundation/notification_center.h"

#include <QList>
#include <QString>
#include <QVariantMap>
#include <algorithm>
#include <ostream>

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
    int count(const QString &name) const { return int(named(name).size()); }
    // Whether an event of that name was posted about the path.
    bool posted(const QString &name, const QString &path) const
    {
        return std::any_of(events_.begin(), events_.end(), [&](const PostedEvent &e) {
            return e.name == name && e.payload.value("path").toString() == path;
        });
    }
    void clear() { events_.clear(); }

private:
    QList<PostedEvent> events_;
    tl::ScopedObserver observer_;
};

} // namespace tltest
