#pragma once

#include <QChar>
#include <QString>
#include <QtGlobal>
#include <functional>
#include <optional>

// Runs of backquotes that open no code span, set aside before Discount reads
// a text. For every backquote of such a run the library looks for a closing
// run to the end of the paragraph, so a paragraph of thousands of them takes
// minutes. Discount copies them as they stand, so each can stand in the text
// as a character the text does not hold and become a backquote again in the
// page.
//
// A run is set aside only where that leaves the page as it was: no run
// after it in its paragraph is as short (so it opens nothing), none before it
// is as long (so it closes nothing and only shorter runs open before it), it
// follows no backslash, and it stands where the library reads backquotes as
// text and nothing else: not in a fence's information, of a fence alone only
// what follows its first three backquotes, and neither on a line that may
// hold a heading (ids) nor in a link's target, a reference definition, a tag
// or an address. A text that holds a "^" goes as it is: the library's
// superscript looks back at the character before it.
namespace tl::convert {

struct SetAsideBackquotes
{
    QString text;
    QChar placeholder;
    qsizetype count = 0;
};

// Below this much work for the library (backquotes times the characters to
// their paragraph's end), the text goes as it is.
inline constexpr qint64 kLoneBackquoteWork = qint64(1) << 24;

// Nothing when the text holds too little such work.
std::optional<SetAsideBackquotes> withLoneBackquotesSetAside(const QString &markdown,
                                                             qint64 leastWork = kLoneBackquoteWork);

// The page with its backquotes back; nothing when the library did not copy
// each placeholder as it stood, and the text must go as it is.
std::optional<QString> withBackquotesBack(const QString &html, const SetAsideBackquotes &aside);

// What `convert` makes of the text with its lone backquotes set aside, or of
// the text itself when they are not worth it or did not all come back. With
// typographic quotes "``" may open a quotation: nothing is set aside.
QString convertedWithLoneBackquotesSetAside(const QString &markdown, bool typographicQuotes,
                                            const std::function<QString(const QString &)> &convert);

} // namespace tl::convert
