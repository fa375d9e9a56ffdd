#pragma once

#include <QString>
#include <QStringList>

// Who links to an item, kept in the item's properties file: "Backlinks", the
// normalized paths of the documents that link to it, and "ReferencedPath",
// where the item was when that list was last valid.
namespace tl::links {

// The referenced item learns that `referencingDocument` links to it.
void tl_addBacklink(const QString &item, const QString &referencingDocument);
// Removes both keys; answers whether anything was removed.
bool tl_removeBacklinks(const QString &item);
// A referencing document moved from `from` to `to` (empty: it links here no
// more). Entries whose documents are gone are purged here.
void tl_changeBacklinkFrom(const QString &item, const QString &from, const QString &to);

// Reading and writing the two keys of an item.
QStringList backlinksOf(const QString &item);
QString referencedPathOf(const QString &item);
void setReferencedPath(const QString &item, const QString &normalizedPath);
// Stores the list (without duplicates) and the item's current path as where
// it holds.
void setBacklinks(const QString &item, const QStringList &backlinks);
// The stored path is set and differs from the item's normalized path.
bool hasMismatch(const QString &item);

// An item path given root-relative or absolute, as absolute.
QString absoluteItemPath(const QString &path);
// Equality of item paths as the library compares names.
bool samePath(const QString &a, const QString &b);

} // namespace tl::links
