#pragma once

#include <QString>

// Saved web pages: shown from the temporary folder, or kept as a formatted
// document of their book with the pictures in its attachment folder.
namespace tl::importers {

// "webarchiveExtract" in the program's temporary folder: where the pages
// shown take their pictures and style sheets from.
QString webarchiveExtractFolder();

// The page of the archive at path, its images and style sheets written to
// the extract folder and linked by file URL; empty when the archive does not
// read or its page is not UTF-8 text. Touches nothing in the library.
QString tl_webarchiveToHTML(const QString &path);

// The archive as a new HTML document beside it (a free name), its images
// and style sheets in the book's "TLImages" under free names and linked
// relatively; the new path, or empty when nothing was written. The archive
// stays.
QString tl_saveWebarchiveAsHTML(const QString &path);

} // namespace tl::importers
