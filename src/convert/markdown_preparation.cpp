#include "convert/markdown_preparation.h"

#include "convert/code_ranges.h"
#include "convert/convert_keys.h"
#include "convert/inline_notes.h"
#include "convert/match_edits.h"
#include "foundation/literal_finder.h"
#include "platform/settings.h"
#include "store/item_path.h"

namespace tl::convert {

namespace {

bool setting(const char *key)
{
    return platform::settings().boolValue(QLatin1String(key));
}

// Steps 4 to 7: each match outside code gets its replacement; the code
// ranges are those of the whole pass.
QString replacedOutsideCode(const QString &text, const QList<RegexMatch> &matches,
                            LazyCodeRanges &code,
                            const std::function<QString(const RegexMatch &)> &replacement)
{
    return Regex::editMatches(text, matches,
                              [&](const RegexMatch &match, QStringView) -> std::optional<QString> {
                                  if (code.contains(text, match))
                                      return std::nullopt;
                                  return replacement(match);
                              });
}

} // namespace

QList<RegexMatch> caretNoteMatches(const QString &text)
{
    // "(\^\[).+?\]" with dot matching line ends.
    return matchesUpToBracket(text, QStringLiteral("^["), BracketRun::AnyCharacter);
}

QList<RegexMatch> highlightMatches(const QString &text)
{
    static const Regex highlight(QStringLiteral(R"((?<![\w{])(==([^\n]+?)==)\W)"),
                                 RegexOption::DotMatchesNewline);
    // A closing: "==" with a character that is no word character behind.
    static const Regex closing(QStringLiteral(R"(==\W)"));
    static const LiteralFinder opening(QStringLiteral("=="));
    // An attempt that finds no closing on its line reads to the line's end,
    // so the "==" of a long line without one would each read the rest of
    // the line. ICU is asked only where the first closing at least one
    // character on comes before the line ends; both are found once for all
    // the places before them.
    QList<RegexMatch> matches;
    qsizetype close = -1;
    qsizetype lineEnd = -1;
    for (qsizetype at = opening.indexIn(text); at >= 0;) {
        if (close < at + 3) {
            const std::optional<RegexMatch> found = closing.match(text, at + 3);
            if (!found)
                break;
            close = found->start();
        }
        if (lineEnd < at + 2) {
            lineEnd = text.indexOf(u'\n', at + 2);
            if (lineEnd < 0)
                lineEnd = text.size();
        }
        if (lineEnd < close) {
            at = opening.indexIn(text, lineEnd + 1);
            continue;
        }
        const std::optional<RegexMatch> match = highlight.matchAt(text, at);
        if (match)
            matches.append(*match);
        at = opening.indexIn(text, match ? match->end() : at + 1);
    }
    return matches;
}

namespace {

QString withCommonExtensions(QString text, LazyCodeRanges &code)
{
    static const Regex tagNote(QStringLiteral(R"re(<<fnote "([^"]+?)">>)re"),
                               RegexOption::DotMatchesNewline);
    static const Regex pageBreak(QStringLiteral(R"(^\{\{pagebreak\}\}\s*$)"),
                                 RegexOption::CaseInsensitive | RegexOption::AnchorsMatchLines);

    text = replacedOutsideCode(text, caretNoteMatches(text), code, [&](const RegexMatch &m) {
        return withGroupsReplaced(m, text, {{1, QStringLiteral("[^ ")}});
    });
    text = replacedOutsideCode(text, highlightMatches(text), code, [&](const RegexMatch &m) {
        return withGroupsReplaced(
            m, text, {{1, QStringLiteral("<mark>%1</mark>").arg(m.captured(text, 2))}});
    });
    text = replacedOutsideCode(text, tagNote.allMatches(text), code, [&](const RegexMatch &m) {
        return QStringLiteral("[^ %1]").arg(m.captured(text, 1));
    });
    text = replacedOutsideCode(text, pageBreak.allMatches(text), code,
                               [](const RegexMatch &) { return QStringLiteral(">%pagebreak%\n"); });
    return text;
}

} // namespace

// The matches of "\[[^\]]*\]\((.*?)\)". Every "[" before a "]" meets that
// same "]", and the attempt fails there unless "(" follows and a ")" comes
// before the line ends; ICU, which would read that far for each "[", is
// asked only where both are so.
QList<RegexMatch> linkTargetMatches(const QString &text)
{
    static const Regex linkTarget(QStringLiteral(R"(\[[^\]]*\]\((.*?)\))"));
    QList<RegexMatch> matches;
    qsizetype close = -1;
    qsizetype paren = -1;
    qsizetype lineEnd = -1;
    for (qsizetype at = text.indexOf(u'['); at >= 0;) {
        if (close < at)
            close = text.indexOf(u']', at);
        if (close < 0)
            break;
        const qsizetype target = close + 2;
        bool possible = target <= text.size() && text[close + 1] == u'(';
        if (possible) {
            if (paren < target) {
                paren = text.indexOf(u')', target);
                if (paren < 0)
                    paren = text.size();
            }
            if (lineEnd < target) {
                for (lineEnd = target; lineEnd < text.size() && !Regex::isLineEnd(text[lineEnd]);)
                    ++lineEnd;
            }
            possible = paren >= 0 && paren < lineEnd;
        }
        const std::optional<RegexMatch> match =
            possible ? linkTarget.matchAt(text, at) : std::nullopt;
        if (match)
            matches.append(*match);
        at = text.indexOf(u'[', match ? match->end() : close + 1);
    }
    return matches;
}

namespace {

QString preparedForMultiMarkdown(QString text)
{
    static const Regex openContentsRange(QStringLiteral(R"(^\s*\{\{TOC:(.{1,3})\}\}.*?$)"),
                                         RegexOption::AnchorsMatchLines);

    // A linked image on the line after some text starts a paragraph.
    text.replace(QStringLiteral("\n[![]"), QStringLiteral("\n\n[![]"));
    text = Regex::editMatches(
        text, linkTargetMatches(text),
        [&](const RegexMatch &m, QStringView) -> std::optional<QString> {
            if (m.length() == 0)
                return std::nullopt;
            return withGroupsReplaced(
                m, text, {{1, store::tl_pathEscapedForMarkdownLink(m.capturedString(text, 1))}});
        });
    return openContentsRange.replaceMatches(
        text, [&](const RegexMatch &m, QStringView) -> std::optional<QString> {
            const QStringView range = m.captured(text, 1);
            if (!range.endsWith(u'-'))
                return std::nullopt;
            return withGroupsReplaced(m, text, {{1, range.toString() + u'9'}});
        });
}

// The matches of the heading-anchor expression, which begins "^#" and
// holds a "[" before the line ends: ICU is asked only at the line starts
// that hold "#" and lines with a "[", where its search would try every line
// and read every heading a character at a time.
QList<RegexMatch> headingAnchorMatches(const QString &text)
{
    static const Regex headingAnchor(QStringLiteral(R"(^#+ ?(.+?)(\[).+?(\])([\s#]*)$)"),
                                     RegexOption::AnchorsMatchLines);
    auto holdsBracket = [&](qsizetype at) {
        for (; at < text.size() && !Regex::isLineEnd(text[at]); ++at) {
            if (text[at] == u'[')
                return true;
        }
        return false;
    };
    QList<RegexMatch> matches;
    for (qsizetype at = text.indexOf(u'#'); at >= 0; at = text.indexOf(u'#', at + 1)) {
        if ((at > 0 && !Regex::isLineEnd(text[at - 1])) || !holdsBracket(at))
            continue;
        if (const std::optional<RegexMatch> match = headingAnchor.matchAt(text, at)) {
            matches.append(*match);
            at = std::max(at, match->end() - 1);
        }
    }
    return matches;
}

QString preparedForDefaultConverter(QString text, LazyCodeRanges &code)
{
    static const Regex checkbox(QStringLiteral(R"((- \[.\])\s+?)"));
    static const RegexTemplate oneBlank(checkbox, QStringLiteral("$1 "));

    text = notesMovedToDefinitions(text, code);
    if (!setting(keys::UseMMDCompatibleAnchors)) {
        // "## Title [anchor]" becomes "## [Title ](id:anchor)".
        text = Regex::editMatches(text, headingAnchorMatches(text),
                                  [&](const RegexMatch &m, QStringView) -> std::optional<QString> {
                                      return withGroupsReplaced(
                                          m, text,
                                          {{1, QStringLiteral("[%1]").arg(m.captured(text, 1))},
                                           {2, QStringLiteral("(id:")},
                                           {3, QStringLiteral(")")},
                                           {4, QString()}});
                                  });
    }
    return checkbox.replaceAll(text, oneBlank);
}

} // namespace

QString tl_stringPreparedForConversionWith(const QString &input, int converter)
{
    QString text = input;
    // One code-range list for the rest of the pass, made at the first
    // candidate and never brought up to date but for the wiki links' moves.
    LazyCodeRanges code;
    if (setting(keys::IgnoreCommentsForWordCount))
        text = tl_stringByRemovingComments(text);
    if (!setting(keys::UseMarkdownStrictly))
        text = tl_makeEveryNewlineaLinebreak(text);
    if (text.contains(QStringLiteral("[[")))
        text = wikiLinksAsMarkdownLinks(text, code);

    text = withCommonExtensions(text, code);
    switch (converter) {
    case MultiMarkdown:
        return preparedForMultiMarkdown(text);
    case DefaultConverter:
        return preparedForDefaultConverter(text, code);
    default:
        return text;
    }
}

} // namespace tl::convert
