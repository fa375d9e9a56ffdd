#pragma once

#include "screenplay/fn_element.h"

// The alternative parser: a pipeline of regular-expression rewrites that
// tags the body, then reads the tags back as elements. The rows pair each
// pattern with its template and every tagged pair yields a type and a text,
// so the pipeline has no failure of its own.
namespace tl::screenplay::FountainParser {

FNElementList parseBodyOfString(const QString &text);
FNElementList parseBodyOfFile(const QString &path);
TitlePage parseTitlePageOfString(const QString &text);
TitlePage parseTitlePageOfFile(const QString &path);

// The text with the title page taken off, framed in blank lines.
QString bodyOfString(const QString &text);
// The title page's lines, or an empty text when the first block is none.
QString titlePageOfString(const QString &text);

} // namespace tl::screenplay::FountainParser
