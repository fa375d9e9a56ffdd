#include "store/log.h"

#include "platform/folders.h"
#include "store/keys.h"
#include "store/library_root.h"

#include <QDir>
#include <QFile>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <spdlog/sinks/ostream_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/spdlog.h>

namespace tl {

namespace {
QString libraryLogPath()
{
    const QString root = store::libraryRoot();
    return root.isEmpty() ? QString() : root + u'/' + QLatin1String(names::MacLog);
}

spdlog::logger &plainLogger()
{
    // Plain lines carry a timestamp only; they go to standard error, which
    // start-up points at the library's log file.
    static std::shared_ptr<spdlog::logger> logger = [] {
        auto sink = std::make_shared<spdlog::sinks::ostream_sink_mt>(std::cerr, true);
        auto l = std::make_shared<spdlog::logger>("plain", sink);
        l->set_pattern("%Y-%m-%d %H:%M:%S.%e %v");
        return l;
    }();
    return *logger;
}
} // namespace

bool plainLogEnabled()
{
    const QString path = libraryLogPath();
    return !path.isEmpty() && QFile::exists(path);
}

void logLine(const QString &line)
{
    if (plainLogEnabled())
        plainLogger().info(line.toStdString());
    spdlog::debug(line.toStdString());
}

bool redirectStandardErrorToLibraryLog()
{
    if (!plainLogEnabled())
        return false;
    std::fflush(stderr);
    return std::freopen(QFile::encodeName(libraryLogPath()).constData(), "a", stderr) != nullptr;
}

void setUpDiagnostics()
{
    static std::once_flag once;
    std::call_once(once, [] {
        const QString folder = platform::cachesFolder() + QStringLiteral("/Logs");
        QDir().mkpath(folder);
        try {
            auto logger = spdlog::rotating_logger_mt(
                "tavelle", (folder + QStringLiteral("/tavelle.log")).toStdString(), 1024 * 1024, 3);
            logger->set_level(spdlog::level::debug);
            spdlog::set_default_logger(logger);
        } catch (const spdlog::spdlog_ex &) {
            // Diagnostics are optional: without a writable caches folder they
            // stay on the default logger.
        }
    });
}

} // namespace tl
