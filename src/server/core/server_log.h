#pragma once

#include <QString>

#include <functional>

namespace server {

// Writes one plain log line of the server. Every line the engine logs goes
// through here, so the whole subsystem can be routed to another logger at once.
void logLine(const QString &line);

// Replaces where the lines go; an empty handler restores the default (spdlog).
using LogHandler = std::function<void(const QString &)>;
void setLogHandler(LogHandler handler);

// "0x..." for a pointer, the form the log lines use after a class name.
QString pointerString(const void *pointer);

} // namespace server
