#pragma once

#include <QString>
#include <optional>

// Foreign files brought into a book as documents.
namespace tl::importers {

// Whether the file is of a kind that comes in as it is: a mail message
// ("eml") or an outline ("opml"), which the program shows rendered.
bool isImportedWhole(const QString &path);

// The file copied into the book under a free name; the new document's path,
// or nothing (logged) for another kind or a failed copy. Nothing is written
// outside the book.
std::optional<QString> tl_importFileIntoBook(const QString &path, const QString &book);

} // namespace tl::importers
