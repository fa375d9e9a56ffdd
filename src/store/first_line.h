#pragma once

#include <QString>

// A document's title follows from the first line of its text.
namespace tl::store {

// The first line without a front-matter or "%" lead-in and "Title:", cut at
// a word end after 119 characters, "/" made "-", and trimmed of "-_+#& ".
QString tl_firstLineOfText(const QString &text);

// Whether the stem is the text's first line, as it stands or made safe as a
// file name.
bool tl_stringMatchesFirstLineOfText(const QString &stem, const QString &text);

} // namespace tl::store
