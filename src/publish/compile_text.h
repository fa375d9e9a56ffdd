#pragma once

#include <QString>

// The pieces of a compiled document's text.
namespace tl::publish {

// The head of a compiled HTML document: XHTML 1.0 Transitional, the
// generator comment, the title (the base folder's name) and the style
// sheet, up to the opening body tag.
QString compiledHTMLHead(const QString &title, const QString &styleSheet);
QString compiledHTMLTail();
// One document's text as it goes into the compiled document.
QString compiledEntry(const QString &text);
// The line an image document becomes, in every output kind.
QString compiledImageLine(const QString &name);

// "[TLI n]" references renumbered behind those of earlier documents: the
// n-th definition of the text becomes count + n, and count grows by the
// number of definitions.
QString renumberedImageReferences(const QString &text, int &count);

// A web link document as a line of the output kind.
QString webLinkEntry(const QString &url, const QString &name, const QString &outputExtension);

} // namespace tl::publish
