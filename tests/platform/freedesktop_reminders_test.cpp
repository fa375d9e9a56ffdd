#include "platform/freedesktop_reminders.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QProcess>
#include <QThread>
#include <gtest/gtest.h>

// The reminders against a notification service of the test's own on a
// private bus: what goes over the wire is what a desktop's service receives.
namespace {

struct Shown
{
    uint replaces = 0;
    QString summary;
    QString body;
    QStringList actions;
    QVariantMap hints;
};

class FakeNotificationService : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    QList<Shown> shown;
    QList<uint> closed;

public Q_SLOTS:
    uint Notify(const QString &, uint replaces, const QString &, const QString &summary,
                const QString &body, const QStringList &actions, const QVariantMap &hints, int)
    {
        shown.append({replaces, summary, body, actions, hints});
        return replaces ? replaces : uint(shown.size() + 40);
    }
    void CloseNotification(uint id) { closed.append(id); }
};

class FreedesktopRemindersTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        daemon_.start(QStringLiteral("dbus-daemon"),
                      {QStringLiteral("--session"), QStringLiteral("--nofork"),
                       QStringLiteral("--print-address=1")});
        ASSERT_TRUE(daemon_.waitForStarted()) << "dbus-daemon is missing";
        ASSERT_TRUE(daemon_.waitForReadyRead(5000));
        address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
        // The service answers on a thread of its own: the centre's calls block.
        serviceThread_.start();
        service_.moveToThread(&serviceThread_);
        QDBusConnection serviceBus = QDBusConnection::connectToBus(address_, "service");
        ASSERT_TRUE(serviceBus.registerObject(QStringLiteral("/org/freedesktop/Notifications"),
                                              &service_, QDBusConnection::ExportAllSlots));
        ASSERT_TRUE(serviceBus.registerService(QStringLiteral("org.freedesktop.Notifications")));
    }

    void TearDown() override
    {
        QDBusConnection::disconnectFromBus("service");
        QDBusConnection::disconnectFromBus("client");
        serviceThread_.quit();
        serviceThread_.wait();
        daemon_.kill();
        daemon_.waitForFinished();
    }

    QDBusConnection client() { return QDBusConnection::connectToBus(address_, "client"); }

    // Sends a signal as the service does and waits for the centre to see it.
    void emitFromService(const QString &name, const QVariantList &arguments,
                         const std::function<bool()> &seen)
    {
        QDBusMessage signal =
            QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/Notifications"),
                                       QStringLiteral("org.freedesktop.Notifications"), name);
        signal.setArguments(arguments);
        QDBusConnection::connectToBus(address_, "service").send(signal);
        for (QDeadlineTimer deadline(5000); !seen() && !deadline.hasExpired();)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }

    QProcess daemon_;
    QString address_;
    QThread serviceThread_;
    FakeNotificationService service_;
};

tl::platform::Reminder reminder(const QString &identifier, bool sound)
{
    return {identifier,
            QStringLiteral("Pay rent"),
            QStringLiteral("Due today"),
            QStringLiteral("Open"),
            identifier + "/task",
            QDateTime::currentDateTime(),
            sound};
}

TEST_F(FreedesktopRemindersTest, ShowsReplacesClosesAndOpensThroughTheService)
{
    tl::platform::FreedesktopReminderCentre centre(nullptr, client());
    ASSERT_TRUE(tl::platform::FreedesktopReminderCentre::available(client()));
    QString opened;
    centre.didActivate = [&](const tl::platform::Reminder &r) { opened = r.taskPath; };

    centre.setScheduled({reminder("/lib/Rent", true), reminder("/lib/Call", false)});
    ASSERT_EQ(centre.deliverDue(QDateTime::currentDateTime().addSecs(1)), 2);
    // A second delivery of the same item takes its earlier notification away.
    centre.setScheduled({reminder("/lib/Rent", false)});
    centre.deliverDue(QDateTime::currentDateTime().addSecs(1));

    ASSERT_EQ(service_.shown.size(), 3);
    const Shown &first = service_.shown[0];
    EXPECT_EQ(first.replaces, 0u);
    EXPECT_EQ(first.summary, "Pay rent");
    EXPECT_EQ(first.body, "Due today");
    EXPECT_EQ(first.actions, (QStringList{"default", "Open", "open", "Open"}));
    EXPECT_EQ(first.hints.value("sound-name").toString(), "message-new-instant");
    EXPECT_FALSE(service_.shown[1].hints.contains("sound-name"));
    EXPECT_TRUE(service_.shown[1].hints.value("suppress-sound").toBool());

    emitFromService("ActionInvoked", {42u, QStringLiteral("open")},
                    [&] { return !opened.isEmpty(); });
    EXPECT_EQ(opened, "/lib/Call/task");

    centre.removeDelivered("/lib/Rent");
    for (QDeadlineTimer deadline(5000); service_.closed.size() < 2 && !deadline.hasExpired();)
        QThread::msleep(10);
    EXPECT_EQ(service_.closed, (QList<uint>{41u, 43u}));
}

TEST_F(FreedesktopRemindersTest, NoServiceOnTheBusIsNotAvailable)
{
    QDBusConnection::connectToBus(address_, "service")
        .unregisterService(QStringLiteral("org.freedesktop.Notifications"));
    EXPECT_FALSE(tl::platform::FreedesktopReminderCentre::available(client()));
}

} // namespace

#include "freedesktop_reminders_test.moc"
