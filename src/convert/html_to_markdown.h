#pragma once

#include <QString>

// The way back from HTML to Markdown: a fixed order of text rewrites, no
// parse and no tree. Each rewrite relies on what the ones before it left.
namespace tl::convert {

struct MarkdownifyOptions
{
    // useUnderscoreToEmphasizeMD: "__" and "_" rather than "**" and "*".
    bool underscoreEmphasis = false;
    // useMarkdownStrictly: a break ends its line with two blanks.
    bool strictLineBreaks = false;

    static MarkdownifyOptions fromSettings();
};

// Markdown of a formatted document or a piece of HTML, by the settings.
QString tl_markdownifyHTML(const QString &html);
QString markdownifyHTML(const QString &html, const MarkdownifyOptions &options);

// The markup without what an editor view leaves in it: inline styles other
// than highlights, alignment and preformatted runs, empty spans, images
// without a source; block elements on lines of their own.
QString tl_htmlWithoutInlineStyles(const QString &html);

} // namespace tl::convert
