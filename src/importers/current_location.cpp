#include "importers/current_location.h"

#include "foundation/clock.h"
#include "foundation/scheduler.h"
#include "platform/alerts.h"

#include <spdlog/spdlog.h>

namespace tl::importers {

namespace {

// The best the service gives, then a hundred metres, then three kilometres,
// each after this many seconds without a fix good enough; then it gives up.
constexpr double kBestAccuracy = 10;
constexpr double kWideningDelay = 10;
constexpr double kGivingUpDelay = 40;
// A fix older than this is an old position the service kept.
constexpr double kStaleSeconds = 30;

const QString &timerKey()
{
    static const QString key = QStringLiteral("CurrentLocation.widen");
    return key;
}

void alert(const char *message, const char *information)
{
    platform::alerts().run(
        {QString::fromUtf8(message), QString::fromUtf8(information), {QStringLiteral("OK")}});
}

} // namespace

CurrentLocation::CurrentLocation(QObject *parent) : QObject(parent)
{
}

CurrentLocation::~CurrentLocation()
{
    Scheduler::main().cancel(timerKey());
}

void CurrentLocation::start()
{
    if (m_service)
        return;
    m_desired = kBestAccuracy;
    m_widened = 0;
    m_service = platform::makeLocationService();
    connect(m_service.get(), &platform::LocationService::positionUpdated, this,
            &CurrentLocation::positionUpdated);
    connect(m_service.get(), &platform::LocationService::failed, this, &CurrentLocation::failed);
    spdlog::info("requesting authorization");
    if (!m_service->start()) {
        failed(platform::LocationFailure::Denied);
        return;
    }
    // A service may fail while starting.
    if (!m_service)
        return;
    Scheduler::main().schedule(timerKey(), kWideningDelay, [this] { widen(); });
}

void CurrentLocation::positionUpdated(const platform::PositionFix &fix)
{
    if (!m_service || fix.horizontalAccuracy < 0 ||
        fix.timestamp.secsTo(clock().now()) > kStaleSeconds)
        return;
    if (fix.horizontalAccuracy > m_desired)
        return;
    spdlog::info("stop updating - accuracy: {:.0f}m", fix.horizontalAccuracy);
    end();
    Q_EMIT located({fix.latitude, fix.longitude, fix.horizontalAccuracy, fix.timestamp});
    Q_EMIT finished();
}

void CurrentLocation::failed(platform::LocationFailure failure)
{
    if (!m_service)
        return;
    end();
    if (failure == platform::LocationFailure::Denied)
        alert(UnableToInsertLocation, LocationDeniedExplanation);
    else
        alert(UnableToAcquireLocation, "");
    Q_EMIT finished();
}

void CurrentLocation::widen()
{
    switch (m_widened++) {
    case 0:
        spdlog::info("increasing to KM");
        m_desired = 100;
        Scheduler::main().schedule(timerKey(), kWideningDelay, [this] { widen(); });
        break;
    case 1:
        spdlog::info("increasing to 3 KM");
        m_desired = 3000;
        Scheduler::main().schedule(timerKey(), kGivingUpDelay, [this] { widen(); });
        break;
    default:
        failed(platform::LocationFailure::Unavailable);
    }
}

void CurrentLocation::end()
{
    Scheduler::main().cancel(timerKey());
    m_service->stop();
    // The service may be the sender of the signal being handled.
    m_service.release()->deleteLater();
}

} // namespace tl::importers
