#pragma once

#include <QString>

// The window's link commands: the clipboard forms of an item's link, the
// check of a book's backlinks, and following a link whose target is missing.
namespace tl::app {

void copyLinkToClipboard(const QString &path);
void copyMarkdownLinkToClipboard(const QString &path);
// Finds broken backlinks in the book, offers to repair them, and tells the
// result.
void checkLinks(const QString &book);
// The path a library link leads to: the item itself, or one found by its
// title; empty when nothing was found (the user may have been offered to
// create it, which shows it by itself).
QString followLibraryLink(const QString &path, const QString &fromDocument);

} // namespace tl::app
