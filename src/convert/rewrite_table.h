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
    // Text that every match of an expression holds: a text without it is not
    // searched. For expressions that begin with something optional, which
    // would otherwise be tried at every blank or tag.
    QString holds = {};
};

struct CompiledRewrite
{
    RegexRule rule;
    QString holds;
    Qt::CaseSensitivity holdsCase;
};
using RewriteTable = std::vector<CompiledRewrite>;

// Compile once (into a function-local static).
RewriteTable compiledRewrites(std::initializer_list<RewriteRow> rows);
// Each row in turn replaces all its matches.
QString applyRewrites(const QString &text, const RewriteTable &table);

} // namespace tl::convert
