#pragma once

#include "editing/text_buffer.h"

#include <QString>
#include <cctype>
#include <ostream>
#include <string>

inline void PrintTo(const QString &text, std::ostream *os)
{
    *os << '"' << text.toStdString() << '"';
}

// Texts with the selection marked: "|" is the caret, «…» a selection.
namespace tltest {

inline tl::editing::EditorBuffer markedBuffer(const QString &marked, bool locked = false)
{
    QString text = marked;
    tl::editing::TextRange selection;
    if (const qsizetype open = text.indexOf(u'«'); open >= 0) {
        const qsizetype close = text.indexOf(u'»');
        text.remove(close, 1).remove(open, 1);
        selection = {open, close - open - 1};
    } else {
        selection = {text.indexOf(u'|'), 0};
        text.remove(selection.location, 1);
    }
    return tl::editing::EditorBuffer(text, selection, locked);
}

inline QString marked(const tl::editing::EditorBuffer &buffer)
{
    QString text = buffer.text();
    const tl::editing::TextRange selection = buffer.selection();
    if (selection.length == 0)
        return text.insert(selection.location, u'|');
    return text.insert(selection.end(), u'»').insert(selection.location, u'«');
}

// A test name made of a table row's name.
template <typename Info> std::string caseName(const Info &info)
{
    std::string name = info.param.name;
    for (char &ch : name)
        if (!std::isalnum(static_cast<unsigned char>(ch)))
            ch = '_';
    return name;
}

} // namespace tltest
