#pragma once

#include <QString>
#include <QStringList>

namespace tltest {

struct CommandResult
{
    int exitCode = -1;
    QString out;
    QString err;
};

// Runs the built tavelle with its own HOME and XDG folders below `home`,
// so each test sees a first start. Empty result when the binary is unknown.
CommandResult runTavelle(const QString &home, const QStringList &arguments,
                         const QByteArray &input = {});

// Whether the tavelle binary is known to this test run.
bool tavelleAvailable();

} // namespace tltest
