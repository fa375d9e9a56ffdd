#include "platform/folders.h"
#include "platform_test_support.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace tl::platform {
namespace {

using tltest::EnvironmentOverride;

struct XdgCase
{
    QString (*folder)();
    const char *variable;
    const char *defaultBelowHome;
};

TEST(Folders, FollowTheXdgVariablesAtEachCall)
{
    const XdgCase cases[] = {
        {applicationSupportFolder, "XDG_DATA_HOME", "/.local/share/com.tavelle.app"},
        {cachesFolder, "XDG_CACHE_HOME", "/.cache/com.tavelle.app"},
        {configFolder, "XDG_CONFIG_HOME", "/.config/com.tavelle.app"},
    };
    EnvironmentOverride home("HOME", QByteArray("/home/reader"));
    for (const XdgCase &c : cases) {
        SCOPED_TRACE(c.variable);
        {
            EnvironmentOverride set(c.variable, QByteArray("/data/first/"));
            EXPECT_EQ(c.folder(), "/data/first/com.tavelle.app");
        }
        {
            EnvironmentOverride set(c.variable, QByteArray("/data/second"));
            EXPECT_EQ(c.folder(), "/data/second/com.tavelle.app");
        }
        // Unset, empty and relative values fall back to the home folder.
        for (const std::optional<QByteArray> &value :
             {std::optional<QByteArray>(), std::optional<QByteArray>(""),
              std::optional<QByteArray>("relative/data")}) {
            EnvironmentOverride set(c.variable, value);
            EXPECT_EQ(c.folder(), QString("/home/reader") + c.defaultBelowHome);
        }
    }
}

TEST(Folders, HomeDataAndTemporary)
{
    {
        EnvironmentOverride home("HOME", QByteArray("/home/writer"));
        EnvironmentOverride data("XDG_DATA_HOME", std::nullopt);
        EXPECT_EQ(homeFolder(), "/home/writer");
        EXPECT_EQ(dataHomeFolder(), "/home/writer/.local/share");
    }
    {
        EnvironmentOverride tmp("TMPDIR", QByteArray("/var/tmp/"));
        EXPECT_EQ(temporaryFolder(), "/var/tmp/com.tavelle.app");
    }
    {
        EnvironmentOverride tmp("TMPDIR", std::nullopt);
        EXPECT_EQ(temporaryFolder(), "/tmp/com.tavelle.app");
    }
}

TEST(Folders, AreNeverMade)
{
    const QString base = tltest::freshFolder("folders") + "/nothing";
    EnvironmentOverride home("HOME", QFile::encodeName(base + "/home"));
    EnvironmentOverride data("XDG_DATA_HOME", QFile::encodeName(base + "/data"));
    EnvironmentOverride cache("XDG_CACHE_HOME", QFile::encodeName(base + "/cache"));
    EnvironmentOverride config("XDG_CONFIG_HOME", QFile::encodeName(base + "/config"));
    EnvironmentOverride tmp("TMPDIR", QFile::encodeName(base + "/tmp"));
    for (const QString &folder : {homeFolder(), applicationSupportFolder(), cachesFolder(),
                                  configFolder(), temporaryFolder()})
        EXPECT_TRUE(folder.startsWith(base)) << folder.toStdString();
    EXPECT_FALSE(QFileInfo::exists(base));
}

TEST(Folders, Resources)
{
    {
        EnvironmentOverride resources("TAVELLE_RESOURCES", QByteArray("/opt/tavelle/res/"));
        EXPECT_EQ(resourcesFolder(), "/opt/tavelle/res");
    }
    EnvironmentOverride resources("TAVELLE_RESOURCES", std::nullopt);
    const QString executableFolder = QCoreApplication::applicationDirPath();
    const QString beside = executableFolder + "/resources";
    const QString installed = QDir::cleanPath(executableFolder + "/../share/tavelle");
    EXPECT_EQ(resourcesFolder(), QFileInfo(beside).isDir() ? beside : installed);
}

} // namespace
} // namespace tl::platform
