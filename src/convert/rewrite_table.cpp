#include "convert/rewrite_table.h"

namespace tl::convert {

std::vector<RegexRule> compiledRewrites(std::initializer_list<RewriteRow> rows)
{
    std::vector<RegexRule> rules;
    rules.reserve(rows.size());
    for (const RewriteRow &row : rows) {
        switch (row.kind) {
        case Rewrite::Expression:
            rules.push_back({Regex(row.find, row.options), row.replace});
            break;
        case Rewrite::Literal:
            rules.push_back({Regex(Regex::escapePattern(row.find), row.options),
                             Regex::escapeTemplate(row.replace)});
            break;
        case Rewrite::CaselessLiteral:
            rules.push_back(
                {Regex(Regex::escapePattern(row.find), row.options | RegexOption::CaseInsensitive),
                 Regex::escapeTemplate(row.replace)});
            break;
        }
    }
    return rules;
}

} // namespace tl::convert
