#pragma once

#include <QString>

// The pages the program renders itself for the formatted view: Markdown,
// Fountain and OPML documents. Pure functions of a path and a text, safe
// on any thread.
namespace tl::browser {

// Markdown-list kinds, "fountain" and "opml".
bool isRenderedKind(const QString &path);

// The whole page for the text of the document at path, its references
// made absolute for its book and adjusted to the theme.
QString renderedPageOfText(const QString &path, const QString &text);

} // namespace tl::browser
