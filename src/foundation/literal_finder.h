#pragma once

#include <QString>
#include <QStringView>

namespace tl {

// Finds a fixed text: the vector search of QChar finds its least common
// looking character, and the text around it is compared. For the short
// texts that expressions and markup begin with, this is several times
// faster than a skip table, which moves at most the text's length per step.
class LiteralFinder
{
public:
    LiteralFinder() = default;
    explicit LiteralFinder(const QString &literal);

    const QString &literal() const { return literal_; }
    // The first position at or after `from` where the text stands, or -1.
    qsizetype indexIn(QStringView text, qsizetype from = 0) const;

private:
    QString literal_;
    qsizetype anchor_ = 0; // the character searched for
};

// The first position at or after `from` where `first` stands and, right
// behind it, `second` (an ASCII character, lower-case if a letter) in either
// case or any character beyond ASCII, which may fold into it; -1 when there
// is none. The places where a caseless literal may begin.
qsizetype indexOfCaselessPair(QStringView text, qsizetype from, char16_t first, char16_t second);

} // namespace tl
