#include "support/test_environment.h"

#include "platform/settings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>
#include <cstdlib>
#include <string>

namespace tltest {

namespace {
QString &sandbox()
{
    static QString path;
    return path;
}
} // namespace

void isolateEnvironment()
{
    std::string templ = (QDir::tempPath() + "/tavelle-test-XXXXXX").toStdString();
    char *made = mkdtemp(templ.data());
    if (!made)
        std::abort();
    sandbox() = QString::fromLocal8Bit(made);
    const QString base = sandbox();
    const struct
    {
        const char *name;
        const char *sub;
    } folders[] = {{"HOME", "home"},
                   {"XDG_CONFIG_HOME", "home/.config"},
                   {"XDG_DATA_HOME", "home/.local/share"},
                   {"XDG_CACHE_HOME", "home/.cache"},
                   {"TMPDIR", "tmp"}};
    for (const auto &f : folders) {
        const QString dir = base + "/" + f.sub;
        QDir().mkpath(dir);
        setenv(f.name, dir.toLocal8Bit().constData(), 1);
    }
    setenv("LANG", "en_US.UTF-8", 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    setenv("TZ", "UTC", 1);
}

QString sandboxRoot()
{
    return sandbox();
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return f.write(bytes) == bytes.size();
}

QByteArray readFile(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return f.readAll();
}

QString makeTemporaryFolder(const QString &label)
{
    const QString path =
        sandbox() + "/" + label + "-" + QUuid::createUuid().toString(QUuid::WithoutBraces).left(8);
    QDir().mkpath(path);
    return path;
}

void clearSettings()
{
    tl::platform::Settings &settings = tl::platform::settings();
    for (const QString &key : settings.all().keys())
        settings.remove(key);
}

} // namespace tltest
