#pragma once

#include <QString>

// The self-contained HTML file every formatted document is: head with the
// generator comment and the embedded style sheet, then the body.
namespace tl::convert {

// "Tavelle for Mac" and the short version.
QString generatorName();
// The whole document from its parts.
QString formattedDocument(const QString &title, const QString &styleSheet, const QString &body);
// The document for the item at path with this body: references made
// root-relative, the item's style sheet, its first h1 (else its name) as
// the title.
QString tl_createFormattedDocWithBody(const QString &path, const QString &body);

bool tl_generatorIsTavelle(const QString &html);
// Two versions compare equal whatever program version wrote them.
QString tl_removeGeneratorTavelle(const QString &html);
// The body's inner HTML, trimmed; a text with no body, trimmed.
QString tl_getInnerHTML(const QString &html);

// The Markdown source stored ahead of a formatted document.
QString withPlainTextRepresentation(const QString &markdown, const QString &html);
QString tl_stripMarkdownFromHTML(const QString &html);
// The Markdown source of a document that begins with its representation.
QString tl_plainTextRepresentation(const QString &html);

// The item's HTML as that update writes it, with the style sheet given.
QString withEmbeddedStylesheet(const QString &path, const QString &html, const QString &styleSheet);
// Rewrites the file with the item's current style sheet, only when that
// changes more than the generator; posts the file's modification then.
bool tl_updateEmbeddedStylesheet(const QString &path);
// The same for files whose extension begins with "htm".
bool tl_applyCurrentStyle(const QString &path);

} // namespace tl::convert
