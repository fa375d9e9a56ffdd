#pragma once

#include <QString>

// The effective style values of a document, inherited from its books, as
// the style sheet and the converter choice read them.
namespace tl::convert {

// The log documents in the root always get "Courier New"; otherwise the
// inherited face, then the setting's, each only when the font is
// installed, then "Muli".
QString documentFontFace(const QString &path);
// The inherited size when not 0, else the setting when not 0, else 14.
int documentFontSize(const QString &path);
// The inherited spacing when set, else the setting when above 0, else 1.0.
double documentLineSpacing(const QString &path);
// The converter number: inherited MarkdownConverter (which falls back to
// the setting).
int tl_markdownConverterAtPath(const QString &path);

} // namespace tl::convert
