#include "convert/rewrite_table.h"

namespace tl::convert {

namespace {

RegexRule compiled(const RewriteRow &row)
{
    switch (row.kind) {
    case Rewrite::Literal:
        return {Regex(Regex::escapePattern(row.find), row.options),
                Regex::escapeTemplate(row.replace)};
    case Rewrite::CaselessLiteral:
        return {Regex(Regex::escapePattern(row.find), row.options | RegexOption::CaseInsensitive),
                Regex::escapeTemplate(row.replace)};
    case Rewrite::Expression:
        break;
    }
    return {Regex(row.find, row.options), row.replace};
}

} // namespace

RewriteTable compiledRewrites(std::initializer_list<RewriteRow> rows)
{
    RewriteTable table;
    table.reserve(rows.size());
    for (const RewriteRow &row : rows) {
        const bool caseless = bool(row.options & RegexOption::CaseInsensitive);
        table.push_back(
            {compiled(row), row.holds, caseless ? Qt::CaseInsensitive : Qt::CaseSensitive});
    }
    return table;
}

QString applyRewrites(const QString &text, const RewriteTable &table)
{
    QString out = text;
    for (const CompiledRewrite &row : table) {
        if (row.holds.isEmpty() || out.contains(row.holds, row.holdsCase))
            out = row.rule.regex.replaceAll(out, row.rule.replacement);
    }
    return out;
}

} // namespace tl::convert
