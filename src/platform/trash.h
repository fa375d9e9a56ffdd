#pragma once

// The freedesktop.org trash. Items on the home trash's device go to
// $XDG_DATA_HOME/Trash; items on other devices go to the trash at the top of
// their own mount ($topdir/.Trash/$uid or $topdir/.Trash-$uid), or, when that
// can't be used, to the home trash by a cross-device move.

#include <QString>
#include <optional>

namespace tl::platform {

// $XDG_DATA_HOME/Trash/files.
QString trashFilesFolder();

// Moves the item into the trash, writing its info file first. Answers the path
// of the item inside the trash. A taken name becomes "NAME.2", "NAME.3", ...
// An item and its properties file are trashed with one call each.
std::optional<QString> trashItem(const QString &path);

// Moves a trashed item back to where its info file says it came from, and
// removes the info file. Fails when something already is at that place.
bool restoreItem(const QString &trashedPath);

} // namespace tl::platform
