#include "foundation/literal_finder.h"

namespace tl {

namespace {

// How common a character is in prose and markup, lower for rarer: blanks,
// line ends, letters and digits are everywhere, the characters of tags
// and attributes in every page.
int commonness(QChar c)
{
    if (c == u' ')
        return 4;
    if (c == u'\n' || c.isLetterOrNumber())
        return 3;
    if (c == u'<' || c == u'>' || c == u'"' || c == u'=' || c == u'/')
        return 2;
    return 1;
}

} // namespace

LiteralFinder::LiteralFinder(const QString &literal) : literal_(literal)
{
    for (qsizetype k = 1; k < literal_.size(); ++k) {
        if (commonness(literal_[k]) < commonness(literal_[anchor_]))
            anchor_ = k;
    }
}

qsizetype LiteralFinder::indexIn(QStringView text, qsizetype from) const
{
    if (literal_.isEmpty())
        return from <= text.size() ? from : -1;
    const QChar anchor = literal_[anchor_];
    const qsizetype last = text.size() - literal_.size(); // the last possible start
    for (qsizetype at = text.indexOf(anchor, from + anchor_); at >= 0;
         at = text.indexOf(anchor, at + 1)) {
        const qsizetype start = at - anchor_;
        if (start > last)
            return -1;
        if (text.sliced(start, literal_.size()) == QStringView(literal_))
            return start;
    }
    return -1;
}

} // namespace tl
