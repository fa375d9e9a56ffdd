#include "store/log.h"

#include "platform/folders.h"
#include "store/keys.h"
#include "store/library_root.h"

#include <QDir>
#include <QFile>
#include <atomic>
#include <cstdio>
#include <mutex>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/spdlog.h>
#include <sys/stat.h>

namespace tl {

namespace {
QString libraryLogPath()
{
    const QString root = store::libraryRoot();
    return root.isEmpty() ? QString() : root + u'/' + QLatin1String(names::MacLog);
}

std::atomic<bool> &standardErrorRedirectAllowed()
{
    static std::atomic<bool> allowed{true};
    return allowed;
}

// The plain lines go straight into the library's log file, opened anew when
// the file is replaced, so the user can switch logging on and off at will.
class PlainLog
{
public:
    void write(const QString &path, const QString &line)
    {
        std::lock_guard lock(m_mutex);
        struct stat st
        {
        };
        if (::stat(QFile::encodeName(path).constData(), &st) != 0)
            return;
        if (!m_logger || path != m_path || st.st_ino != m_inode) {
            try {
                auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(path.toStdString());
                m_logger = std::make_shared<spdlog::logger>("plain", sink);
                m_logger->set_pattern("%Y-%m-%d %H:%M:%S.%e %v");
                m_logger->flush_on(spdlog::level::info);
            } catch (const spdlog::spdlog_ex &) {
                m_logger.reset();
                return;
            }
            m_path = path;
            m_inode = st.st_ino;
        }
        m_logger->info(line.toStdString());
    }

private:
    std::mutex m_mutex;
    std::shared_ptr<spdlog::logger> m_logger;
    QString m_path;
    ino_t m_inode = 0;
};
} // namespace

bool plainLogEnabled()
{
    const QString path = libraryLogPath();
    return !path.isEmpty() && QFile::exists(path);
}

void logLine(const QString &line)
{
    static PlainLog plain;
    const QString path = libraryLogPath();
    if (!path.isEmpty())
        plain.write(path, line);
    spdlog::debug(line.toStdString());
}

void setStandardErrorRedirectAllowed(bool allowed)
{
    standardErrorRedirectAllowed() = allowed;
}

bool redirectStandardErrorToLibraryLog()
{
    if (!standardErrorRedirectAllowed() || !plainLogEnabled())
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
