#pragma once

#include <QString>

// Flags of a file beyond its permission bits.
namespace tl::platform {

// The file system's immutable flag (set with chattr +i): nobody may change
// the file, root included. False where the file system has no such flag.
bool hasImmutableFlag(const QString &path);

} // namespace tl::platform
