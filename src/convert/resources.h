#pragma once

#include <QString>

namespace tl::convert {

// The program's resources folder as a file URL, for pages that load its
// scripts and fonts.
QString resourcesURL();
// The Mermaid diagram library the pages load: a build setting, by default
// the copy among the program's resources.
QString mermaidScriptURL();

} // namespace tl::convert
