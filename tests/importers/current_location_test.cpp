#include "foundation/clock.h"
#include "foundation/scheduler.h"
#include "importers/current_location.h"
#include "platform/alerts.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace tl::importers {
namespace {

enum class Start { Starts, Refuses, FailsWhileStarting };

// A service the test feeds.
class FakeService : public platform::LocationService
{
public:
    explicit FakeService(Start start) : m_start(start) {}
    bool start() override
    {
        if (m_start == Start::FailsWhileStarting)
            Q_EMIT failed(platform::LocationFailure::Unavailable);
        return m_start != Start::Refuses;
    }
    void stop() override {}

private:
    Start m_start;
};

class CurrentLocationTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        setClock(clock);
        platform::setAlertPresenter(alerts);
        QObject::connect(&request, &CurrentLocation::located,
                         [this](const LocationFix &fix) { found.push_back(fix); });
        QObject::connect(&request, &CurrentLocation::finished, [this] { ++finished; });
    }
    void TearDown() override
    {
        // Ended services go with the next turn of the event loop.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        platform::setLocationServiceFactory({});
        platform::setAlertPresenter(nullptr);
        setClock(std::make_shared<SystemClock>());
    }

    // Starts a request on a service that starts or not; the service fed.
    FakeService *start(Start starts = Start::Starts)
    {
        FakeService *made = nullptr;
        platform::setLocationServiceFactory([&made, starts] {
            auto service = std::make_unique<FakeService>(starts);
            made = service.get();
            return service;
        });
        request.start();
        return made;
    }
    void feed(FakeService *service, double accuracy, double age = 0)
    {
        Q_EMIT service->positionUpdated(
            {48.8584, 2.2945, accuracy, clock->now().addMSecs(qint64(-age * 1000))});
    }
    void wait(double seconds)
    {
        clock->advance(seconds);
        Scheduler::main().runDue();
    }
    QStringList alertTexts() const
    {
        QStringList texts;
        for (const platform::Alert &alert : alerts->shownAlerts())
            texts << alert.message + u'|' + alert.informativeText;
        return texts;
    }

    std::shared_ptr<ManualClock> clock =
        std::make_shared<ManualClock>(QDateTime(QDate(2026, 5, 6), QTime(7, 8), Qt::UTC));
    std::shared_ptr<platform::HeadlessAlertPresenter> alerts =
        std::make_shared<platform::HeadlessAlertPresenter>();
    CurrentLocation request;
    std::vector<LocationFix> found;
    int finished = 0;
};

TEST_F(CurrentLocationTest, StaleAndUnsureFixesAreDroppedAndTheWantedAccuracyWidens)
{
    FakeService *service = start();
    feed(service, 5, 31); // too old
    feed(service, -1);    // accuracy unknown
    feed(service, 50);    // not good enough yet
    EXPECT_TRUE(found.empty());
    wait(10);
    EXPECT_DOUBLE_EQ(request.desiredAccuracy(), 100);
    feed(service, 50);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_DOUBLE_EQ(found[0].accuracy, 50);
    EXPECT_EQ(found[0].dateTime, clock->now());
    EXPECT_EQ(finished, 1);
    EXPECT_FALSE(request.isRunning());
    EXPECT_TRUE(alertTexts().isEmpty());
}

TEST_F(CurrentLocationTest, FailuresAreTold)
{
    const QString denied = QStringLiteral("Unable to Insert Location.|You have explicitly denied "
                                          "authorization for Tavelle, or location services are "
                                          "disabled in Settings.");
    const QString unavailable = QStringLiteral("Unanable to acquire location.|");

    start(Start::Refuses);
    EXPECT_EQ(alertTexts(), QStringList{denied});

    FakeService *service = start();
    Q_EMIT service->failed(platform::LocationFailure::Unavailable);
    EXPECT_EQ(alertTexts(), (QStringList{denied, unavailable}));

    service = start();
    for (double step : {10, 10, 40})
        wait(step);
    EXPECT_DOUBLE_EQ(request.desiredAccuracy(), 3000);
    EXPECT_EQ(alertTexts(), (QStringList{denied, unavailable, unavailable}));

    start(Start::FailsWhileStarting);
    EXPECT_FALSE(request.isRunning());
    for (double step : {10, 10, 40})
        wait(step);
    EXPECT_EQ(alertTexts(), (QStringList{denied, unavailable, unavailable, unavailable}));
    EXPECT_EQ(finished, 4);
    EXPECT_TRUE(found.empty());
}

} // namespace
} // namespace tl::importers
