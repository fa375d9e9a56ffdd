#include "server/core/server_log.h"

#include <spdlog/spdlog.h>

#include <cstdio>
#include <mutex>

namespace server {

namespace {
std::mutex &handlerMutex()
{
    static std::mutex m;
    return m;
}
LogHandler &handler()
{
    static LogHandler h;
    return h;
}
} // namespace

void logLine(const QString &line)
{
    LogHandler h;
    {
        std::lock_guard lock(handlerMutex());
        h = handler();
    }
    if (h)
        h(line);
    else
        spdlog::info("{}", line.toStdString());
}

void setLogHandler(LogHandler h)
{
    std::lock_guard lock(handlerMutex());
    handler() = std::move(h);
}

QString pointerString(const void *pointer)
{
    char text[32];
    std::snprintf(text, sizeof text, "%p", pointer);
    return QString::fromLatin1(text);
}

} // namespace server
