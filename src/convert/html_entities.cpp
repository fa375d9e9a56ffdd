#include "convert/html_to_text.h"
#include "convert/rewrite_table.h"

namespace tl::convert {

QString tl_stringByReplacingHTMLEntities(const QString &text)
{
    using enum Rewrite;
    // "&amp;" goes last, so "&amp;lt;" ends as "&lt;" and is not decoded
    // twice; the numeric ellipsis comes after the literal one and stays a
    // real ellipsis.
    static const RewriteTable rules = compiledRewrites({
        {Literal, "&nbsp;", " "},
        {Literal, "&lt;", "<"},
        {Literal, "&gt;", ">"},
        {Literal, "&hellip;", "..."},
        {Literal, QStringLiteral("\u2026"), "..."},
        {Literal, "&quot;", "\""},
        {Literal, "&lsquo;", "'"},
        {Literal, "&rsquo;", "'"},
        {Literal, "&ldquo;", "\""},
        {Literal, "&rdquo;", "\""},
        {Literal, "&ndash;", QStringLiteral("\u2013")},
        {Literal, "&mdash;", QStringLiteral("\u2014")},
        {Literal, "&#8211;", QStringLiteral("\u2013")},
        {Literal, "&#8212;", QStringLiteral("\u2014")},
        {Literal, "&#8217;", "'"},
        {Literal, "&#8230;", QStringLiteral("\u2026")},
        {Expression, "&#.+?;", ""},
        {Literal, "&amp;", "&"},
    });
    return applyRewrites(text, rules);
}

} // namespace tl::convert
