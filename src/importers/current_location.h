#pragma once

#include "importers/location.h"
#include "platform/location_service.h"

#include <QObject>
#include <memory>

// tl_insertCurrentLocation: asks the location service for a position good
// enough to insert, settling for less as time passes, and tells the user
// when none can be had.
namespace tl::importers {

inline constexpr char UnableToInsertLocation[] = "Unable to Insert Location.";
inline constexpr char LocationDeniedExplanation[] =
    "You have explicitly denied authorization for Tavelle, or location services are disabled "
    "in Settings.";
inline constexpr char UnableToAcquireLocation[] = "Unanable to acquire location.";

class CurrentLocation : public QObject
{
    Q_OBJECT
public:
    explicit CurrentLocation(QObject *parent = nullptr);
    ~CurrentLocation() override;

    // Starts the updates, or shows the refusal at once.
    void start();
    bool isRunning() const { return m_service != nullptr; }
    // The accuracy a fix must reach now, in metres.
    double desiredAccuracy() const { return m_desired; }

Q_SIGNALS:
    void located(const tl::importers::LocationFix &fix);
    // After a position or a failure.
    void finished();

private:
    void positionUpdated(const platform::PositionFix &fix);
    void failed(platform::LocationFailure failure);
    void widen();
    void end();

    std::unique_ptr<platform::LocationService> m_service;
    double m_desired = 0;
    int m_widened = 0;
};

} // namespace tl::importers
