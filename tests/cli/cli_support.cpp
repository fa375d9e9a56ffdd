#include "cli_support.h"

#include "support/test_environment.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace tltest {

bool tavelleAvailable()
{
    return !qEnvironmentVariableIsEmpty("TAVELLE_CLI");
}

QProcessEnvironment tavelleEnvironment(const QString &home)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("HOME", home);
    env.insert("XDG_CONFIG_HOME", home + "/.config");
    env.insert("XDG_DATA_HOME", home + "/.local/share");
    env.insert("XDG_CACHE_HOME", home + "/.cache");
    env.insert("TMPDIR", home + "/tmp");
    QDir().mkpath(home + "/tmp");
    return env;
}

CommandResult runTavelle(const QString &home, const QStringList &arguments, const QByteArray &input)
{
    CommandResult result;
    if (!tavelleAvailable())
        return result;
    QProcess process;
    process.setProcessEnvironment(tavelleEnvironment(home));
    process.setWorkingDirectory(home);
    process.start(qEnvironmentVariable("TAVELLE_CLI"), arguments);
    if (!input.isEmpty())
        process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(60000);
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

void CommandTest::SetUp()
{
    if (!tavelleAvailable())
        GTEST_SKIP() << "TAVELLE_CLI is not set";
    home = QFileInfo(makeTemporaryFolder("command")).canonicalFilePath();
    library = home + "/Library";
}

} // namespace tltest
