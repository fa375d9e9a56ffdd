#pragma once

#include <QString>

// Names for new items: titles made safe as file names, and free names.
namespace tl::store {

// "/", "\", ":", "?", "*", "<", ">", """, "|" and "&" become "-", runs of
// "-" one, and "-_+#& " is trimmed from both ends unless nothing would be
// left.
QString tl_escapeIllegalCharacters(const QString &title);

// Trims "-_+#& " from both ends; a text of only those stays as it is.
QString trimmedOfTitlePunctuation(const QString &text);

// The full path of a free name in the folder for the file name: its stem
// made safe, then " 1", " 2", ... behind the stem until nothing is there.
QString tl_uniqueNameForFileatPath(const QString &fileName, const QString &folder);

} // namespace tl::store
