#include "foundation/regex.h"

#include <QStringList>
#include <gtest/gtest.h>
#include <thread>
#include <unicode/regex.h>
#include <vector>

using tl::Regex;
using tl::RegexMatch;
using tl::RegexOption;
using tl::RegexOptions;

namespace {

constexpr auto None = RegexOption::NoOptions;
constexpr auto Dot = RegexOption::DotMatchesNewline;
constexpr auto Lines = RegexOption::AnchorsMatchLines;
constexpr auto Caseless = RegexOption::CaseInsensitive;

// ICU's own replaceAll, the reference for template expansion.
QString icuReplaceAll(const QString &pattern, const QString &text, const QString &templ, bool *ok)
{
    UErrorCode status = U_ZERO_ERROR;
    UParseError where{};
    std::unique_ptr<icu::RegexPattern> p(icu::RegexPattern::compile(
        icu::UnicodeString(reinterpret_cast<const UChar *>(pattern.utf16()), pattern.size()), 0,
        where, status));
    const icu::UnicodeString input(reinterpret_cast<const UChar *>(text.utf16()), text.size());
    std::unique_ptr<icu::RegexMatcher> m(p->matcher(input, status));
    const icu::UnicodeString out = m->replaceAll(
        icu::UnicodeString(reinterpret_cast<const UChar *>(templ.utf16()), templ.size()), status);
    *ok = U_SUCCESS(status);
    return QString(reinterpret_cast<const QChar *>(out.getBuffer()), out.length());
}

// ICU's own matcher over `text`, which must outlive it.
struct IcuSearch
{
    IcuSearch(const QString &pattern, RegexOptions options, const QString &text)
        : input(reinterpret_cast<const UChar *>(text.utf16()), text.size())
    {
        uint32_t flags = 0;
        if (options & Dot)
            flags |= UREGEX_DOTALL;
        if (options & Lines)
            flags |= UREGEX_MULTILINE;
        if (options & Caseless)
            flags |= UREGEX_CASE_INSENSITIVE;
        UParseError where{};
        compiled.reset(icu::RegexPattern::compile(
            icu::UnicodeString(reinterpret_cast<const UChar *>(pattern.utf16()), pattern.size()),
            flags, where, status));
        matcher.reset(compiled->matcher(input, status));
    }
    // Start and end of every group of the current match.
    std::vector<int32_t> groups()
    {
        std::vector<int32_t> all;
        for (int g = 0; g <= matcher->groupCount(); ++g) {
            all.push_back(matcher->start(g, status));
            all.push_back(matcher->end(g, status));
        }
        return all;
    }
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString input;
    std::unique_ptr<icu::RegexPattern> compiled;
    std::unique_ptr<icu::RegexMatcher> matcher;
};

} // namespace

struct FindCase
{
    const char16_t *pattern;
    RegexOptions options;
    const char16_t *text;
    qsizetype start; // -1: no match
    qsizetype length;
};

// ICU's behaviour is the contract; these pin the parts that rules rely on.
TEST(Regex, FollowsIcuSemantics)
{
    const FindCase cases[] = {
        // Inside a set, \A is the letter A, not the start of input.
        {u"[\\A\\n]", None, u"xyA", 2, 1},
        {u"[\\A\\n]", None, u"xy\n", 2, 1},
        {u"[\\A\\n]", None, u"xyz", -1, 0},
        // \w and \b know Unicode letters.
        {u"\\w+", None, u"  café!", 2, 4},
        {u"\\bStraße\\b", None, u"die Straße ist", 4, 6},
        {u"\\bé", None, u"aé", -1, 0},
        // "." stops at a newline unless dot-matches-newline.
        {u"a.c", None, u"a\nc", -1, 0},
        {u"a.c", Dot, u"a\nc", 0, 3},
        {u"a.c", None, u"a\rc", -1, 0},
        // "^" and "$" are per line only with anchors-match-lines.
        {u"^b", None, u"a\nb", -1, 0},
        {u"^b", Lines, u"a\nb", 2, 1},
        {u"a$", None, u"a\nb", -1, 0},
        {u"a$", Lines, u"a\nb", 0, 1},
        {u"b$", None, u"a\nb\n", 2, 1}, // "$" also before a final line end
        {u"^a.b$", Dot | Lines, u"x\na\nb\ny", 2, 3},
        // Case-insensitive folds beyond ASCII.
        {u"émile", None, u"ÉMILE", -1, 0},
        {u"émile", Caseless, u"ÉMILE", 0, 5},
        {u"σοφία", Caseless, u"ΣΟΦΊΑ", 0, 5},
        {u"(?i)abc", None, u"xABC", 1, 3},
        // Positions are UTF-16 units: the emoji before the match counts 2.
        {u"x", None, u"😀x", 2, 1},
        {u".", None, u"😀", 0, 2},
        {u"", None, u"abc", 0, 0},
    };
    for (const auto &c : cases) {
        const QString pattern = QString::fromUtf16(c.pattern);
        const QString text = QString::fromUtf16(c.text);
        SCOPED_TRACE(pattern.toStdString() + " in " + text.toStdString());
        const Regex re(pattern, c.options);
        ASSERT_TRUE(re.isValid());
        const auto m = re.match(text);
        EXPECT_EQ(m.has_value(), c.start >= 0);
        EXPECT_EQ(re.isMatch(text), c.start >= 0);
        if (m && c.start >= 0) {
            EXPECT_EQ(m->start(), c.start);
            EXPECT_EQ(m->length(), c.length);
        }
    }
}

