#include "screenplay/courier_lines.h"

#include "screenplay/line_ends.h"

#include <limits>

namespace tl::screenplay {

namespace {

// Courier's advance is 600 of 1000 units: at 12 points, 7.2 points.
int charactersPerLine(int width)
{
    if (width <= 0)
        return std::numeric_limits<int>::max();
    return std::max(1, width * 10 / 72);
}

bool isBlank(QChar c)
{
    return c.isSpace() && !isLineEnd(c);
}

// Where the line that starts at `from` ends: after the last break
// opportunity that fits, or by character when there is none.
qsizetype breakAfter(QStringView line, qsizetype from, qsizetype capacity)
{
    const qsizetype limit = from + capacity;
    if (isBlank(line.at(limit)))
        return limit;
    for (qsizetype k = limit; k > from; --k) {
        const QChar before = line.at(k - 1);
        if (isBlank(before) || (before == u'-' && k - 1 > from && !isBlank(line.at(k - 2))))
            return k;
    }
    return limit;
}

int wrappedLineCount(QStringView line, qsizetype capacity)
{
    qsizetype end = line.size();
    while (end > 0 && isBlank(line.at(end - 1)))
        --end;
    int lines = 1;
    for (qsizetype from = 0; end - from > capacity; ++lines) {
        from = breakAfter(line, from, capacity);
        while (from < end && isBlank(line.at(from)))
            ++from;
    }
    return lines;
}

} // namespace

int courierLineCount(QStringView text, int width)
{
    if (text.isEmpty())
        return 0;
    const qsizetype capacity = charactersPerLine(width);
    int lines = 0;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i == text.size() || isLineEnd(text.at(i))) {
            if (i < text.size() || start < text.size())
                lines += wrappedLineCount(text.mid(start, i - start), capacity);
            start = i + 1;
        }
    }
    return lines;
}

} // namespace tl::screenplay
