#pragma once

#include <QString>

// What every converted body goes through, whichever library made it.
namespace tl::convert {

// An ordered list inside a list item becomes the item's sibling.
QString withOrderedSubListsClosed(const QString &html);
// Earlier elements that share an id with a later one get "-1", "-2", ...
QString withUniqueIds(const QString &html);
// Headings on one line become links to themselves.
QString withLinksOnHeadings(const QString &html);
// The list of documents that link here, behind the body.
QString withBacklinks(const QString &html, const QString &path);
// Links into the library, absolute or by the tavelle scheme, become
// relative to `folder`; actions of the scheme stay.
QString tl_makeTLLinksRelativeTo(const QString &html, const QString &folder);

} // namespace tl::convert
