#include "server/control/server_control.h"

#include "platform/alerts.h"
#include "platform/settings.h"
#include "server/control/server_settings.h"
#include "server/webdav/dav_connection.h"
#include "server/webdav/request_body.h"
#include "shell/shell_hooks.h"
#include "store/library_root.h"
#include "store/log.h"

#include <memory>

namespace server {

namespace {

struct ControlState
{
    std::unique_ptr<HTTPServer> httpServer;
    ServerControlOptions options;
};

ControlState &state()
{
    static ControlState s;
    return s;
}

} // namespace

uint16_t firstServerPort(qint64 setting)
{
    return setting == 0 ? uint16_t(kDefaultServerPort) : uint16_t(setting);
}

std::error_code startWithPortRetry(uint16_t firstPort,
                                   const std::function<std::error_code(uint16_t)> &tryStart)
{
    uint16_t port = firstPort;
    // Port 0 binds any free port, so counting on wraps round to a success;
    // the bound only guards a tryStart that never succeeds.
    for (unsigned attempt = 0;; ++attempt) {
        const std::error_code error = tryStart(port);
        if (!error || !HTTPServer::isAddressInUse(error) || firstPort >= kPortRetryLimit ||
            attempt > 65536)
            return error;
        tl::logLine(QStringLiteral("Error starting HTTP Server: %1")
                        .arg(QString::fromStdString(error.message())));
        port = uint16_t(port + 1);
    }
}

bool launchTavelleServer()
{
    terminateTavelleServer();
    tl::platform::Settings &settings = tl::platform::settings();
    const qint64 portSetting = settings.integer(QLatin1String(kLocalWebDAVServerPortKey));

    auto server = std::make_unique<HTTPServer>();
    server->setConnectionClass<DAVConnection>();
    server->setType(QLatin1String(kServerServiceType));
    server->setDocumentRoot(tl::store::libraryRoot());
    server->setName(QLatin1String(kServerUserName));
    server->setInterface(state().options.interface);
    if (state().options.publisherFactory)
        server->setPublisherFactory(state().options.publisherFactory);
    removeStaleUploads();

    const std::error_code error =
        startWithPortRetry(firstServerPort(portSetting), [&](uint16_t port) {
            server->setPort(port);
            std::error_code startError;
            server->start(&startError);
            return startError;
        });
    if (!server->isRunning()) {
        tl::platform::alerts().run({QLatin1String(kStartFailedAlert),
                                    QString::fromStdString(error.message()),
                                    {QStringLiteral("OK")}});
        return false;
    }
    const uint16_t port = server->listeningPort();
    tl::logLine(QStringLiteral("running HTTP Server on port: %1").arg(port));
    settings.set(QLatin1String(kLocalWebDAVServerPortKey), qint64(port));
    // Until now a client gets no credentials to pass, and every request of its
    // connection is refused.
    server->setUsername(QLatin1String(kServerUserName));
    server->setPassword(settings.string(QLatin1String(kLocalWebDAVServerStringKey)));
    state().httpServer = std::move(server);
    return true;
}

void terminateTavelleServer()
{
    if (!state().httpServer)
        return;
    state().httpServer->stop();
    state().httpServer.reset();
}

bool tavelleServerIsRunning()
{
    return state().httpServer && state().httpServer->isRunning();
}

uint16_t tavelleServerPort()
{
    return state().httpServer ? state().httpServer->listeningPort() : 0;
}

QStringList tavelleServerAddresses()
{
    return state().httpServer ? state().httpServer->listeningAddresses() : QStringList();
}

void installServerControl()
{
    tl::shell::ShellHooks &hooks = tl::shell::shellHooks();
    hooks.launchServer = [] { launchTavelleServer(); };
    hooks.terminateServer = [] { terminateTavelleServer(); };
    hooks.serverIsRunning = [] { return tavelleServerIsRunning(); };
}

void setServerControlOptions(ServerControlOptions options)
{
    state().options = std::move(options);
}

} // namespace server
