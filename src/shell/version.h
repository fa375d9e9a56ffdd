#pragma once

namespace tl::shell {

// The short version shown to users and the build number stored as the
// installed version; the build number lies above every upgrade bound.
inline constexpr char kShortVersion[] = TAVELLE_SHORT_VERSION;
inline constexpr int kBuildNumber = TAVELLE_BUILD_NUMBER;

} // namespace tl::shell
