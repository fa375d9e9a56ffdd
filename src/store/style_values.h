#pragma once

#include <QString>

// The effective style values of a document, inherited from its books.
namespace tl::store {

// The inherited noteFontSize when not 0, else the setting when not 0, else 14.
int tl_fontSizeAtPath(const QString &path);

} // namespace tl::store
