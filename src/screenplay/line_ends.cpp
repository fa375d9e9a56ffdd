#include "screenplay/line_ends.h"

namespace tl::screenplay {

bool isLineEnd(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 0x000A && u <= 0x000D) || u == 0x0085 || u == 0x2028 || u == 0x2029;
}

QString trimmedOfLineEnds(const QString &text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && isLineEnd(text.at(start)))
        ++start;
    while (end > start && isLineEnd(text.at(end - 1)))
        --end;
    return text.mid(start, end - start);
}

QStringList splitAtEveryLineEnd(const QString &text)
{
    QStringList lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isLineEnd(text.at(i))) {
            lines.append(text.mid(start, i - start));
            start = i + 1;
        }
    }
    lines.append(text.mid(start));
    return lines;
}

bool containsMarks(QStringView text, QStringView marks)
{
    for (qsizetype at = text.indexOf(marks.front()); at >= 0;
         at = text.indexOf(marks.front(), at + 1))
        if (text.mid(at).startsWith(marks))
            return true;
    return false;
}

} // namespace tl::screenplay
