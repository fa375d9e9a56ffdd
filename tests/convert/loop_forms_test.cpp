// The edits that the classic loops make "from the last match to the
// first, in place" are made in one linear pass; these tests run the literal
// loops on generated input and compare.
#include "convert/code_ranges.h"
#include "convert/html_postprocessing.h"
#include "convert/inline_notes.h"
#include "convert/markdown_preparation.h"
#include "convert_test_support.h"
#include "foundation/regex.h"

#include <QRandomGenerator>
#include <QSet>

namespace {

using tl::Regex;
using tl::RegexMatch;
using tl::RegexOption;

// Edits `text` in place, match by match, from the last to the first.
QString literalLoop(QString text, const Regex &regex,
                    const std::function<void(QString &, const RegexMatch &)> &edit)
{
    const QList<RegexMatch> matches = regex.allMatches(text);
    for (qsizetype i = matches.size() - 1; i >= 0; --i)
        edit(text, matches[i]);
    return text;
}

QString randomPiece(QRandomGenerator &random, const QStringList &pieces, int count)
{
    QString text;
    for (int i = 0; i < count; ++i)
        text += pieces.at(int(random.bounded(pieces.size())));
    return text;
}

TEST(LoopForms, UniqueIdsAsTheLiteralLoopNumbersThem)
{
    const Regex id(QStringLiteral(R"re(<[^>]*? id="(.*?)")re"), RegexOption::DotMatchesNewline);
    const QStringList pieces = {"<h1 id=\"a\">A</h1>\n", "<h2 id=\"a-1\">B</h2>\n", "<p>x</p>\n",
                                "<li id=\"b\">c</li>\n", "<div id=\"\">e</div>\n",
                                "<h3 id=\"a\">\nA</h3>\n",
                                // Attributes outside tags, tags within tags, ids that run on.
                                " id=\"c\" ", "<a <b id=\"a\">", "> id=\"a\"",
                                "<p title=\">\" id=\"b\">", "<i id=\"x id=\"y\">", "<"};
    QRandomGenerator random(7);
    for (int round = 0; round < 200; ++round) {
        const QString html = randomPiece(random, pieces, int(random.bounded(1, 30)));
        QSet<QString> seen;
        const QString expected = literalLoop(html, id, [&](QString &text, const RegexMatch &m) {
            QString value = m.capturedString(text, 1);
            if (!value.isEmpty() && seen.contains(value)) {
                QString candidate;
                for (int n = 1;; ++n) {
                    candidate = value + QStringLiteral("-%1").arg(n);
                    if (!seen.contains(candidate))
                        break;
                }
                text.replace(m.groupStart(1), m.groupLength(1), candidate);
                value = candidate;
            }
            seen.insert(value);
        });
        ASSERT_EQ(tl::convert::withUniqueIds(html), expected) << html;
    }
}

TEST(LoopForms, OrderedSubListsCloseAsTheLiteralLoopClosesThem)
{
    const Regex itemHoldingList(QStringLiteral(R"(<li>((?!<\/li>).)*?(<ol>))"),
                                RegexOption::DotMatchesNewline);
    const QStringList pieces = {"<li>", "</li>", "<ol>", "</ol>", "x", "\n", "<li>a<ol>", "</l"};
    QRandomGenerator random(5);
    for (int round = 0; round < 300; ++round) {
        const QString html = randomPiece(random, pieces, int(random.bounded(1, 25)));
        const QString expected =
            literalLoop(html, itemHoldingList, [](QString &text, const RegexMatch &m) {
                text.replace(m.groupStart(2), m.groupLength(2), QStringLiteral("</li><ol>"));
            });
        ASSERT_EQ(tl::convert::withOrderedSubListsClosed(html), expected) << html;
    }
}

TEST(LoopForms, CodeRangesAreTheMatchesOfBothExpressions)
{
    const Regex blocks(QStringLiteral(R"([\A\n]\s{0,3}([~|`]{3,})[^~`].*?\n\s{0,3}\1)"),
                       RegexOption::DotMatchesNewline);
    const Regex spans(QStringLiteral("`.+?`"), RegexOption::AnchorsMatchLines);
    const QStringList pieces = {"```", "~~~", "|||", "`",   "~",   "|",    "\n", "  ",
                                "\t",  "A",   "x",   "``~", " \n", "````", "c"};
    QRandomGenerator random(3);
    for (int round = 0; round < 500; ++round) {
        const QString text = randomPiece(random, pieces, int(random.bounded(1, 40)));
        const QList<RegexMatch> expected = blocks.allMatches(text) + spans.allMatches(text);
        const QList<RegexMatch> ranges = tl::convert::tl_rangesOfFencedCodeBlocks(text);
        ASSERT_EQ(ranges.size(), expected.size()) << text;
        for (qsizetype i = 0; i < ranges.size(); ++i) {
            ASSERT_EQ(ranges[i].start(), expected[i].start()) << text;
            ASSERT_EQ(ranges[i].end(), expected[i].end()) << text;
            ASSERT_EQ(ranges[i].groupStart(1), expected[i].groupStart(1)) << text;
        }
    }
}

void expectSameMatches(const QList<RegexMatch> &found, const QList<RegexMatch> &expected,
                       const QString &text)
{
    ASSERT_EQ(found.size(), expected.size()) << text.toStdString();
    for (qsizetype i = 0; i < found.size(); ++i) {
        for (int g = 0; g <= expected[i].groupCount(); ++g) {
            ASSERT_EQ(found[i].groupStart(g), expected[i].groupStart(g)) << text.toStdString();
            ASSERT_EQ(found[i].groupEnd(g), expected[i].groupEnd(g)) << text.toStdString();
        }
    }
}

// The walks answer what ICU's search of the whole expression answers, also
// around every line end "." stops at and where a closing follows a failed one.
TEST(LoopForms, LinearWalksFindTheMatchesOfTheirExpressions)
{
    const Regex wikiLink(QStringLiteral(R"((?<![`.*|\\])(\[\[([^\[\n]+?)\]\])(?!.*`))"),
                         RegexOption::AnchorsMatchLines);
    const Regex highlight(QStringLiteral(R"((?<![\w{])(==([^\n]+?)==)\W)"),
                          RegexOption::DotMatchesNewline);
    const Regex caretNote(QStringLiteral(R"((\^\[).+?\])"), RegexOption::DotMatchesNewline);
    const Regex note(QStringLiteral(R"(\[\^ ?[^\]]+?\](?!:))"), RegexOption::DotMatchesNewline);
    const Regex linkTarget(QStringLiteral(R"(\[[^\]]*\]\((.*?)\))"));
    const Regex spanOnALine(QStringLiteral("`.+?`"), RegexOption::AnchorsMatchLines);
    const Regex span(QStringLiteral("`.+?`"), RegexOption::DotMatchesNewline);
    const QStringList pieces = {
        "[[", "]]", "]", "[", "`",  "a",  " ",  ".",      "|",      "==", "=",  "{",    "^[", "[^",
        "^",  ":",  "(", ")", "](", "\n", "\r", "\u2028", "\u0085", "\f", "\v", "\r\n", "é",  "😀"};
    QRandomGenerator random(13);
    for (int round = 0; round < 3000; ++round) {
        const QString text = randomPiece(random, pieces, int(random.bounded(1, 30)));
        expectSameMatches(tl::convert::wikiLinkMatches(text), wikiLink.allMatches(text), text);
        expectSameMatches(tl::convert::highlightMatches(text), highlight.allMatches(text), text);
        expectSameMatches(tl::convert::caretNoteMatches(text), caretNote.allMatches(text), text);
        expectSameMatches(tl::convert::noteMatches(text), note.allMatches(text), text);
        expectSameMatches(tl::convert::linkTargetMatches(text), linkTarget.allMatches(text), text);
        expectSameMatches(tl::convert::backquoteSpans(text, false), spanOnALine.allMatches(text),
                          text);
        expectSameMatches(tl::convert::backquoteSpans(text, true), span.allMatches(text), text);
    }
}

// Code ranges found before the wiki links are replaced serve the changed
// text as ranges found afresh would.
TEST(LoopForms, CodeRangesOutliveTheWikiLinks)
{
    const QStringList pieces = {"[[a]]", "[[b|t]]", "[[x`y]]", "[[~]]", "```\n", "`",
                                "~~~\n", "|||",     "A",       " ",     "\n",    "[[a\rb]]"};
    QRandomGenerator random(17);
    for (int round = 0; round < 500; ++round) {
        const QString text = randomPiece(random, pieces, int(random.bounded(1, 25)));
        tl::convert::LazyCodeRanges kept;
        kept.contains(text, 0, 0); // found on the text before the links change
        const QString changed = tl::convert::wikiLinksAsMarkdownLinks(text, kept);
        tl::convert::LazyCodeRanges fresh;
        for (qsizetype start = 0; start <= changed.size(); ++start) {
            for (qsizetype end = start; end <= changed.size(); ++end)
                ASSERT_EQ(kept.contains(changed, start, end), fresh.contains(changed, start, end))
                    << text.toStdString() << " " << start << " " << end;
        }
    }
}

TEST(LoopForms, PreparationStepsAsTheLiteralLoopsMakeThem)
{
    tl::platform::settings().set("useMarkdownStrictly", true);
    const Regex anchor(QStringLiteral(R"(^#+ ?(.+?)(\[).+?(\])([\s#]*)$)"),
                       RegexOption::AnchorsMatchLines);
    const Regex highlight(QStringLiteral(R"((?<![\w{])(==([^\n]+?)==)\W)"),
                          RegexOption::DotMatchesNewline);
    const QStringList pieces = {"## T [a]\n", "# U [b] ##\n", "text ==hi== ", "a==x== ",
                                "{==c==} ",   "\n",           "plain\n",      "==x==\n"};
    QRandomGenerator random(11);
    for (int round = 0; round < 200; ++round) {
        const QString markdown = randomPiece(random, pieces, int(random.bounded(1, 20)));
        QString expected = literalLoop(markdown, highlight, [](QString &text, const RegexMatch &m) {
            text.replace(m.groupStart(1), m.groupLength(1),
                         "<mark>" + m.capturedString(text, 2) + "</mark>");
        });
        expected = literalLoop(expected, anchor, [](QString &text, const RegexMatch &m) {
            // Backwards through the captures, so earlier ones stay valid.
            text.remove(m.groupStart(4), m.groupLength(4));
            text.replace(m.groupStart(3), 1, ")");
            text.replace(m.groupStart(2), 1, "(id:");
            text.insert(m.groupEnd(1), u']');
            text.insert(m.groupStart(1), u'[');
        });
        ASSERT_EQ(tl::convert::tl_stringPreparedForConversionWith(markdown, 0), expected)
            << markdown;
    }
    tl::platform::settings().remove("useMarkdownStrictly");
}

} // namespace