TEST(Regex, InvalidPatternFindsNothing)
{
    for (const char16_t *pattern : {u"(", u"[a-", u"a{2,1}", u"*a", u"\\", u"(?<1x>a)"}) {
        const QString p = QString::fromUtf16(pattern);
        SCOPED_TRACE(p.toStdString());
        const Regex re(p);
        EXPECT_FALSE(re.isValid());
        EXPECT_EQ(re.pattern(), p);
        EXPECT_FALSE(re.match(u"a(b*a").has_value());
        EXPECT_FALSE(re.isMatch(u"a(b*a"));
        EXPECT_FALSE(re.matchesEntirely(u""));
        EXPECT_EQ(re.count(u"a(b*a"), 0);
        EXPECT_EQ(re.replaceAll("a(b", "x"), "a(b");
        EXPECT_EQ(re.replaceWhileMatching("a(b", "x"), "a(b");
        EXPECT_EQ(re.groupCount(), 0);
    }
    const Regex none;
    EXPECT_FALSE(none.isValid());
    EXPECT_FALSE(none.isMatch(u"anything"));
    EXPECT_EQ(none.replaceMatches("abc", [](const RegexMatch &, QStringView) { return "x"; }),
              "abc");
}

TEST(Regex, TimeLimitedSearchGivesUpOnARunawayBacktrack)
{
    // Unbounded, this would try 2^40 ways of splitting the run of "a".
    const QString text = "x" + QString(40, u'a') + "x";
    const Regex runaway(QStringLiteral("(a+)+b"), RegexOption::TimeLimited);
    EXPECT_FALSE(runaway.isMatch(text));
    EXPECT_EQ(runaway.replaceAll(text, "y"), text);
    // Ordinary work is not cut short, by a fresh matcher or a reused one.
    EXPECT_EQ(runaway.replaceAll("aab aaab", "y"), "y y");
}

TEST(Regex, GroupsAndNames)
{
    const Regex re(R"((?<key>\w+)=(\d+)?|(-))");
    ASSERT_TRUE(re.isValid());
    EXPECT_EQ(re.groupCount(), 3);
    EXPECT_EQ(re.groupNumber("key"), 1);
    EXPECT_EQ(re.groupNumber("nope"), -1);

    const QString text = "  é=  x=42";
    const auto first = re.match(text);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->groupCount(), 3);
    EXPECT_EQ(first->captured(text, 1), u"é");
    EXPECT_FALSE(first->hasGroup(2));
    EXPECT_EQ(first->groupStart(2), -1);
    EXPECT_EQ(first->groupLength(2), 0);
    EXPECT_TRUE(first->captured(text, 2).isNull());
    EXPECT_EQ(first->groupStart(7), -1); // out of range

    const auto second = re.match(text, first->end());
    ASSERT_TRUE(second);
    EXPECT_EQ(second->start(), 6);
    EXPECT_EQ(second->capturedString(text, 2), "42");
    EXPECT_EQ(second->groupEnd(2), 10);
}

