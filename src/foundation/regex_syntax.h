#pragma once

// Two conservative readings of an ICU pattern, made once when an expression
// is compiled, that let a search skip work ICU would do: how far a match
// attempt can read from its start, and the literal text every match begins
// with. Each answers "nothing known" for what it does not follow; neither
// changes what matches.

#include <QString>
#include <QStringView>
#include <optional>

namespace tl::detail {

// The most UTF-16 units a match attempt can read from its start, or nothing
// when the pattern does not bound it.
std::optional<qsizetype> patternReach(QStringView pattern, bool caseless);

// The literal text every match begins with; empty when the pattern promises
// none.
QString literalPrefix(QStringView pattern, bool caseless);

} // namespace tl::detail
