#pragma once

#include "convert/code_ranges.h"

#include <QString>

namespace tl::convert {

// Moves inline notes ("[^ text]", as the preparation writes them) to
// reference notes: the note becomes its label, and a definition of the label
// is appended to the end of the text. A note whose definition exists stays.
// `code` is the code-range list of the whole pass, stale or not yet made.
QString notesMovedToDefinitions(const QString &text, LazyCodeRanges &code);

// The matches of an expression that is a two-character opening, a run of
// at least one character that stops at the first "]", and that "]", with
// "(?!:)" behind it when `refusedBeforeColon`. ICU would read on to the
// "]" (or the end of the text) from every opening before it; here it is
// asked only where the "]" stands and the look-ahead holds, so the walk is
// linear in the text.
QList<RegexMatch> matchesUpToBracket(const QString &text, const Regex &regex,
                                     const QString &opening, bool refusedBeforeColon);
// Those of the note expression "\[\^ ?[^\]]+?\](?!:)".
QList<RegexMatch> noteMatches(const QString &text);

// The label a note "[^ a [b] c]" is filed under, "[^ a -b- c]": brackets
// inside it become "-".
QString labelOfNote(QStringView note);

} // namespace tl::convert
