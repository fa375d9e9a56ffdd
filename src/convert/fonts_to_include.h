#pragma once

#include <QStringList>

namespace tl::convert {

// For a face the program carries: first the @font-face rules, then the font
// files they name. Empty for any other face. An e-book finds the files in
// "../fonts", anything else among the program's resources.
QStringList tl_fontsToIncludeForFace_forePub(const QString &face, bool forEPub);

} // namespace tl::convert
