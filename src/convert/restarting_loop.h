#pragma once

#include "foundation/regex.h"

// "As long as a match is found, replace it, and search again from the
// beginning", without searching the whole text once per replacement.
//
// A replacement can only let a new match begin where the replaced text
// stood: inside the replacement (an element it held), across its edges, or,
// for the expressions that take the innermost element first, at an element
// around it that now holds no other. So the text is searched in passes from
// the front: after each replacement the search goes on behind it, unless the
// opener (what every match begins with) is found in the replacement or
// across its edges, where it resumes then. Passes repeat until one changes
// nothing, which takes the surrounding elements in turn.
namespace tl::convert {

struct RestartingLoop
{
    Regex regex;
    // Matches wherever a match of the expression may begin.
    Regex opener;
    Regex::MatchReplacer replacement;
};

QString replacedWhileMatching(const QString &text, const RestartingLoop &loop);

} // namespace tl::convert
