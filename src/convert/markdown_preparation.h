#pragma once

#include "convert/code_ranges.h"
#include "foundation/regex.h"

#include <QList>
#include <QString>

// The one text-to-text pass every Markdown text takes before a converter:
// it turns the program's own Markdown extensions into what the converters
// understand.
namespace tl::convert {

// The converters, by the number stored in MarkdownConverter.
enum Converter : int {
    DefaultConverter = 0,
    MultiMarkdown = 1,
};

// The prepared text for converter 0 or 1; any other number gets only the
// steps both share.
QString tl_stringPreparedForConversionWith(const QString &text, int converter);

// Lines that begin with "//" (outside code) go, line endings and all.
QString tl_stringByRemovingComments(const QString &text);
// Every newline becomes a hard line break, except where Markdown structure
// (fences, rules, headings, quotations of a class) needs a plain one.
QString tl_makeEveryNewlineaLinebreak(const QString &text);
// [[target|title]] becomes [title](target).
QString tl_makeWikiLinksMarkdownLinks(const QString &text);
// The same with the code ranges of a whole pass: those found for the text
// go on to serve the changed text where the links could not touch code.
QString wikiLinksAsMarkdownLinks(const QString &text, LazyCodeRanges &code);
// The matches of the wiki-link expression, as ICU's search walks them, in
// time linear in the text.
QList<RegexMatch> wikiLinkMatches(const QString &text);
// The same for the highlight expression, "==text==", and for the caret
// form of inline notes, "^[text]".
QList<RegexMatch> highlightMatches(const QString &text);
QList<RegexMatch> caretNoteMatches(const QString &text);
// The same for link targets, "[text](target)", which MultiMarkdown's
// preparation escapes.
QList<RegexMatch> linkTargetMatches(const QString &text);

} // namespace tl::convert
