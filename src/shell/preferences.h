#pragma once

namespace tl::shell {

// First-start values and every upgrade step whose bound lies above the
// installed version; then the library's own settings and the version.
void tl_initPreferences();

} // namespace tl::shell
