#pragma once

#include "server/core/http_server.h"

#include <QString>
#include <cstdint>
#include <functional>
#include <system_error>

// The built-in server of the application: started with it when switched on,
// on the port and with the password of the settings, serving the library root.
// Everything here runs on the main thread.
namespace server {

// Starts the server for the library root. A port in use is followed by the
// next while the first port is below 9000. On failure shows the alert "Could
// not Start Tavelle Server" and answers false; no setting changes. On
// success stores the port actually bound, and only then hands the server its
// user name and password.
bool launchTavelleServer();
// Stops the server and ends all its connections.
void terminateTavelleServer();
bool tavelleServerIsRunning();
// The bound port while running, else 0.
uint16_t tavelleServerPort();
// The addresses listened on while running, else none.
QStringList tavelleServerAddresses();

// Puts launch, terminate and the running test into the shell's hooks, so
// the start of the application and a change of root start and stop it.
void installServerControl();

// What the next launches use besides the settings. By default the server
// listens on all interfaces and publishes itself through Avahi; the command
// and the tests narrow it to loopback and publish nothing.
struct ServerControlOptions
{
    QString interface;
    HTTPServer::PublisherFactory publisherFactory;
};
void setServerControlOptions(ServerControlOptions options);

// The first port for the port setting: 8080 for 0, else the setting cut to
// 16 bits.
uint16_t firstServerPort(qint64 setting);
// Runs tryStart on the first port and, while it fails with an address in
// use and the first port is below 9000, on the next. Answers the last error,
// or none once a start succeeded.
std::error_code startWithPortRetry(uint16_t firstPort,
                                   const std::function<std::error_code(uint16_t)> &tryStart);

} // namespace server
