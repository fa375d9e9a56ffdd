#pragma once

#include <QString>

// The conversions the duplicates in another kind are made with. Each
// answers an empty text until its subsystem lands, and an empty result
// writes nothing.
namespace tl::store {

// Markdown text of the document at path to a formatted HTML document.
QString tl_markdownToHTML(const QString &markdown, const QString &path);
// Markdown text of the document at path to LaTeX.
QString tl_markdownToLatex(const QString &markdown, const QString &path);
// HTML to Markdown text.
QString tl_markdownifyHTML(const QString &html);
// An OPML outline to HTML.
QString tl_OPMLToHTML(const QString &opml);
// A web archive beside itself as a formatted document; the new path.
QString tl_duplicateWebArchiveAsFormattedDocument(const QString &path);

} // namespace tl::store
