#include "convert/convert_keys.h"
#include "convert/html_to_markdown.h"
#include "convert/html_to_text.h"
#include "convert/markdownify_loops.h"
#include "convert/rewrite_table.h"
#include "platform/settings.h"

namespace tl::convert {

namespace {

using enum Rewrite;
constexpr RegexOptions kDotAll = RegexOption::DotMatchesNewline;

// What carries no Markdown: heads, scripts, comments, spans, fonts, divs,
// the list and checkbox forms of the formatted view; breaks.
RewriteTable cleanUpRows(bool strictLineBreaks)
{
    const QString lineBreak = strictLineBreaks ? QStringLiteral("  \n") : QStringLiteral("\n");
    return compiledRewrites({
        {Expression, "<!DOCTYPE .*?>", ""},
        {Expression, R"(^\s*(<.+)$)", "$1"},
        {Expression, R"re((-\s)?<li class="tl_checkbox">)re", "<li>[ ]\t", RegexOption::NoOptions,
         R"(<li class="tl_checkbox">)"},
        {Expression, R"re((-\s)?<li class="tl_checkbox_done">)re", "<li>[x]\t",
         RegexOption::NoOptions, R"(<li class="tl_checkbox_done">)"},
        {Expression, R"(<(ul|ol)( .*?)?>\n*)", "<$1>"},
        {Expression, R"(\n*<li( .*?)?>\n*)", "<li>"},
        {Expression, R"(<a name=.*?></a>\n?)", ""},
        {Expression, "<span.*?>", ""},
        {Expression, "<font .*?>", ""},
        {Expression, "<link .*?>", ""},
        {Expression, R"(<iframe .*?</iframe>\n?)", ""},
        {Expression, R"(<meta .*?>\n?)", ""},
        {Expression, R"(<!--.*?-->\n?)", ""},
        {Expression, R"(<script.*?</script>\n?)", ""},
        {Expression, R"(<style .*?</style>\n?)", ""},
        {Expression, R"(<title.*?</title>\n?)", ""},
        {Literal, "</span>", ""},
        {Literal, "</font>", ""},
        {Literal, "</div>", ""},
        {Expression, R"(\p{Z}?<mark .*?>)", " ==", RegexOption::NoOptions, "<mark "},
        {Expression, R"(\p{Z}?<mark>)", " ==", RegexOption::NoOptions, "<mark>"},
        {Expression, R"(</mark>\p{Z}?)", "== "},
        {Literal, "<b><br></b>", ""},
        {Literal, "<i><br></i>", ""},
        {Literal, "<u><br></u>", ""},
        {Literal, "</b><b>", ""},
        {Literal, "</i><i>", ""},
        {Literal, "</u><u>", ""},
        {Literal, "</s><s>", ""},
        {Expression, "<div.*?>", "\n"},
        {Expression, "<br/?>", "<br>"},
        {Expression, "<br .*?>", "<br>"},
        {Literal, "<br>\n", lineBreak},
        {Literal, "<br>", lineBreak},
        {Expression, "</?o:[^>]+>", "", RegexOption::NoOptions, "o:"},
    });
}

const RewriteTable &cleanUp(bool strictLineBreaks)
{
    static const RewriteTable tables[] = {cleanUpRows(false), cleanUpRows(true)};
    return tables[strictLineBreaks];
}

// Underlined text has no Markdown form: "u" elements stay.
RewriteTable emphasisRows(bool underscore)
{
    const QString strong = underscore ? QStringLiteral("__") : QStringLiteral("**");
    const QString weak = underscore ? QStringLiteral("_") : QStringLiteral("*");
    // The marks go into replacement templates, where "*" and "_" stand as
    // they are.
    return compiledRewrites({
        {Expression, R"(<b( .*?)?>\s*?\n*)", strong},
        {Expression, R"(\n?\s*?</b>)", strong, RegexOption::NoOptions, "</b>"},
        {Expression, R"(<strong( .*?)?>\s*?\n*)", strong},
        {Expression, R"(\n?\s*?</strong>)", strong, RegexOption::NoOptions, "</strong>"},
        {Expression, R"(<i( .*?)?>\s*?\n*)", weak},
        {Expression, R"(\n?\s*?</i>)", weak, RegexOption::NoOptions, "</i>"},
        {Expression, R"(<em( .*?)?>\s*?\n*)", weak},
        {Expression, R"(\n?\s*?</em>)", weak, RegexOption::NoOptions, "</em>"},
        {Expression, R"(<strike( .*?)?>\s*?\n?)", "~~"},
        {Expression, R"(\n?\s*?</strike>)", "~~", RegexOption::NoOptions, "</strike>"},
        {Expression, R"(<del( .*?)?>\s*?\n?)", "~~"},
        {Expression, R"(\n?\s*?</del>)", "~~", RegexOption::NoOptions, "</del>"},
        {Expression, R"(<hr( .*?)?>\s*)", "\n----\n\n"},
        {Expression, R"(<blockquote( .*?)?>\n*)", "\n<blockquote>"},
    });
}

const RewriteTable &emphasis(bool underscore)
{
    static const RewriteTable tables[] = {emphasisRows(false), emphasisRows(true)};
    return tables[underscore];
}

const RewriteTable &code()
{
    static const RewriteTable rules = compiledRewrites({
        {CaselessLiteral, "<pre><code>", "~~~~\n"},
        {CaselessLiteral, "</code></pre>", "~~~~\n"},
        {CaselessLiteral, "<p><code>", "`"},
        {CaselessLiteral, "</code></p>", "`\n"},
        {Expression, "<code[^<]*?>", "`"},
        {CaselessLiteral, "</code>", "`"},
    });
    return rules;
}

// List items outside any list.
const RewriteTable &strayItems()
{
    static const RewriteTable rules = compiledRewrites({
        {CaselessLiteral, "<li>", "-\t"},
        {CaselessLiteral, "</li>", "\n"},
    });
    return rules;
}

const RewriteTable &headingEnds()
{
    static const RewriteTable rules = compiledRewrites({
        {Expression, R"(</h\d?>\n*)", "\n\n"},
    });
    return rules;
}

const RewriteTable &checkboxInputs()
{
    static const RewriteTable rules = compiledRewrites({
        {Expression, R"re((-\s)?<input .*?type="checkbox" .*?checked.*?>)re", "- [x] "},
        {Expression, R"re((-\s)?<input .*?type="checkbox".*?>)re", "- [ ] "},
    });
    return rules;
}

const RewriteTable &tidy()
{
    static const RewriteTable rules = compiledRewrites({
        {Expression, R"(^\s*$)", "\n", RegexOption::AnchorsMatchLines},
        {Expression, R"(\n\n+)", "\n\n"},
    });
    return rules;
}

QString bodyOf(const QString &html)
{
    static const Regex body(QStringLiteral("<body.*?>(.*)</body>"), kDotAll);
    const std::optional<RegexMatch> match = body.match(html);
    return match ? match->capturedString(html, 1) : html;
}

} // namespace

MarkdownifyOptions MarkdownifyOptions::fromSettings()
{
    platform::Settings &settings = platform::settings();
    return {settings.boolValue(QLatin1String(keys::UseUnderscoreToEmphasizeMD)),
            settings.boolValue(QLatin1String(keys::UseMarkdownStrictly))};
}

QString tl_markdownifyHTML(const QString &html)
{
    return markdownifyHTML(html, MarkdownifyOptions::fromSettings());
}

QString markdownifyHTML(const QString &html, const MarkdownifyOptions &options)
{
    if (html.isEmpty())
        return QString();
    QString text = tl_stringByReplacingHTMLEntities(bodyOf(html));
    text = applyRewrites(text, cleanUp(options.strictLineBreaks));
    text = replacedWhileMatching(text, detail::paragraphLoop());
    text = applyRewrites(text, emphasis(options.underscoreEmphasis));
    text = replacedWhileMatching(text, detail::quotationLoop());
    text = applyRewrites(text, code());
    text = replacedWhileMatching(text, detail::listLoop());
    text = applyRewrites(text, strayItems());
    text = replacedWhileMatching(text, detail::headingLoop());
    text = applyRewrites(text, headingEnds());
    text = replacedWhileMatching(text, detail::tableLoop());
    text = replacedWhileMatching(text, detail::linkLoop());
    text = replacedWhileMatching(text, detail::imageLoop());
    text = replacedWhileMatching(text, detail::definitionListLoop());
    text = applyRewrites(text, checkboxInputs());
    return applyRewrites(text, tidy()).trimmed();
}

} // namespace tl::convert
