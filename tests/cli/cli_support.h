#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

namespace tltest {

struct CommandResult
{
    int exitCode = -1;
    QString out;
    QString err;
};

// The environment of a first start: HOME, the XDG folders and the temporary
// folder all below `home`.
QProcessEnvironment tavelleEnvironment(const QString &home);

// Runs the built tavelle with its own HOME and XDG folders below `home`,
// so each test sees a first start. Empty result when the binary is unknown.
CommandResult runTavelle(const QString &home, const QStringList &arguments,
                         const QByteArray &input = {});

// Whether the tavelle binary is known to this test run.
bool tavelleAvailable();

// A first start of the command with a home folder of its own and a library
// path below it, made by the test as it needs; skipped when the command is
// unknown, so a fixture's own SetUp returns when IsSkipped().
class CommandTest : public ::testing::Test
{
protected:
    void SetUp() override;
    // The command on this test's library.
    CommandResult run(const QStringList &arguments, const QByteArray &input = {}) const
    {
        return runTavelle(home, QStringList{"--library", library} + arguments, input);
    }

    QString home;
    QString library;
};

} // namespace tltest