TEST(Regex, MatchFromSeesTheTextBefore)
{
    const Regex behind("(?<=a)b");
    const auto m = behind.match(u"abab", 1);
    ASSERT_TRUE(m);
    EXPECT_EQ(m->start(), 1);
    EXPECT_EQ(Regex(R"(\bb)").match(u"ab", 1), std::nullopt);
    EXPECT_EQ(behind.match(u"ab", 3), std::nullopt); // past the end
}

TEST(Regex, MatchesEntirely)
{
    const Regex re(R"(\d+)");
    EXPECT_TRUE(re.matchesEntirely(u"123"));
    EXPECT_FALSE(re.matchesEntirely(u"123a"));
    EXPECT_FALSE(re.matchesEntirely(u""));
    EXPECT_TRUE(re.isMatch(u"a1"));
    // A null string is an empty text.
    EXPECT_TRUE(Regex("^$").matchesEntirely(QString()));
    EXPECT_EQ(Regex("x*").count(QString()), 1);
}

TEST(Regex, AllMatchesWalksLikeIcuFind)
{
    struct Case
    {
        const char *pattern;
        const char *text;
        std::vector<std::pair<qsizetype, qsizetype>> matches;
    };
    const Case cases[] = {
        {"a*", "baa", {{0, 0}, {1, 2}, {3, 0}}},
        {"aa", "aaaaa", {{0, 2}, {2, 2}}},
        {"x", "abc", {}},
        {"\\d", "1a2", {{0, 1}, {2, 1}}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.pattern);
        const Regex re(c.pattern);
        const QList<RegexMatch> all = re.allMatches(QString(c.text));
        ASSERT_EQ(all.size(), qsizetype(c.matches.size()));
        EXPECT_EQ(re.count(QString(c.text)), all.size());
        for (qsizetype i = 0; i < all.size(); ++i) {
            EXPECT_EQ(all[i].start(), c.matches[i].first);
            EXPECT_EQ(all[i].length(), c.matches[i].second);
        }
    }
}

TEST(Regex, TemplatesExpandAsIcuDoes)
{
    struct Case
    {
        const char *pattern;
        const char16_t *text;
        const char16_t *templ;
        const char16_t *expected; // nullptr: invalid template, text unchanged
    };
    const Case cases[] = {
        {"(\\w)(\\d)", u"a1 b2", u"$2$1", u"1a 2b"},
        {"(\\w)", u"ab", u"$10", u"a0b0"}, // only as many digits as name a group
        {"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)", u"abcdefghij", u"$10$1", u"ja"},
        {"(?<word>\\w+)", u"hi there", u"<${word}>", u"<hi> <there>"},
        {"(a)", u"a", u"\\$1", u"$1"},
        {"(a)", u"a", u"\\\\$1", u"\\a"},
        {"(a)", u"a", u"\\u00e9\\U0001F600", u"é😀"},
        // A failed escape swallows what it read, up to the first non-digit.
        {"(a)", u"a", u"x\\u00gyz", u"xyz"},
        {"(a)", u"a", u"x\\U0011FFFFy", u"xy"}, // beyond Unicode
        {"(a)", u"a", u"x\\u12", u"x"},
        {"(a)", u"a", u"\\n", u"n"}, // "\" quotes, it makes no control character
        {"(a)", u"a", u"$0$0", u"aa"},
        {"(a)|(b)", u"ab", u"[$2]", u"[][b]"}, // a group that took no part is empty
        {"a", u"a", u"x\\", u"x"},             // a trailing backslash stands for nothing
        {"(a)", u"a", u"$", nullptr},
        {"(a)", u"a", u"$x", nullptr},
        {"(a)", u"a", u"$2", nullptr},
        {"(a)", u"a", u"${nope}", nullptr},
        {"(a)", u"a", u"${a", nullptr},
    };
    for (const auto &c : cases) {
        const QString text = QString::fromUtf16(c.text);
        const QString templ = QString::fromUtf16(c.templ);
        SCOPED_TRACE(std::string(c.pattern) + " -> " + templ.toStdString());
        const Regex re(c.pattern);
        ASSERT_TRUE(re.isValid());
        bool icuOk = false;
        const QString icu = icuReplaceAll(c.pattern, text, templ, &icuOk);
        EXPECT_EQ(icuOk, c.expected != nullptr);
        const tl::RegexTemplate parsed(re, templ);
        EXPECT_EQ(parsed.isValid(), c.expected != nullptr);
        if (c.expected) {
            const QString expected = QString::fromUtf16(c.expected);
            EXPECT_EQ(icu, expected);
            EXPECT_EQ(re.replaceAll(text, templ), expected);
            EXPECT_EQ(re.replaceAll(text, parsed), expected);
            const auto m = re.match(text);
            ASSERT_TRUE(m);
            EXPECT_EQ(text.first(m->start()) + re.expandTemplate(*m, text, templ) +
                          text.sliced(m->end()),
                      re.replaceFirst(text, templ));
        } else {
            EXPECT_EQ(re.replaceAll(text, templ), text);
            EXPECT_EQ(re.replaceFirst(text, templ), text);
            EXPECT_EQ(re.expandTemplate(*re.match(text), text, templ), QString());
        }
    }
}

