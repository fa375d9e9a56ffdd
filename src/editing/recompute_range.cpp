#include "highlighter.h"

#include <QList>

namespace tl::editing {

namespace {

// Where the fences "\n", up to three blanks, three or more of "~", "|" or
// "`" start, from `from` to `to`, as a search for that expression finds
// them one after the other, each ending by `to`; by hand, because it runs on
// every keystroke.
QList<qsizetype> fenceStarts(QStringView text, qsizetype from, qsizetype to)
{
    const auto isFence = [](QChar c) { return c == u'~' || c == u'|' || c == u'`'; };
    QList<qsizetype> starts;
    for (qsizetype at = text.indexOf(u'\n', from); at >= 0 && at < to;) {
        qsizetype spaces = 0;
        while (spaces < 3 && at + 1 + spaces < text.size() && text.at(at + 1 + spaces).isSpace())
            ++spaces;
        qsizetype matchEnd = -1;
        for (qsizetype k = spaces; k >= 0 && matchEnd < 0; --k) {
            qsizetype run = at + 1 + k;
            while (run < text.size() && isFence(text.at(run)))
                ++run;
            if (run - (at + 1 + k) >= 3)
                matchEnd = run;
        }
        if (matchEnd > to)
            break; // a match lies wholly within the searched part
        if (matchEnd >= 0)
            starts.append(at);
        at = text.indexOf(u'\n', matchEnd >= 0 ? matchEnd : at + 1);
    }
    return starts;
}

qsizetype nextFence(QStringView text, qsizetype from)
{
    const QList<qsizetype> after = fenceStarts(text, from, text.size());
    return after.isEmpty() ? -1 : after.first();
}

} // namespace

TextRange rangeToRecompute(QStringView text, TextRange edited)
{
    const auto paragraphAt = [text](qsizetype at) { return paragraphRangeIn(text, {at, 0}); };
    const TextRange edit = paragraphRangeIn(text, edited);
    TextRange result = edit;
    // A title block or quotation at the start colours the first block as a whole.
    qsizetype firstBlockEnd = 0;
    while (firstBlockEnd < text.size()) {
        const TextRange paragraph = paragraphAt(firstBlockEnd);
        if (paragraph.length <= 1 || paragraph.location > edit.end())
            break;
        firstBlockEnd = paragraph.end();
    }
    const bool inFirstBlock = edit.location <= firstBlockEnd;
    if (inFirstBlock && text.left(firstBlockEnd).contains(u"\n%"))
        result = {0, std::max(firstBlockEnd, edit.end())};

    const QList<qsizetype> before = fenceStarts(text, 0, edit.location);
    const bool insideFence = before.size() % 2 == 1;
    const qsizetype textEnd = text.size();
    const auto fenceLineEnd = [&](qsizetype fence) {
        return fence < 0 ? textEnd : paragraphAt(fence + 1).end();
    };
    const QStringView editedText = text.mid(edit.location, edit.length);
    qsizetype blanks = 0;
    while (blanks < editedText.size() && blanks < 3 && editedText.at(blanks).isSpace())
        ++blanks;
    const bool fenceLine = blanks < editedText.size() &&
                           (editedText.at(blanks) == u'~' || editedText.at(blanks) == u'|' ||
                            editedText.at(blanks) == u'`');
    TextRange span;
    if (insideFence) {
        span.location = before.last();
        span.length =
            (fenceLine ? edit.end() : fenceLineEnd(nextFence(text, edit.end()))) - span.location;
    } else if (fenceLine) {
        span = {edit.location, fenceLineEnd(nextFence(text, edit.end())) - edit.location};
    } else {
        span = edit;
        while (span.location > 0) {
            const TextRange previous = paragraphAt(span.location - 1);
            if (previous.length <= 1)
                break;
            span = {previous.location, span.end() - previous.location};
        }
        while (span.end() < textEnd) {
            const TextRange next = paragraphAt(span.end());
            if (next.length <= 1)
                break;
            span.length = next.end() - span.location;
        }
    }
    const qsizetype start = std::min(result.location, span.location);
    qsizetype end = std::max(result.end(), span.end());
    if (end < textEnd)
        end = paragraphAt(end).end(); // one paragraph more
    return {start, end - start};
}

} // namespace tl::editing
