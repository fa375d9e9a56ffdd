#pragma once

#include <QString>

namespace tltest {

// Points HOME, XDG_CONFIG_HOME, XDG_DATA_HOME, XDG_CACHE_HOME and TMPDIR into a
// fresh temporary directory and pins the locale to en_US. Call before anything
// reads the environment.
void isolateEnvironment();

// The temporary directory that isolateEnvironment() made.
QString sandboxRoot();

// Writes bytes to a file, creating parent folders. Returns false on failure.
bool writeFile(const QString &path, const QByteArray &bytes);
QByteArray readFile(const QString &path);

// A new empty folder below the sandbox, named after the label.
QString makeTemporaryFolder(const QString &label);

// Removes every key of the process's settings store, so tests that set
// settings leave nothing behind.
void clearSettings();

} // namespace tltest
