// serve: the library over WebDAV until interrupted.
#include "cli.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "server/control/connection_details.h"
#include "server/control/server_control.h"
#include "server/control/server_preferences.h"
#include "server/control/server_settings.h"
#include "shell/shell_keys.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace tl::cli {

namespace {

// SIGINT and SIGTERM may reach any thread; the handler only tells the pipe,
// and the main thread stops the server.
int stopPipe[2] = {-1, -1};

void tellStop(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t ignored = ::write(stopPipe[1], &byte, 1);
}

bool watchStopSignals()
{
    if (::pipe2(stopPipe, O_CLOEXEC) != 0)
        return false;
    struct sigaction action = {};
    action.sa_handler = tellStop;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    return ::sigaction(SIGINT, &action, nullptr) == 0 &&
           ::sigaction(SIGTERM, &action, nullptr) == 0;
}

void waitForStopSignal()
{
    char byte = 0;
    while (::read(stopPipe[0], &byte, 1) < 0 && errno == EINTR) {
    }
}

void describeServe(QCommandLineParser &p)
{
    p.addOption({QStringLiteral("port"), QStringLiteral("The port to try first (stored)."),
                 QStringLiteral("N")});
    p.addOption({QStringLiteral("password"),
                 QStringLiteral("The password of user Tavelle (stored)."), QStringLiteral("TEXT")});
    p.addOption({QStringLiteral("interface"),
                 QStringLiteral(
                     "Listen on this address or interface only, such as 127.0.0.1 (default: all)."),
                 QStringLiteral("ADDR")});
}

// Turns the server on in the settings, as the server pane does.
std::optional<QString> applySettings(const QCommandLineParser &p)
{
    platform::Settings &settings = platform::settings();
    if (p.isSet(QStringLiteral("port"))) {
        bool ok = false;
        const uint port = p.value(QStringLiteral("port")).toUInt(&ok);
        if (!ok || port > 65535)
            return QStringLiteral("--port needs a number from 0 to 65535");
        settings.set(QLatin1String(server::kLocalWebDAVServerPortKey), qint64(port));
    }
    if (p.isSet(QStringLiteral("password"))) {
        if (p.value(QStringLiteral("password")).isEmpty())
            return QStringLiteral("--password needs a text");
        settings.set(QLatin1String(server::kLocalWebDAVServerStringKey),
                     p.value(QStringLiteral("password")));
    }
    settings.set(QLatin1String(keys::setting::LaunchLocalWebDAVServer), QStringLiteral("yes"));
    if (settings.string(QLatin1String(server::kLocalWebDAVServerStringKey)).isEmpty())
        server::TLServerPreferences::createNewPassword();
    return std::nullopt;
}

int runServe(const QCommandLineParser &p, const Invocation &in)
{
    if (!in.arguments.isEmpty())
        return fail(QStringLiteral("usage: tavelle serve [--port N] [--password TEXT]"), Usage);
    if (const auto error = applySettings(p))
        return fail(*error, Usage);

    if (!watchStopSignals())
        return fail(QStringLiteral("Cannot watch for SIGINT and SIGTERM"));
    platform::setAlertPresenter(std::make_shared<StandardErrorAlerts>());
    server::setServerControlOptions({p.value(QStringLiteral("interface")), {}});
    if (!server::launchTavelleServer())
        return Failure;

    const server::ServerPaneState pane = server::TLServerPreferences::updateConnectionDetails();
    if (in.json) {
        printValue(QVariantMap{{"addresses", server::tavelleServerAddresses()},
                               {"port", int(server::tavelleServerPort())},
                               {"user", pane.user},
                               {"password", pane.password}},
                   true);
    } else {
        // Narrowed to an interface, the server is reached at its addresses only.
        printLine(!p.value(QStringLiteral("interface")).isEmpty()
                      ? server::listeningDetailsText(server::tavelleServerAddresses(),
                                                     server::tavelleServerPort())
                      : pane.connectionDetails);
        printLine(QString());
        printLine(QStringLiteral("%1: %2").arg(QLatin1String(server::kUserTitle), pane.user));
        printLine(
            QStringLiteral("%1: %2").arg(QLatin1String(server::kPasswordTitle), pane.password));
    }
    std::fflush(stdout);

    waitForStopSignal();
    server::terminateTavelleServer();
    return Success;
}

} // namespace

const std::vector<Command> &serveCommands()
{
    static const std::vector<Command> commands{
        {"serve", "Serve the library over WebDAV until interrupted.", true, describeServe,
         runServe},
    };
    return commands;
}

} // namespace tl::cli
