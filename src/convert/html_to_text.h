#pragma once

#include <QString>
#include <QStringList>

// Text out of HTML: the source or the text of a formatted document, a rough
// text for previews, decoded entities, and the ids a document offers as link
// targets.
namespace tl::convert {

// The Markdown source a formatted document carries in its Plain Text
// Representation comment; else, for a text with an html element, the text
// of its nodes; else the text unchanged.
QString tl_htmlToPlainText(const QString &text);
// Faster and rougher: the body's tags stripped, lists and breaks kept as
// lines.
QString tl_htmlToPlainQuick(const QString &html);
// The named entities, and the numeric ones for dashes, quotes and the
// ellipsis, decoded; other numeric entities removed; "&amp;" last.
QString tl_stringByReplacingHTMLEntities(const QString &text);
// The ids of the HTML or Markdown document at path, less those of notes,
// glossary entries and citations.
QStringList tl_listOfAnchorsInHTML(const QString &path);

} // namespace tl::convert
