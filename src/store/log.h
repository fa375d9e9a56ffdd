#pragma once

#include <QString>

namespace tl {

// Plain log lines go out only while root/TLMacLog.txt exists; the check is
// made at every call so the user can switch logging on and off by creating
// or deleting that file. Standard error is redirected into it at start.
bool plainLogEnabled();
void logLine(const QString &line);

// Sends standard error into root/TLMacLog.txt (append) when it exists.
// Answers whether it did.
bool redirectStandardErrorToLibraryLog();

// Leveled diagnostics with file rotation, in the caches folder.
void setUpDiagnostics();

} // namespace tl
