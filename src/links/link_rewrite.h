#pragma once

#include <QString>

// Rewriting the references of one document after an item moved.
namespace tl::links {

// The document's references to the item that moved from `from` to `to` (item
// paths, absolute or root-relative) are edited inside their own ranges; the
// document is written back, whole and atomically, only when its bytes
// changed. Answers whether it changed.
bool tl_renameLinksInDocumentFrom(const QString &document, const QString &from, const QString &to);

// The document's text with those edits, for a text held in memory.
QString textWithLinksRenamed(const QString &text, const QString &document, const QString &from,
                             const QString &to);

} // namespace tl::links
