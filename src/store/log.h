#pragma once

#include <QString>

namespace tl {

// Plain log lines go out only while root/TLMacLog.txt exists; the check is
// made at every call so the user can switch logging on and off by creating
// or deleting that file. Standard error is redirected into it at start.
bool plainLogEnabled();
void logLine(const QString &line);

// Sends standard error into root/TLMacLog.txt (append) when it exists and
// the process allows it. Answers whether it did.
bool redirectStandardErrorToLibraryLog();
// The command keeps standard error for its own one-line errors.
void setStandardErrorRedirectAllowed(bool allowed);

// Leveled diagnostics with file rotation, in the caches folder.
void setUpDiagnostics();

} // namespace tl
