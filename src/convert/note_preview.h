#pragma once

#include <QString>

// The short plain text the document list shows under a title.
namespace tl::convert {

// The item's description, else the beginning of its text (of the file, its
// side-car text or its recognised text, an HTML, PDF or OPML document's
// text), at most 449 characters before a Markdown text is converted and
// back, without a first line that repeats the title. Empty when there is
// nothing to show or the file can't be read. `title` is the item's name.
QString tl_previewOfNoteWithTitle(const QString &path, const QString &title);

} // namespace tl::convert
