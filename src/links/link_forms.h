#pragma once

#include <QString>

// The program's own links to an item, as "Copy Link" puts them on the
// clipboard (the clipboard itself is the window's).
namespace tl::links {

// "tavelle://show/Book/Doc.md", with "#anchor" when one is given.
QString tl_copyURLToPastboardText(const QString &path, const QString &anchor = {});
// "[Doc](tavelle:///Book/Doc.md)": the name without extension as the label.
QString tl_copyMarkdownLinkText(const QString &path);

} // namespace tl::links