TEST(Regex, ReplaceAllHandlesEmptyMatchesLikeIcu)
{
    for (const char *pattern : {"a*", "\\b", "$", "^", "x?"}) {
        SCOPED_TRACE(pattern);
        bool ok = false;
        const QString text = "baa c";
        EXPECT_EQ(Regex(pattern).replaceAll(text, "-"), icuReplaceAll(pattern, text, "-", &ok));
    }
}

TEST(Regex, ReplaceAnswersTheSameStringWhenNothingMatches)
{
    const QString text = "nothing here";
    const QString out = Regex("x").replaceAll(text, "y");
    EXPECT_EQ(out.constData(), text.constData()); // shared, not copied
}

TEST(Regex, ReplaceMatchesIsTheLastToFirstEdit)
{
    struct Case
    {
        const char *pattern;
        const char *text;
    };
    const Case cases[] = {
        {"\\d+", "a1 bb22 ccc333"}, {"b", "abcabc"}, {"x*", "axb"}, {"z", "abc"}, {"", ""}};
    // Grows even numbers, keeps odd ones: changes length both ways.
    auto edit = [](QStringView m) -> std::optional<QString> {
        if (m.size() % 2 == 1)
            return std::nullopt;
        return QString("<%1>").arg(m.toString().repeated(3));
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.pattern);
        const Regex re(c.pattern);
        const QString text = c.text;
        // The reference: edit in place, from the last match to the first.
        QString inPlace = text;
        const QList<RegexMatch> matches = re.allMatches(text);
        for (qsizetype i = matches.size() - 1; i >= 0; --i) {
            if (const auto r = edit(matches[i].captured(text)))
                inPlace.replace(matches[i].start(), matches[i].length(), *r);
        }
        std::vector<qsizetype> order;
        const QString out = re.replaceMatches(text, [&](const RegexMatch &m, QStringView t) {
            EXPECT_EQ(t, text);
            order.push_back(m.start());
            return edit(m.captured(t));
        });
        EXPECT_EQ(out, inPlace);
        ASSERT_EQ(order.size(), size_t(matches.size()));
        EXPECT_TRUE(std::is_sorted(order.rbegin(), order.rend())) << "last match first";
    }
}

TEST(Regex, ReplaceWhileMatchingStartsAgainFromTheBeginning)
{
    // Each replacement makes a new match to its left, which one pass misses;
    // more templates are checked against the plain loop below.
    EXPECT_EQ(Regex("ab").replaceWhileMatching("aaab", "b"), "b");
    EXPECT_EQ(Regex("ab").replaceAll("aaab", "b"), "aab");

    // Nested parentheses resolve from the inside out.
    const Regex inner(R"(\((\w*)\))");
    EXPECT_EQ(inner.replaceWhileMatching("x(a(b)c)y",
                                         [](const RegexMatch &m, QStringView t) {
                                             return m.captured(t, 1).toString().toUpper();
                                         }),
              "xABCy");
}

