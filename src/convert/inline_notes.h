#pragma once

#include "convert/code_ranges.h"

#include <QString>

namespace tl::convert {

// Moves inline notes ("[^ text]", as the preparation writes them) to
// reference notes: the note becomes its label, and a definition of the label
// is appended to the end of the text. A note whose definition exists stays.
// `code` is the code-range list of the whole pass, stale or not yet made.
QString notesMovedToDefinitions(const QString &text, LazyCodeRanges &code);

// The matches of an expression that is an opening (group 1), a lazy run of
// at least one character, and "]". Where the run takes any character, the
// match ends at the first "]" behind its first character. Where it takes
// no "]" and "(?!:)" follows the expression, the first "]" behind the
// opening ends the match if the run is not empty and no ":" follows, and
// there is no match at that opening otherwise. The walk is linear in the
// text, where ICU would read on to the "]" from every opening.
enum class BracketRun { AnyCharacter, NoBracketNorColonBehind };
QList<RegexMatch> matchesUpToBracket(const QString &text, const QString &opening, BracketRun run);
// Those of the note expression "\[\^ ?[^\]]+?\](?!:)".
QList<RegexMatch> noteMatches(const QString &text);

// The label a note "[^ a [b] c]" is filed under, "[^ a -b- c]": brackets
// inside it become "-".
QString labelOfNote(QStringView note);

} // namespace tl::convert
