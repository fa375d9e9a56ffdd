#pragma once

#include <QString>

namespace tl::convert {

// The default converter (Discount) on a prepared Markdown text: the HTML
// body, with the "%" title block above it when `titleBlock` is set and the
// contents list above it when `contents` is set and the text has no
// contents marker of its own. One rule for failures: empty when a work file
// can't be written or read, the Markdown itself when the library makes
// nothing of it.
QString tl_markdownWithPandoc(const QString &markdown, bool titleBlock, bool contents);

// The id the library gives a heading when ids must look like
// MultiMarkdown's: the text of a closing "[anchor]" percent-encoded, or
// the heading's letters, digits and ".:-_" in lower case.
QString multiMarkdownCompatibleAnchor(const QString &heading);

// "Title [x]" shows as "Title " where the bracket made the id x: in the
// headings of a body and in the entries of a contents list.
QString withHeadingAnchorBracketsRemoved(const QString &html);
QString contentsListWithAnchorBracketsRemoved(const QString &list);

} // namespace tl::convert
