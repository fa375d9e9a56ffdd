#pragma once

#include <QString>

// The contents list of a converted document, put where the text asks for it.
namespace tl::convert {

// "<!-- TOC -->" and the list in its div.
QString contentsBlock(const QString &list);

// Puts the block of `list` at "<TOC>" and "{{TOC}}" paragraphs, and the
// levels a "{{TOC:a-b}}" paragraph names at that one. The html is unchanged
// when the list is empty.
QString withContentsAtMarkers(const QString &html, const QString &list);
// Whether the page holds a marker that withContentsAtMarkers fills; a page
// without one is left as it is.
bool holdsContentsMarker(const QString &html);

} // namespace tl::convert
