#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// Material shared with the program from outside waits in a folder of its
// own, laid out like the library, until the program takes it in.
namespace tl::importers {

// $XDG_DATA_HOME/com.tavelle.app/SharedItems.
QString sharedItemsFolder();

// A copy of the file, or the text as a text file, put in the shared items
// for the book (a path relative to the library root; empty for the root)
// under a free name. The path in the shared items, or nothing (logged).
std::optional<QString> shareFile(const QString &path, const QString &relativeBook = {});
std::optional<QString> shareText(const QString &text, const QString &relativeBook = {});

namespace TLStaticFunctions {

// Takes everything waiting in the shared items into the library: texts as
// new documents named by their first lines, pages under their titles, other
// files as they are; a book that is missing sends its material to the root.
// Leftovers of other systems' file managers are deleted. Answers the new
// items.
QStringList importSharedItems();

} // namespace TLStaticFunctions

} // namespace tl::importers
