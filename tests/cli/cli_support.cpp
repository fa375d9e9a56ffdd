#include "cli_support.h"

#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>

namespace tltest {

bool tavelleAvailable()
{
    return !qEnvironmentVariableIsEmpty("TAVELLE_CLI");
}

CommandResult runTavelle(const QString &home, const QStringList &arguments, const QByteArray &input)
{
    CommandResult result;
    if (!tavelleAvailable())
        return result;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("HOME", home);
    env.insert("XDG_CONFIG_HOME", home + "/.config");
    env.insert("XDG_DATA_HOME", home + "/.local/share");
    env.insert("XDG_CACHE_HOME", home + "/.cache");
    env.insert("TMPDIR", home + "/tmp");
    QDir().mkpath(home + "/tmp");
    QProcess process;
    process.setProcessEnvironment(env);
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

} // namespace tltest
