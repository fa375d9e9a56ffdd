#pragma once

#include <QString>
#include <QStringList>

namespace tl::screenplay {

// The characters that end a line: U+000A to U+000D, U+0085, U+2028, U+2029.
bool isLineEnd(QChar c);
// The text without line end characters at either end.
QString trimmedOfLineEnds(const QString &text);
// The lines between every two line end characters, each character its own
// boundary, so that "\r\n" holds an empty line.
QStringList splitAtEveryLineEnd(const QString &text);

// Whether the marks stand in the text: a search for the first mark, which
// most lines lack, then a comparison where it stands. Quicker than a
// general substring search for the two or three marks of the markup.
bool containsMarks(QStringView text, QStringView marks);

} // namespace tl::screenplay
