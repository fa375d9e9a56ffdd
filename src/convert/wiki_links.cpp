#include "convert/code_ranges.h"
#include "convert/markdown_preparation.h"
#include "convert/match_edits.h"
#include "foundation/literal_finder.h"
#include "foundation/path_string.h"
#include "store/item_path.h"

namespace tl::convert {

namespace {

QString decoded(const QString &text)
{
    return store::percentDecoded(text).value_or(QString());
}

QString trimmedOfBlanksAndTabs(QStringView text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && (text[start] == u' ' || text[start] == u'\t'))
        ++start;
    while (end > start && (text[end - 1] == u' ' || text[end - 1] == u'\t'))
        --end;
    return text.sliced(start, end - start).toString();
}

QString markdownLinkForWikiLink(const QString &inner)
{
    const QStringList pieces = inner.split(u'|');
    QString target = decoded(trimmedOfBlanksAndTabs(pieces.first()));
    target.remove(QStringLiteral("tavelle://show"));
    target.remove(QStringLiteral("tavelle://"));
    target = store::tl_pathEscapedForMarkdownLink(target);

    QString title = pieces.size() >= 2
                        ? decoded(pieces.at(1))
                        : decoded(path::deletingExtension(path::lastComponent(inner)));
    if (title.startsWith(u'#'))
        title.remove(0, 1);
    return QStringLiteral("[%1](%2)").arg(title, target);
}

// Whether a backquote follows a place on its line, as "(?!.*`)" asks:
// "." stops at every line end ICU knows. One look along a line answers
// every place in it after the first asked.
class LineBackquotes
{
public:
    explicit LineBackquotes(QStringView text) : text_(text) {}

    bool backquoteFollows(qsizetype at)
    {
        if (at < from_ || at > lineEnd_) {
            from_ = at;
            lastBackquote_ = -1;
            for (lineEnd_ = at; lineEnd_ < text_.size() && !Regex::isLineEnd(text_[lineEnd_]);
                 ++lineEnd_) {
                if (text_[lineEnd_] == u'`')
                    lastBackquote_ = lineEnd_;
            }
        }
        return lastBackquote_ >= at;
    }

private:
    QStringView text_;
    qsizetype from_ = 0;
    qsizetype lineEnd_ = -1;
    qsizetype lastBackquote_ = -1;
};

// The end of the link that opens at `at`: the first "]]" behind at least
// one character, with neither "[" nor a newline before it. -1 when there is
// none.
qsizetype firstClosing(QStringView text, qsizetype at)
{
    for (qsizetype next = at + 2; next < text.size(); ++next) {
        const QChar c = text[next];
        if (c == u'[' || c == u'\n')
            return -1;
        if (c == u']' && next > at + 2 && next + 1 < text.size() && text[next + 1] == u']')
            return next + 2;
    }
    return -1;
}

// The end of the next longer link from the link that ends at `end`: its
// text may take in "]" but neither "[" nor a newline. -1 when there is none.
qsizetype nextClosing(QStringView text, qsizetype end)
{
    for (qsizetype next = end + 1; next <= text.size(); ++next) {
        const QChar added = text[next - 3];
        if (added == u'[' || added == u'\n')
            return -1;
        if (text[next - 2] == u']' && text[next - 1] == u']')
            return next;
    }
    return -1;
}

} // namespace

QList<RegexMatch> wikiLinkMatches(const QString &text)
{
    // The expression is "(?<![`.*|\\])(\[\[([^\[\n]+?)\]\])(?!.*`)". A link opens
    // at a "[[" with none of the five characters in front; its lazy run
    // ends at the first "]]" at least one character on, and fails at a "["
    // or a newline first. Its look-ahead, no backquote further on the line,
    // would read the rest of the line for every link in it; it is answered
    // from one look along each line.
    static const LiteralFinder opening(QStringLiteral("[["));
    static const QString refusedBefore = QStringLiteral("`.*|\\");
    LineBackquotes lines(text);
    QList<RegexMatch> matches;
    qsizetype at = opening.indexIn(text);
    while (at >= 0) {
        qsizetype end = -1;
        if (at == 0 || !refusedBefore.contains(text[at - 1]))
            end = firstClosing(text, at);
        // A failed look-ahead lets the lazy run take in the "]]" and go on
        // to the next one.
        while (end >= 0 && lines.backquoteFollows(end))
            end = nextClosing(text, end);
        if (end < 0) {
            at = opening.indexIn(text, at + 1);
            continue;
        }
        RegexMatch match;
        match.groups = {{at, end - at}, {at, end - at}, {at + 2, end - at - 4}};
        matches.append(match);
        at = opening.indexIn(text, end);
    }
    return matches;
}

QString tl_makeWikiLinksMarkdownLinks(const QString &text)
{
    LazyCodeRanges code;
    return wikiLinksAsMarkdownLinks(text, code);
}

QString wikiLinksAsMarkdownLinks(const QString &text, LazyCodeRanges &code)
{
    // A link whose text and replacement hold no fence character, backquote
    // or line end can neither make nor end code: the code ranges found for
    // the text stay those of the changed text, at moved places.
    auto keepsCode = [](QStringView piece) {
        for (QChar c : piece) {
            if (c == u'`' || c == u'~' || c == u'|' || Regex::isLineEnd(c))
                return false;
        }
        return true;
    };
    QList<LazyCodeRanges::Edit> edits;
    bool kept = true;
    const QString result =
        Regex::editMatches(text, wikiLinkMatches(text),
                           [&](const RegexMatch &match, QStringView) -> std::optional<QString> {
                               if (code.contains(text, match))
                                   return std::nullopt;
                               const QString link =
                                   markdownLinkForWikiLink(match.capturedString(text, 2));
                               kept = kept && keepsCode(match.captured(text, 1)) && keepsCode(link);
                               edits.prepend({match.groupStart(1), match.groupEnd(1), link.size()});
                               return withGroupsReplaced(match, text, {{1, link}});
                           });
    code.textEdited(edits, kept);
    return result;
}

} // namespace tl::convert
