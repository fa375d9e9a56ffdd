// Server control: the port rule, the password, the pane, the restart on a
// change of root, and a soak of starts and stops with clients connected.
#include "platform/alerts.h"
#include "platform/settings.h"
#include "server/control/connection_details.h"
#include "server/control/server_control.h"
#include "server/control/server_preferences.h"
#include "server/control/server_settings.h"
#include "server_test_support.h"
#include "shell/app_delegate.h"
#include "shell/shell_hooks.h"
#include "shell/shell_keys.h"
#include "store/keys.h"
#include "store/library_fixture.h"
#include "store/library_root.h"
#include "support/test_environment.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace server;
using namespace servertest;

namespace {

tl::platform::Settings &settings()
{
    return tl::platform::settings();
}

const QString kPortKey = QLatin1String(kLocalWebDAVServerPortKey);
const QString kPasswordKey = QLatin1String(kLocalWebDAVServerStringKey);
const QString kLaunchKey = QLatin1String(tl::keys::setting::LaunchLocalWebDAVServer);

// A listening socket on a loopback port, held while it lives.
class PortHolder
{
public:
    explicit PortHolder(uint16_t port)
    {
        m_fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        m_held = ::bind(m_fd, reinterpret_cast<sockaddr *>(&address), length) == 0 &&
                 ::listen(m_fd, 4) == 0 &&
                 ::getsockname(m_fd, reinterpret_cast<sockaddr *>(&address), &length) == 0;
        m_port = ntohs(address.sin_port);
    }
    ~PortHolder() { ::close(m_fd); }
    bool held() const { return m_held; }
    uint16_t port() const { return m_port; }

private:
    int m_fd = -1;
    bool m_held = false;
    uint16_t m_port = 0;
};

// The status of the answer to an unauthenticated request; 0 once the
// connection is gone.
int ask(RawClient &client)
{
    client.send("OPTIONS / HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    const std::optional<Response> response = client.receive();
    return response ? response->status : 0;
}

int countEntries(const char *folder)
{
    return int(QDir(QString::fromLatin1(folder))
                   .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
                   .size());
}

class ServerControlTest : public ::testing::Test
{
protected:
    QString root;
    std::shared_ptr<tl::platform::HeadlessAlertPresenter> alerts =
        std::make_shared<tl::platform::HeadlessAlertPresenter>();

    void SetUp() override
    {
        tltest::clearSettings();
        root = tl::store::resolvingSymlinks(tltest::makeTemporaryFolder("control")) + "/Library";
        QDir().mkpath(root + "/Book");
        settings().set(QLatin1String(tl::keys::setting::TavelleFolder), root);
        tl::platform::setAlertPresenter(alerts);
        setServerControlOptions({QStringLiteral("127.0.0.1"), [] { return nullptr; }});
    }
    void TearDown() override
    {
        terminateTavelleServer();
        tl::shell::shellHooks() = tl::shell::ShellHooks();
        tl::platform::setAlertPresenter(nullptr);
        tltest::clearSettings();
    }

    // A free loopback port below 9000 whose successor is free too.
    static uint16_t freePairBelow9000()
    {
        for (uint16_t port = 8700; port < 8990; port += 7) {
            PortHolder first(port);
            PortHolder second(uint16_t(port + 1));
            if (first.held() && second.held())
                return port;
        }
        return 0;
    }

    // The status of a PROPFIND of the root with curl and the stored credentials.
    static QByteArray propfindStatus(uint16_t port, const QString &password)
    {
        QProcess curl;
        curl.start("curl", {"--silent", "--max-time", "20", "--digest", "--user",
                            "Tavelle:" + password, "--request", "PROPFIND", "--header", "Depth: 1",
                            "--output", "/dev/null", "--write-out", "%{http_code}",
                            QStringLiteral("http://127.0.0.1:%1/Book").arg(port)});
        curl.waitForFinished(30000);
        return curl.readAllStandardOutput();
    }
};

} // namespace

TEST(ServerPortRule, FirstPortOfTheSetting)
{
    const std::pair<qint64, uint16_t> cases[] = {
        {0, 8080}, {8081, 8081}, {9000, 9000}, {65535, 65535}, {65536 + 80, 80}};
    for (const auto &[setting, port] : cases)
        EXPECT_EQ(firstServerPort(setting), port) << setting;
}

TEST(ServerPortRule, RetriesWhileTheAddressIsInUseBelow9000)
{
    const std::error_code inUse = std::make_error_code(std::errc::address_in_use);
    const std::error_code denied = std::make_error_code(std::errc::permission_denied);
    struct Case
    {
        uint16_t first;
        std::vector<uint16_t> busy;
        std::error_code otherError;
        std::vector<uint16_t> tried;
        bool succeeds;
    };
    const Case cases[] = {
        {8080, {}, {}, {8080}, true},
        {8080, {8080}, {}, {8080, 8081}, true},
        {8080, {8080, 8081, 8082}, {}, {8080, 8081, 8082, 8083}, true},
        // The limit looks at the first port: counting goes on past 9000.
        {8999, {8999, 9000, 9001}, {}, {8999, 9000, 9001, 9002}, true},
        {9000, {9000}, {}, {9000}, false},
        {12345, {12345}, {}, {12345}, false},
        // Only an address in use moves on.
        {8080, {}, denied, {8080}, false},
    };
    for (const Case &c : cases) {
        LogCatcher log;
        std::vector<uint16_t> tried;
        const std::error_code error = startWithPortRetry(c.first, [&](uint16_t port) {
            tried.push_back(port);
            if (c.otherError)
                return c.otherError;
            return std::find(c.busy.begin(), c.busy.end(), port) != c.busy.end()
                       ? inUse
                       : std::error_code();
        });
        EXPECT_EQ(tried, c.tried) << c.first;
        EXPECT_EQ(!error, c.succeeds) << c.first;
        const qsizetype retries = qsizetype(tried.size()) - 1;
        EXPECT_EQ(log.lines().filter("Error starting HTTP Server: ").size(), retries) << c.first;
    }
}

TEST(ServerConnectionDetails, EthernetAndWiFiByName)
{
    const std::pair<const char *, bool> cases[] = {
        {"en0", true},     {"enp3s0", true}, {"eno1", true},    {"eth0", true},
        {"wlan0", true},   {"wlp2s0", true}, {"lo", false},     {"docker0", false},
        {"veth1a", false}, {"tun0", false},  {"virbr0", false}, {"br-4f", false},
    };
    for (const auto &[name, expected] : cases)
        EXPECT_EQ(isEthernetOrWiFiInterface(QString::fromLatin1(name)), expected) << name;
}

TEST(ServerConnectionDetails, TextListsUsableAddressesInOrder)
{
    const QList<NetworkInterface> interfaces = {
        {"lo", "127.0.0.1", true, true, true},        {"eth0", "192.168.1.20", true, true, false},
        {"docker0", "172.17.0.1", true, true, false}, {"wlan0", "10.0.0.5", false, true, false},
        {"enp1s0", "10.1.1.1", false, false, false},  {"en1", "10.2.2.2", true, false, true},
    };
    EXPECT_EQ(connectionDetailsText("studio.local", 8081, interfaces),
              "Use the credentials above to connect to one of the given server addresses.\n\n"
              "http://studio.local:8081\nhttp://192.168.1.20:8081\nhttp://10.0.0.5:8081");
}

TEST(ServerConnectionDetails, HostNameEndsInLocal)
{
    EXPECT_TRUE(localHostName().endsWith(".local"));
    EXPECT_GT(localHostName().size(), 6);
}

TEST_F(ServerControlTest, PasswordIsNineCharactersOfAUniqueString)
{
    const QString first = TLServerPreferences::createNewPassword();
    EXPECT_TRUE(QRegularExpression("^[0-9a-f-]{9}$").match(first).hasMatch()) << first;
    EXPECT_EQ(first[4], '-');
    EXPECT_EQ(settings().string(kPasswordKey), first);
    EXPECT_NE(TLServerPreferences::createNewPassword(), first);
}

TEST_F(ServerControlTest, ABusyPortBelow9000MovesOnAndTheBoundPortIsStored)
{
    const uint16_t port = freePairBelow9000();
    ASSERT_NE(port, 0);
    PortHolder busy(port);
    ASSERT_TRUE(busy.held());
    settings().set(kPortKey, qint64(port));
    settings().set(kPasswordKey, QStringLiteral("pw-1234"));
    LogCatcher log;
    ASSERT_TRUE(launchTavelleServer());
    EXPECT_EQ(tavelleServerPort(), port + 1);
    EXPECT_EQ(settings().integer(kPortKey), port + 1);
    EXPECT_TRUE(log.contains(QStringLiteral("running HTTP Server on port: %1").arg(port + 1)));
    EXPECT_TRUE(log.contains("Error starting HTTP Server: "));
    EXPECT_TRUE(TLServerPreferences::updateConnectionDetails().connectionDetails.isEmpty());
    settings().set(kLaunchKey, "yes");
    EXPECT_TRUE(TLServerPreferences::updateConnectionDetails().connectionDetails.contains(
        QStringLiteral(".local:%1").arg(port + 1)));
    EXPECT_EQ(propfindStatus(tavelleServerPort(), "pw-1234"), "207");
    EXPECT_EQ(propfindStatus(tavelleServerPort(), "wrong"), "401");
}

TEST_F(ServerControlTest, ABusyPortFrom9000OnGivesTheAlertAndChangesNothing)
{
    PortHolder busy(0);
    ASSERT_TRUE(busy.held());
    ASSERT_GE(busy.port(), 9000);
    settings().set(kPortKey, qint64(busy.port()));
    EXPECT_FALSE(launchTavelleServer());
    EXPECT_FALSE(tavelleServerIsRunning());
    EXPECT_EQ(settings().integer(kPortKey), busy.port());
    ASSERT_EQ(alerts->shownAlerts().size(), 1);
    EXPECT_EQ(alerts->shownAlerts()[0].message, "Could not Start Tavelle Server");
    EXPECT_EQ(alerts->shownAlerts()[0].buttons, QStringList{"OK"});
    EXPECT_FALSE(alerts->shownAlerts()[0].informativeText.isEmpty());
}

TEST_F(ServerControlTest, PaneStartsWithANewPasswordAndKeepsIt)
{
    TLServerPreferences pane;
    const ServerPaneState off = TLServerPreferences::updateConnectionDetails();
    EXPECT_EQ(off.buttonTitle, "Start Taveelle Server");
    EXPECT_FALSE(off.buttonOn);
    EXPECT_FALSE(off.showsCredentials);

    settings().set(kPortKey, qint64(freePairBelow9000()));
    const ServerPaneState on = pane.toggleServer(true);
    EXPECT_EQ(on.buttonTitle, "Stop Tavelle Server");
    EXPECT_TRUE(on.buttonOn);
    EXPECT_EQ(on.user, "Tavelle");
    EXPECT_EQ(on.password.size(), 9);
    EXPECT_TRUE(tavelleServerIsRunning());
    EXPECT_EQ(settings().string(kLaunchKey), "yes");

    pane.toggleServer(false);
    EXPECT_FALSE(tavelleServerIsRunning());
    EXPECT_FALSE(settings().contains(kLaunchKey));
    EXPECT_EQ(pane.toggleServer(true).password, on.password);

    const ServerPaneState renewed = pane.refreshPassword();
    EXPECT_NE(renewed.password, on.password);
    EXPECT_TRUE(tavelleServerIsRunning());
    EXPECT_EQ(propfindStatus(tavelleServerPort(), renewed.password), "207");
}

TEST_F(ServerControlTest, AChangeOfRootKeepsTheAddressAndServesTheNewRoot)
{
    installServerControl();
    settings().set(kLaunchKey, "yes");
    settings().set(kPasswordKey, "pw");
    settings().set(kPortKey, qint64(freePairBelow9000()));
    ASSERT_TRUE(launchTavelleServer());
    const uint16_t port = tavelleServerPort();
    RawClient early(port);
    ASSERT_EQ(ask(early), 401);

    const QString other =
        tl::store::resolvingSymlinks(tltest::makeTemporaryFolder("control-other"));
    ASSERT_EQ(propfindStatus(port, "pw"), "207");
    tl::shell::tl_setRootToPath(other);
    ASSERT_TRUE(tl::shell::shellHooks().serverIsRunning());
    EXPECT_EQ(tavelleServerPort(), port);
    EXPECT_EQ(propfindStatus(port, "pw"), "404"); // the new root has no Book
    QDir().mkpath(other + "/Book");
    EXPECT_EQ(propfindStatus(port, "pw"), "207");
    // The connection of the old root was dropped.
    EXPECT_EQ(ask(early), 0);
}

TEST_F(ServerControlTest, SoakOfStartsAndStopsWithClientsLeaksNothing)
{
    settings().set(kPasswordKey, "pw");
    settings().set(kPortKey, qint64(freePairBelow9000()));
    // A first round makes what lives for the whole process (the nonce queue).
    ASSERT_TRUE(launchTavelleServer());
    {
        RawClient warmUp(tavelleServerPort());
        ASSERT_EQ(ask(warmUp), 401);
        terminateTavelleServer();
    }
    const int descriptors = countEntries("/proc/self/fd");
    const int threads = countEntries("/proc/self/task");
    for (int cycle = 0; cycle < 100; ++cycle) {
        ASSERT_TRUE(launchTavelleServer()) << cycle;
        RawClient first(tavelleServerPort());
        RawClient second(tavelleServerPort());
        ASSERT_EQ(ask(first), 401) << cycle;
        ASSERT_EQ(ask(second), 401) << cycle;
        terminateTavelleServer();
        EXPECT_EQ(ask(first), 0) << cycle;
    }
    EXPECT_EQ(countEntries("/proc/self/fd"), descriptors);
    EXPECT_EQ(countEntries("/proc/self/task"), threads);
}
