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
std::vector<RegexRule> cleanUpRows(bool strictLineBreaks)
{
    const QString lineBreak = strictLineBreaks ? QStringLiteral("  \n") : QStringLiteral("\n");
    return compiledRewrites({
        {Expression, "<!DOCTYPE .*?>", ""},
        {Expression, R"(^\s*(<.+)$)", "$1"},
        {Expression, R"re((-\s)?<li class="tl_checkbox">)re", "<li>[ ]\t"},
        {Expression, R"re((-\s)?<li class="tl_checkbox_done">)re", "<li>[x]\t"},
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
        {Expression, R"(\p{Z}?<mark .*?>)", " =="},
        {Expression, R"(\p{Z}?<mark>)", " =="},
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
        {Expression, "</?o:[^>]+>", ""},
    });
}

const std::vector<RegexRule> &cleanUp(bool strictLineBreaks)
{
    static const std::vector<RegexRule> tables[] = {cleanUpRows(false), cleanUpRows(true)};
    return tables[strictLineBreaks];
}

// Underlined text has no Markdown form: "u" elements stay.
std::vector<RegexRule> emphasisRows(bool underscore)
{
    const QString strong = underscore ? QStringLiteral("__") : QStringLiteral("**");
    const QString weak = underscore ? QStringLiteral("_") : QStringLiteral("*");
    // The marks go into replacement templates, where "*" and "_" stand as
    // they are.
    return compiledRewrites({
        {Expression, R"(<b( .*?)?>\s*?\n*)", strong},
        {Expression, R"(\n?\s*?</b>)", strong},
        {Expression, R"(<strong( .*?)?>\s*?\n*)", strong},
        {Expression, R"(\n?\s*?</strong>)", strong},
        {Expression, R"(<i( .*?)?>\s*?\n*)", weak},
        {Expression, R"(\n?\s*?</i>)", weak},
        {Expression, R"(<em( .*?)?>\s*?\n*)", weak},
        {Expression, R"(\n?\s*?</em>)", weak},
        {Expression, R"(<strike( .*?)?>\s*?\n?)", "~~"},
        {Expression, R"(\n?\s*?</strike>)", "~~"},
        {Expression, R"(<del( .*?)?>\s*?\n?)", "~~"},
        {Expression, R"(\n?\s*?</del>)", "~~"},
        {Expression, R"(<hr( .*?)?>\s*)", "\n----\n\n"},
        {Expression, R"(<blockquote( .*?)?>\n*)", "\n<blockquote>"},
    });
}

const std::vector<RegexRule> &emphasis(bool underscore)
{
    static const std::vector<RegexRule> tables[] = {emphasisRows(false), emphasisRows(true)};
    return tables[underscore];
}

const std::vector<RegexRule> &code()
{
    static const std::vector<RegexRule> rules = compiledRewrites({
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
const std::vector<RegexRule> &strayItems()
{
    static const std::vector<RegexRule> rules = compiledRewrites({
        {CaselessLiteral, "<li>", "-\t"},
        {CaselessLiteral, "</li>", "\n"},
    });
    return rules;
}

const std::vector<RegexRule> &headingEnds()
{
    static const std::vector<RegexRule> rules = compiledRewrites({
        {Expression, R"(</h\d?>\n*)", "\n\n"},
    });
    return rules;
}

const std::vector<RegexRule> &checkboxInputs()
{
    static const std::vector<RegexRule> rules = compiledRewrites({
        {Expression, R"re((-\s)?<input .*?type="checkbox" .*?checked.*?>)re", "- [x] "},
        {Expression, R"re((-\s)?<input .*?type="checkbox".*?>)re", "- [ ] "},
    });
    return rules;
}

const std::vector<RegexRule> &tidy()
{
    static const std::vector<RegexRule> rules = compiledRewrites({
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
    text = applyRules(text, cleanUp(options.strictLineBreaks));
    text = replacedWhileMatching(text, detail::paragraphLoop());
    text = applyRules(text, emphasis(options.underscoreEmphasis));
    text = replacedWhileMatching(text, detail::quotationLoop());
    text = applyRules(text, code());
    text = replacedWhileMatching(text, detail::listLoop());
    text = applyRules(text, strayItems());
    text = replacedWhileMatching(text, detail::headingLoop());
    text = applyRules(text, headingEnds());
    text = replacedWhileMatching(text, detail::tableLoop());
    text = replacedWhileMatching(text, detail::linkLoop());
    text = replacedWhileMatching(text, detail::imageLoop());
    text = replacedWhileMatching(text, detail::definitionListLoop());
    text = applyRules(text, checkboxInputs());
    return applyRules(text, tidy()).trimmed();
}

} // namespace tl::convert
