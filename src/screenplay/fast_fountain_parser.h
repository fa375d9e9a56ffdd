#pragma once

#include "screenplay/fn_element.h"

namespace tl::screenplay {

// The line-by-line parser the program uses: a title page state machine over
// the first block, then one ordered rule table over the lines of the body.
class FastFountainParser
{
public:
    explicit FastFountainParser(const QString &text);
    // A file that cannot be read as UTF-8 logs a line and parses as empty.
    static FastFountainParser fromFile(const QString &path);

    FNElementList elements;
    TitlePage titlePage;

private:
    FastFountainParser() = default;
    void parseContents(QString text);
    // Takes the title page off the text, when its first block is one.
    QString takeTitlePage(const QString &text);
    void parseBody(const QString &body);
};

// The text of a file that must be UTF-8; nothing when it cannot be read so.
std::optional<QString> utf8ContentsOfFile(const QString &path);

} // namespace tl::screenplay
