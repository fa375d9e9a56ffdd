#pragma once

#include <QHash>
#include <QString>

// The markup of e-book pages: XHTML 1.1 that a reader and a checker take.
namespace tl::publish {

// Self-closed empty elements and plain paragraphs, rules and breaks.
QString tl_stringByMakingHTMLePubCompliant(const QString &html);

// Ids that are no XML names (like "fn:1") renamed together with the links
// to them; a repeated id numbered.
QString withValidIds(const QString &html);
// The page's body as well-formed XML, read as a browser reads it: end tags
// where they are missing, stray ones dropped, named entities as characters,
// an empty alternative text for images without one, and newer elements
// ("mark", "section", ...) as the span or div of their class.
QString withWellFormedBody(const QString &page);
// What the newer elements look like by default, for the book's style sheet.
QString newerElementStyles();

// The page a document becomes: its name with "#" as "-" and "&" as "+",
// ".html" in place of the extension of a converted document.
QString pageNameForDocument(const QString &path);

// A file name as it stands in an href or src.
QString hrefForFileName(const QString &name);

// Links flattened for a package where all pages lie side by side: outside
// links stay, a link to a document of the book points to its page (with its
// anchor), a link to anything else loses its target and keeps its text.
// pages maps each document's cleaned absolute path to its page name.
QString withFlattenedLinks(const QString &html, const QString &documentFolder,
                           const QHash<QString, QString> &pages);

} // namespace tl::publish
