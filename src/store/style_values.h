#pragma once

#include <QString>

// The effective style values of a document, inherited from its books.
namespace tl::store {

// Log documents always show in a monospaced face; otherwise the inherited
// notesFontName, then the setting, each only when installed, then "Muli".
QString tl_fontFaceAtPath(const QString &path);
// The inherited noteFontSize when not 0, else the setting when not 0, else 14.
int tl_fontSizeAtPath(const QString &path);

// A face and size to show a document in; an empty family is the system font.
struct FontChoice
{
    QString family;
    int size = 14;
};
// Face and size from above; a face that is not installed falls back to the
// setting's face, then "Muli", then the system font.
FontChoice tl_fontForPath(const QString &path);

// The inherited lineSpacing when set, else the setting when above 0, else 1.0.
double tl_linespacingAtPath(const QString &path);
// The inherited MarkdownConverter when set, else the setting's number.
int tl_markdownConverterAtPath(const QString &path);

} // namespace tl::store
