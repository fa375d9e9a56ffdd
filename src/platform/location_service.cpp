#include "platform/location_service.h"

#include <QGeoPositionInfoSource>
#include <mutex>
#include <spdlog/spdlog.h>

namespace tl::platform {

namespace {

class QtLocationService : public LocationService
{
public:
    bool start() override
    {
        if (!m_source) {
            m_source = QGeoPositionInfoSource::createDefaultSource(this);
            if (!m_source)
                return false;
            m_source->setPreferredPositioningMethods(QGeoPositionInfoSource::AllPositioningMethods);
            connect(m_source, &QGeoPositionInfoSource::positionUpdated, this,
                    [this](const QGeoPositionInfo &info) { Q_EMIT positionUpdated(fixOf(info)); });
            connect(m_source, &QGeoPositionInfoSource::errorOccurred, this,
                    [this](QGeoPositionInfoSource::Error error) {
                        spdlog::info("location: the service answers error {}", int(error));
                        Q_EMIT failed(error == QGeoPositionInfoSource::AccessError ||
                                              error == QGeoPositionInfoSource::ClosedError
                                          ? LocationFailure::Denied
                                          : LocationFailure::Unavailable);
                    });
        }
        m_source->startUpdates();
        return m_source->error() != QGeoPositionInfoSource::AccessError;
    }

    void stop() override
    {
        if (m_source)
            m_source->stopUpdates();
    }

private:
    static PositionFix fixOf(const QGeoPositionInfo &info)
    {
        const bool accurate = info.hasAttribute(QGeoPositionInfo::HorizontalAccuracy);
        return {info.coordinate().latitude(), info.coordinate().longitude(),
                accurate ? info.attribute(QGeoPositionInfo::HorizontalAccuracy) : -1.0,
                info.timestamp()};
    }

    QGeoPositionInfoSource *m_source = nullptr;
};

std::mutex factoryMutex;
LocationServiceFactory installedFactory;

} // namespace

std::unique_ptr<LocationService> makeLocationService()
{
    std::lock_guard lock(factoryMutex);
    if (installedFactory)
        return installedFactory();
    return std::make_unique<QtLocationService>();
}

void setLocationServiceFactory(LocationServiceFactory factory)
{
    std::lock_guard lock(factoryMutex);
    installedFactory = std::move(factory);
}

} // namespace tl::platform
