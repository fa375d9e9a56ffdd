#pragma once

#include <QString>

namespace tl::store {

// The library root: the TavelleFolder setting with symbolic links resolved,
// read afresh at every call so a change of root takes effect at once.
// Empty when no root was chosen.
QString libraryRoot();

// Makes this process work on another library than the stored one (the
// command's --library); an empty path goes back to the setting.
void setLibraryRootOverride(const QString &path);

// A path with symbolic links resolved and no trailing slash; a path that does
// not exist is only cleaned.
QString resolvingSymlinks(const QString &path);

} // namespace tl::store
