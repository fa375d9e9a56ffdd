#pragma once

#include "foundation/regex.h"

#include <initializer_list>
#include <vector>

// Ordered rewrite tables as they are written down: each row an expression or
// a literal text and what replaces it. Literal rows become expressions that
// match exactly that text, so one engine applies the whole table.
namespace tl::convert {

enum class Rewrite {
    Expression,     // a regular expression, the replacement a template
    Literal,        // the text as it stands, replaced by the text as it stands
    CaselessLiteral // the same, in any case
};

struct RewriteRow
{
    Rewrite kind;
    QString find;
    QString replace;
    RegexOptions options = RegexOption::NoOptions;
};

// Compile once (into a function-local static) and hand to applyRules().
std::vector<RegexRule> compiledRewrites(std::initializer_list<RewriteRow> rows);

} // namespace tl::convert