// The plain rule, round by round from the beginning, against the engine's
// loop, which may start later when the pattern bounds how far it reads.
TEST(Regex, ReplaceWhileMatchingAgreesWithThePlainLoop)
{
    struct Case
    {
        const char16_t *pattern;
        RegexOptions options;
        const char16_t *templ;
    };
    const Case cases[] = {
        {u"ab", None, u"b"},         {u"ab", None, u"ba"},
        {u"(a)(b)", None, u"$2"},    {u"a{2}b?", None, u"b"},
        {u"[ab]{1,3}c", None, u"c"}, {u"ss", Caseless, u"s"},
        {u"ß", Caseless, u"s"},      {u"(?:a|bb|\\x{1F600})b", None, u"a"},
        {u"\\p{L}.b", None, u"b"},   {u".b", None, u"b"},
        {u"b a", None, u"a"},        {u"\\x61\\x62", None, u"b"},
        {u"a+b", None, u"b"}, // unbounded: plain restarts
        {u"b(?=a)", None, u"a"},     {u"\\ba", None, u"b"},
        {u"a$", Lines, u"\n"},
    };
    const char16_t *alphabet[] = {u"a", u"b", u"c", u"ß", u"S", u"s", u"😀", u" ", u"\n"};
    uint32_t seed = 12345;
    auto next = [&] {
        seed = seed * 1664525u + 1013904223u;
        return seed >> 8;
    };
    for (const auto &c : cases) {
        const Regex re(QString::fromUtf16(c.pattern), c.options);
        ASSERT_TRUE(re.isValid());
        const QString templ = QString::fromUtf16(c.templ);
        for (int sample = 0; sample < 200; ++sample) {
            QString text;
            const int length = int(next() % 24);
            for (int k = 0; k < length; ++k)
                text += QString::fromUtf16(alphabet[next() % std::size(alphabet)]);
            QString plain = text;
            for (int round = 0; round < 1000; ++round) {
                const auto m = re.match(plain);
                if (!m)
                    break;
                plain.replace(m->start(), m->length(), re.expandTemplate(*m, plain, templ));
            }
            SCOPED_TRACE(QString::fromUtf16(c.pattern).toStdString() + " on " + text.toStdString());
            ASSERT_EQ(re.replaceWhileMatching(text, templ), plain);
        }
    }
}

TEST(Regex, ReplaceWhileMatchingStopsARunawayLoop)
{
    // The same text again: it would find the same match forever.
    EXPECT_EQ(Regex("a").replaceWhileMatching("xay", "a"), "xay");
    // Growth without end.
    const QString grown = Regex("a").replaceWhileMatching("a", "aa");
    EXPECT_GT(grown.size(), 1);
    EXPECT_LE(grown.size(), Regex::maxReplaceRounds(1) + 1);
    // A cycle of two texts ends after the bound of rounds.
    qsizetype rounds = 0;
    const QString cycled =
        Regex("ab|ba").replaceWhileMatching("ab", [&](const RegexMatch &m, QStringView t) {
            ++rounds;
            QString s = m.capturedString(t);
            std::swap(s[0], s[1]);
            return s;
        });
    EXPECT_EQ(rounds, Regex::maxReplaceRounds(2));
    EXPECT_TRUE(cycled == "ab" || cycled == "ba");
}

TEST(Regex, EscapedLiteralsMatchThemselves)
{
    for (const char16_t *lit : {u"a.b*c", u"[x](y){1}", u"^$|?+\\", u"é 😀 #tag", u""}) {
        const QString literal = QString::fromUtf16(lit);
        SCOPED_TRACE(literal.toStdString());
        const Regex re(Regex::escapePattern(literal));
        ASSERT_TRUE(re.isValid());
        EXPECT_TRUE(re.matchesEntirely(literal));
        EXPECT_EQ(Regex("X").replaceAll("aXb", Regex::escapeTemplate("$1\\" + literal)),
                  "a$1\\" + literal + "b");
    }
}

TEST(Regex, RuleTablesApplyInOrder)
{
    static const tl::RegexRule rules[] = {
        {Regex("\\s+"), " "},
        {Regex("^ | $", Lines), ""},
        {Regex("(\\w+) (\\w+)"), "$2 $1"},
    };
    EXPECT_EQ(tl::applyRules("  one \t two  ", rules), "two one");
}

TEST(Regex, SharedAcrossThreads)
{
    const Regex re(R"((\w+)@(\w+))", Caseless);
    QString text;
    for (int i = 0; i < 200; ++i)
        text += QString("user%1@host%1, ").arg(i);
    std::vector<std::thread> threads;
    std::vector<int> failures(4, 0);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            const Regex copy = re; // copies share the compiled pattern
            for (int round = 0; round < 50; ++round) {
                const QList<RegexMatch> all = copy.allMatches(text);
                if (all.size() != 200 || all[7].captured(text, 2) != u"host7")
                    ++failures[t];
                if (copy.replaceAll(text, "$2").count('@') != 0)
                    ++failures[t];
            }
        });
    }
    for (auto &th : threads)
        th.join();
    EXPECT_EQ(failures, std::vector<int>(4, 0));
}

