#pragma once

// The per-user folders. Each call reads the environment afresh, and none
// makes the folder it names.

#include <QString>

namespace tl::platform {

inline constexpr char kBundleIdentifier[] = "com.tavelle.app";

// $HOME.
QString homeFolder();
// $XDG_DATA_HOME, or ~/.local/share when unset or not absolute.
QString dataHomeFolder();
// $XDG_DATA_HOME/com.tavelle.app.
QString applicationSupportFolder();
// $XDG_CACHE_HOME/com.tavelle.app (default ~/.cache).
QString cachesFolder();
// $XDG_CONFIG_HOME/com.tavelle.app (default ~/.config).
QString configFolder();
// $TMPDIR/com.tavelle.app (default /tmp).
QString temporaryFolder();
// The shipped resources: $TAVELLE_RESOURCES when set; else "resources" beside
// the executable when it exists (the build tree); else ../share/tavelle from
// the executable's folder (the installed layout).
QString resourcesFolder();

} // namespace tl::platform
