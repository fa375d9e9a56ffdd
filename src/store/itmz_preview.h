#pragma once

#include <QString>
#include <optional>

namespace tl::store {

// An ITMZ file is a zip archive with its picture in the entry "preview.png";
// that entry unpacked into the temporary folder. Nothing when there is none.
std::optional<QString> tl_pathToPreviewOfITMZ(const QString &path);

} // namespace tl::store
