#pragma once

// The desktop's location service: positions as they come, until stopped.
// The desktop and the command use Qt Positioning (GeoClue on Linux); tests
// install a factory of their own.

#include <QDateTime>
#include <QObject>
#include <functional>
#include <memory>

namespace tl::platform {

struct PositionFix
{
    double latitude = 0;
    double longitude = 0;
    // In metres; negative when the source doesn't know.
    double horizontalAccuracy = -1;
    QDateTime timestamp;
};

enum class LocationFailure {
    // Refused by the user, or the service is off.
    Denied,
    // The service runs but gives no position.
    Unavailable,
};

class LocationService : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    // Starts the updates; false when there is no service to ask, which
    // counts as refused.
    virtual bool start() = 0;
    virtual void stop() = 0;

Q_SIGNALS:
    // On the main thread.
    void positionUpdated(const tl::platform::PositionFix &fix);
    void failed(tl::platform::LocationFailure failure);
};

using LocationServiceFactory = std::function<std::unique_ptr<LocationService>()>;
// A new service for one request: Qt Positioning's default source until
// another factory is set.
std::unique_ptr<LocationService> makeLocationService();
// An empty factory restores Qt Positioning.
void setLocationServiceFactory(LocationServiceFactory factory);

} // namespace tl::platform
