// Serves a folder over HTTP with the engine and no authentication, for the
// comparison with nginx in http_vs_nginx.sh. Loopback only.
//
//   tavelle_http_serve ROOT [PORT]
//
// Prints "port N" once listening, then serves until SIGINT or SIGTERM.
#include "server/core/http_connection.h"
#include "server/core/http_server.h"

#include <QString>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

class OpenConnection : public server::HTTPConnection
{
public:
    using HTTPConnection::HTTPConnection;
    bool isPasswordProtected(const QString &) override { return false; }
};

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s ROOT [PORT]\n", argv[0]);
        return 2;
    }
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr); // the server's threads inherit the mask

    server::HTTPServer httpServer;
    httpServer.setConnectionClass<OpenConnection>();
    httpServer.setInterface(QStringLiteral("127.0.0.1"));
    httpServer.setPort(uint16_t(argc > 2 ? std::atoi(argv[2]) : 0));
    httpServer.setDocumentRoot(QString::fromLocal8Bit(argv[1]));
    std::error_code error;
    if (!httpServer.start(&error))
        return 1;
    std::printf("port %u\n", unsigned(httpServer.listeningPort()));
    std::fflush(stdout);

    int signal = 0;
    sigwait(&stopSignals, &signal);
    httpServer.stop();
    return 0;
}
