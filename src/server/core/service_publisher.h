#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <cstdint>
#include <memory>

namespace server {

struct ServiceDescription
{
    QString domain; // "local."
    QString type;   // "_http._tcp."
    QString name;   // empty: the host's name
    uint16_t port = 0;
    QMap<QString, QByteArray> txtRecord;
};

// Announces the server on the local network (multicast DNS). Publication is
// asynchronous and logs its outcome:
// "Bonjour Service Published: domain(%@) type(%@) name(%@)" or
// "Failed to Publish Service: domain(%@) type(%@) name(%@) - %@".
class ServicePublisher
{
public:
    virtual ~ServicePublisher() = default;
    virtual void publish(const ServiceDescription &service) = 0;
    virtual void unpublish() = 0;
    // The name in use once published (it may differ after a collision).
    virtual QString publishedName() const = 0;
};

// Publication through the Avahi daemon, on a thread of its own. Without a
// daemon it logs the failure line and does nothing more.
std::unique_ptr<ServicePublisher> makeAvahiPublisher();

} // namespace server