// Patterns that begin with literal text are searched by that text; the
// matches must be those of ICU's find() all the same.
TEST(Regex, PrefixSearchFindsWhatIcuFinds)
{
    const QString text = QString::fromUtf16(
        u"<li>one</li><li>two<ol><li>x</li></ol></li>\n<LI class=\"tl_checkbox\"> a\n"
        u"[[wiki]] `[[code]]` .[[dot]] [^ note] [^1]: def ==mark== {==no==} a==no==\n"
        u"```\nfence\n```\n~~~\ntilde\n~~~\n<IMG src=\"a\"> <img  src=\"b\"> <\u0130mg src=\"c\">\n"
        u"## Title [anchor]\n#no space\n{{PageBreak}}\n{{pagebrea\u212A}}\n<<fnote \"x\">>\n"
        u"- [ ]\ttask\n- [x] done\n<h1 id=\"a\">T</h1> \uFB00\uFB01 ff fi FFI \U0001F600<li>");
    struct Case
    {
        const char16_t *pattern;
        RegexOptions options;
    };
    const Case cases[] = {
        {u"<li>((?!<\\/li>).)*?(<ol>)", Dot},
        {u"(<li class=\"tl_checkbox.*?>) ", None},
        {u"<li class", Caseless},
        {u"(?<![`.*|\\\\])(\\[\\[([^\\[\\n]+?)\\]\\])(?!.*`)", Lines},
        {u"\\[\\^ ?[^\\]]+?\\](?!:)", Dot},
        {u"(?<![\\w{])(==([^\\n]+?)==)\\W", Dot},
        {u"\\n(`{3,}?)[a-zA-Z0-9]*\\s*\\n.*?\\n\\1", Dot},
        {u"\\n(~{3,}?)\\s*\\n.*?\\n\\1", Dot},
        {u"^#+ ?(.+?)(\\[).+?(\\])([\\s#]*)$", Lines},
        {u"^\\{\\{pagebreak\\}\\}\\s*$", Caseless | Lines},
        {u"\\{\\{pagebreak", Caseless},
        {u"<img .*?src=\"(.*?)\"", Caseless},
        {u"<<fnote \"([^\"]+?)\">>", Dot},
        {u"(- \\[.\\])\\s+?", None},
        {u"<h1.*?>(.+?)</h1>", Lines},
        {u"ab|<li>", None},    // alternation: no prefix
        {u"(?:<l|<h)i", None}, // alternation in a group
        {u"(<li>)?x", None},   // an optional group
        {u"<l*i", None},       // an optional character
        {u"(?i)<LI>", None},   // inline flags
        {u"\\u00e9|x", None},
        {u"ff", Caseless}, // folds into one character
        {u" ffi", Caseless},
        {u"\\Qa|b\\E", None},
        {u"[]a]", None},
        {u"\\G<li>", None},
        {u"`.+?`", Lines},
    };
    for (const Case &c : cases) {
        const QString pattern = QString::fromUtf16(c.pattern);
        SCOPED_TRACE(pattern.toStdString());
        const Regex re(pattern, c.options);
        IcuSearch icu(pattern, c.options, text);
        std::vector<std::vector<int32_t>> expected;
        while (icu.matcher->find(icu.status))
            expected.push_back(icu.groups());
        const QList<RegexMatch> all = re.allMatches(text);
        ASSERT_EQ(all.size(), qsizetype(expected.size()));
        for (qsizetype i = 0; i < all.size(); ++i) {
            for (int g = 0; g <= all[i].groupCount(); ++g) {
                EXPECT_EQ(all[i].groupStart(g), expected[i][2 * g]);
                EXPECT_EQ(all[i].groupEnd(g), expected[i][2 * g + 1]);
            }
        }
        // From a position, and at a position.
        for (qsizetype from = 0; from <= text.size(); ++from) {
            const auto m = re.match(text, from);
            const bool found = icu.matcher->find(from, icu.status);
            ASSERT_EQ(m.has_value(), found);
            if (found) {
                EXPECT_EQ(m->start(), icu.matcher->start(icu.status));
            }
            const auto at = re.matchAt(text, from);
            ASSERT_EQ(at.has_value(), bool(icu.matcher->lookingAt(from, icu.status)));
            if (at) {
                EXPECT_EQ(at->end(), icu.matcher->end(icu.status));
            }
        }
    }
}
