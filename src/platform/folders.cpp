#include "platform/folders.h"

#include <QDir>
#include <QFileInfo>

namespace tl::platform {

namespace {

// An XDG base folder: the variable when it holds an absolute path, as the
// base directory rules require, else the default below the home folder.
QString xdgBase(const char *variable, const char *defaultBelowHome)
{
    const QString value = qEnvironmentVariable(variable);
    if (value.isEmpty() || QDir::isRelativePath(value))
        return homeFolder() + "/" + defaultBelowHome;
    return QDir::cleanPath(value);
}

QString belowBundle(const QString &base)
{
    return base + "/" + kBundleIdentifier;
}

} // namespace

QString homeFolder()
{
    const QString home = qEnvironmentVariable("HOME");
    return QDir::cleanPath(home.isEmpty() ? QDir::homePath() : home);
}

QString dataHomeFolder()
{
    return xdgBase("XDG_DATA_HOME", ".local/share");
}

QString applicationSupportFolder()
{
    return belowBundle(dataHomeFolder());
}

QString cachesFolder()
{
    return belowBundle(xdgBase("XDG_CACHE_HOME", ".cache"));
}

QString configFolder()
{
    return belowBundle(xdgBase("XDG_CONFIG_HOME", ".config"));
}

QString temporaryFolder()
{
    const QString value = qEnvironmentVariable("TMPDIR");
    return belowBundle(value.isEmpty() ? QStringLiteral("/tmp") : QDir::cleanPath(value));
}

QString resourcesFolder()
{
    const QString override = qEnvironmentVariable("TAVELLE_RESOURCES");
    if (!override.isEmpty())
        return QDir::cleanPath(override);
    // /proc/self/exe works before (and without) a QCoreApplication.
    const QString executable = QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget();
    const QString folder = QFileInfo(executable).absolutePath();
    const QString beside = folder + "/resources";
    if (QFileInfo(beside).isDir())
        return beside;
    return QDir::cleanPath(folder + "/../share/tavelle");
}

} // namespace tl::platform
