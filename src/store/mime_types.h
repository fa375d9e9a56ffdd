#pragma once

#include <QString>

// The tables between file extensions and MIME types; the first row that
// matches wins.
namespace tl::store {

// Compared lower-cased; "text/html" for anything not in the table.
QString tl_mimeTypeForExtension(const QString &extension);
// "txt" for anything not in the table.
QString tl_extensionForMimeType(const QString &mimeType);

} // namespace tl::store
