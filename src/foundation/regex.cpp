#include "foundation/regex.h"

#include <QStringMatcher>
#include <climits>
#include <mutex>
#include <spdlog/spdlog.h>
#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>
#include <vector>

namespace tl {

struct Regex::Compiled
{
    QString pattern;
    RegexOptions options;
    std::unique_ptr<icu::RegexPattern> icu; // null when the pattern is invalid
    int groupCount = 0;
    // The most UTF-16 units a match attempt can read from its start, when the
    // pattern bounds it (see ReachReader); -1 when it does not.
    qsizetype reach = -1;
    // Literal text every match begins with (see PrefixReader); empty when the
    // pattern promises none. Searched with its skip table made once.
    QString prefix;
    QStringMatcher prefixMatcher;

    // Matchers are costly to make and not shareable between threads: each call
    // borrows an idle one or makes its own.
    mutable std::mutex mutex;
    mutable std::vector<std::unique_ptr<icu::RegexMatcher>> idle;
};

namespace {

constexpr size_t kMaxIdleMatchers = 8;

const icu::UnicodeString &emptyText()
{
    static const icu::UnicodeString empty;
    return empty;
}

// A matcher set on a text that it reads in place. Not movable: the matcher
// keeps the address of the aliasing string.
class Search
{
public:
    Search(const Regex::Compiled *c, QStringView text) : c(c), text(text)
    {
        if (!c || !c->icu)
            return;
        if (text.size() > INT32_MAX) {
            spdlog::warn("Regular expression {}: text of {} characters is too long to search",
                         c->pattern.toStdString(), text.size());
            return;
        }
        {
            std::lock_guard lock(c->mutex);
            if (!c->idle.empty()) {
                m = std::move(c->idle.back());
                c->idle.pop_back();
            }
        }
        UErrorCode status = U_ZERO_ERROR;
        if (!m) {
            m.reset(c->icu->matcher(status));
            if (U_FAILURE(status)) {
                spdlog::warn("Regular expression {}: no matcher ({})", c->pattern.toStdString(),
                             u_errorName(status));
                m.reset();
                return;
            }
        }
        alias.setTo(false, reinterpret_cast<const UChar *>(text.utf16()), int32_t(text.size()));
        m->reset(alias);
    }
    ~Search()
    {
        if (!m)
            return;
        m->reset(emptyText());
        std::lock_guard lock(c->mutex);
        if (c->idle.size() < kMaxIdleMatchers)
            c->idle.push_back(std::move(m));
    }
    Search(const Search &) = delete;
    Search &operator=(const Search &) = delete;

    bool ok() const { return m != nullptr; }

    // Next match after the previous one, or the first at or after `from`.
    bool find(qsizetype from = -1)
    {
        if (!m)
            return false;
        if (!c->prefix.isEmpty())
            return findFromPrefix(from >= 0 ? from : next);
        UErrorCode status = U_ZERO_ERROR;
        const bool found = from >= 0 ? m->find(int64_t(from), status) : m->find(status);
        return checked(found, status);
    }
    // A match that begins exactly at `at`.
    bool lookingAt(qsizetype at)
    {
        if (!m)
            return false;
        UErrorCode status = U_ZERO_ERROR;
        const bool found = m->lookingAt(int64_t(at), status);
        return checked(found, status);
    }
    bool matchesEntirely()
    {
        if (!m)
            return false;
        UErrorCode status = U_ZERO_ERROR;
        const bool found = m->matches(status);
        return checked(found, status);
    }

    RegexMatch current() const
    {
        RegexMatch match;
        const int groups = m->groupCount();
        match.groups.resize(groups + 1);
        for (int g = 0; g <= groups; ++g) {
            UErrorCode status = U_ZERO_ERROR;
            const int32_t start = m->start(g, status);
            const int32_t end = m->end(g, status);
            if (U_SUCCESS(status) && start >= 0)
                match.groups[g] = {start, end - start};
        }
        return match;
    }

private:
    // ICU tries a match at every position that can begin one, which for a
    // pattern like "<li class=..." is every "<" of a page. Only where the
    // prefix stands can a match begin, so the attempts go there alone; an
    // attempt at one position is what find() makes at each, and the walk
    // is left to right as find()'s, so the matches are the same. A match
    // holds the prefix, so it is never empty and the next search starts at
    // its end.
    bool findFromPrefix(qsizetype from)
    {
        for (qsizetype at = candidate(from); at >= 0; at = candidate(at + 1)) {
            UErrorCode status = U_ZERO_ERROR;
            const bool found = m->lookingAt(int64_t(at), status);
            if (U_FAILURE(status))
                return checked(found, status);
            if (found) {
                next = m->end(status);
                return true;
            }
        }
        return false;
    }

    // The first position at or after `from` where the prefix may stand.
    qsizetype candidate(qsizetype from) const
    {
        const QString &prefix = c->prefix;
        if (from > text.size())
            return -1;
        if (!(c->options & RegexOption::CaseInsensitive)) {
            return prefix.size() == 1 ? text.indexOf(prefix.front(), from)
                                      : c->prefixMatcher.indexIn(text, from);
        }
        // The prefix begins with a character that only matches itself (see
        // PrefixReader); the rest is compared by ASCII case. Any other
        // character may fold into several, so it ends the comparison with a
        // possible match.
        for (qsizetype at = text.indexOf(prefix.front(), from); at >= 0;
             at = text.indexOf(prefix.front(), at + 1)) {
            bool possible = true;
            for (qsizetype k = 1; k < prefix.size() && possible; ++k) {
                if (at + k >= text.size()) {
                    possible = false;
                    break;
                }
                const QChar t = text[at + k];
                if (t.unicode() > 0x7f)
                    break;
                possible = t.toLower() == prefix[k].toLower();
            }
            if (possible)
                return at;
        }
        return -1;
    }

    bool checked(bool found, UErrorCode status)
    {
        if (U_FAILURE(status)) {
            // A run-time failure (stack or time limit) counts as no match.
            spdlog::warn("Regular expression {}: search failed ({})", c->pattern.toStdString(),
                         u_errorName(status));
            return false;
        }
        return found;
    }

    const Regex::Compiled *c;
    QStringView text;
    qsizetype next = 0; // where the search after the last match starts
    std::unique_ptr<icu::RegexMatcher> m;
    icu::UnicodeString alias;
};

uint32_t icuFlags(RegexOptions options)
{
    uint32_t flags = 0;
    if (options & RegexOption::DotMatchesNewline)
        flags |= UREGEX_DOTALL;
    if (options & RegexOption::AnchorsMatchLines)
        flags |= UREGEX_MULTILINE;
    if (options & RegexOption::CaseInsensitive)
        flags |= UREGEX_CASE_INSENSITIVE;
    return flags;
}

char32_t codePointAt(QStringView s, qsizetype &i)
{
    const char16_t lead = s[i].unicode();
    ++i;
    if (QChar::isHighSurrogate(lead) && i < s.size() && QChar::isLowSurrogate(s[i].unicode())) {
        const char16_t trail = s[i].unicode();
        ++i;
        return QChar::surrogateToUcs4(lead, trail);
    }
    return lead;
}

// A replacement template taken apart once: literal text, then a group, and so
// on. Group -1 marks a piece that is only literal.
struct TemplatePiece
{
    QString literal;
    int group = -1;
};
using ParsedTemplate = std::vector<TemplatePiece>;

// "\u" with 4 or "\U" with 8 hexadecimal digits at `at`. ICU swallows what a
// failed escape has read, the first character that is not a digit included,
// and writes nothing for it: `consumed` counts those characters either way.
std::optional<char32_t> hexEscape(QStringView t, qsizetype at, int digits, qsizetype &consumed)
{
    char32_t value = 0;
    consumed = 0;
    for (int k = 0; k < digits; ++k) {
        if (at + k >= t.size())
            return std::nullopt;
        const char16_t ch = t[at + k].unicode();
        ++consumed;
        int digit = -1;
        if (ch >= u'0' && ch <= u'9')
            digit = ch - u'0';
        else if (ch >= u'a' && ch <= u'f')
            digit = ch - u'a' + 10;
        else if (ch >= u'A' && ch <= u'F')
            digit = ch - u'A' + 10;
        if (digit < 0)
            return std::nullopt;
        value = value * 16 + char32_t(digit);
    }
    if (value >= 0x110000)
        return std::nullopt;
    return value;
}

std::optional<ParsedTemplate> parseTemplate(const Regex::Compiled &c, const QString &templ)
{
    ParsedTemplate pieces(1);
    auto fail = [&](const char *why) -> std::optional<ParsedTemplate> {
        spdlog::warn("Regular expression {}: replacement template \"{}\" {}",
                     c.pattern.toStdString(), templ.toStdString(), why);
        return std::nullopt;
    };
    const QStringView t(templ);
    qsizetype i = 0;
    while (i < t.size()) {
        const QChar ch = t[i];
        if (ch == u'\\') {
            ++i;
            if (i >= t.size())
                break; // a lone backslash at the end stands for nothing
            if (t[i] == u'u' || t[i] == u'U') {
                qsizetype consumed = 0;
                if (const auto cp = hexEscape(t, i + 1, t[i] == u'u' ? 4 : 8, consumed))
                    pieces.back().literal.append(QString::fromUcs4(&*cp, 1));
                i += 1 + consumed;
                continue;
            }
            pieces.back().literal.append(t[i]); // the trail of a pair follows next round
            ++i;
            continue;
        }
        if (ch != u'$') {
            pieces.back().literal.append(ch);
            ++i;
            continue;
        }
        ++i;
        int group = 0;
        if (i < t.size() && t[i] == u'{') {
            const qsizetype close = t.indexOf(u'}', i + 1);
            if (close < 0)
                return fail("has an unclosed group name");
            const QStringView name = t.sliced(i + 1, close - i - 1);
            for (QChar n : name) {
                if (!((n >= u'A' && n <= u'Z') || (n >= u'a' && n <= u'z') ||
                      (n >= u'0' && n <= u'9')))
                    return fail("has an invalid group name");
            }
            UErrorCode status = U_ZERO_ERROR;
            const icu::UnicodeString uname(false, reinterpret_cast<const UChar *>(name.utf16()),
                                           int32_t(name.size()));
            group = name.isEmpty() ? 0 : c.icu->groupNumberFromName(uname, status);
            if (U_FAILURE(status) || group <= 0)
                return fail("names a group that does not exist");
            i = close + 1;
        } else {
            // As many digits as still name an existing group.
            int digitsTaken = 0;
            while (i < t.size()) {
                qsizetype next = i;
                const char32_t cp = codePointAt(t, next);
                if (!u_isdigit(UChar32(cp)))
                    break;
                const int value = u_charDigitValue(UChar32(cp));
                if (group * 10 + value > c.groupCount)
                    break;
                group = group * 10 + value;
                ++digitsTaken;
                i = next;
            }
            if (digitsTaken == 0) {
                qsizetype next = i;
                if (i < t.size() && u_isdigit(UChar32(codePointAt(t, next))))
                    return fail("names a group that does not exist");
                return fail("has a \"$\" that names no group (write \\$)");
            }
        }
        pieces.back().group = group;
        pieces.emplace_back();
    }
    return pieces;
}

void appendExpansion(QString &out, const ParsedTemplate &pieces, const RegexMatch &match,
                     QStringView text)
{
    for (const TemplatePiece &piece : pieces) {
        out.append(piece.literal);
        if (piece.group >= 0)
            out.append(match.captured(text, piece.group));
    }
}

// A conservative reading of a pattern, to bound how far a match attempt reads
// from its start. Only literals, escapes of one character, sets, ".", groups,
// alternation and bounded quantifiers are understood; anything else (open
// repetition, anchors, word boundaries, lookaround, back references, inline
// flags) answers "unbounded". Every code point atom counts 2 units, every
// literal its own units, or 6 when case-insensitive, since a folded character
// can match up to three code points ("ΐ").
class ReachReader
{
public:
    ReachReader(QStringView p, bool caseless) : p(p), caseless(caseless) {}

    std::optional<qsizetype> read()
    {
        const auto r = alternation();
        if (!r || i != p.size())
            return std::nullopt;
        return r;
    }

private:
    static constexpr qsizetype kLimit = 1 << 20;

    std::optional<qsizetype> alternation()
    {
        qsizetype best = 0;
        for (;;) {
            const auto r = sequence();
            if (!r)
                return std::nullopt;
            best = std::max(best, *r);
            if (i < p.size() && p[i] == u'|') {
                ++i;
                continue;
            }
            return best;
        }
    }

    std::optional<qsizetype> sequence()
    {
        qsizetype total = 0;
        while (i < p.size() && p[i] != u'|' && p[i] != u')') {
            const auto a = atom();
            if (!a)
                return std::nullopt;
            const auto times = quantifier();
            if (!times)
                return std::nullopt;
            total += *a * *times;
            if (total > kLimit)
                return std::nullopt;
        }
        return total;
    }

    std::optional<qsizetype> atom()
    {
        const QChar c = p[i];
        if (c == u'(') {
            ++i;
            if (p.sliced(i).startsWith(u"?:")) {
                i += 2;
            } else if (p.sliced(i).startsWith(u"?<") && i + 2 < p.size() && p[i + 2].isLetter()) {
                const qsizetype close = p.indexOf(u'>', i);
                if (close < 0)
                    return std::nullopt;
                i = close + 1;
            } else if (i < p.size() && p[i] == u'?') {
                return std::nullopt; // lookaround, inline flags, atomic groups
            }
            const auto inner = alternation();
            if (!inner || i >= p.size() || p[i] != u')')
                return std::nullopt;
            ++i;
            return inner;
        }
        if (c == u'[')
            return set();
        if (c == u'.') {
            ++i;
            return 2;
        }
        if (c == u'\\')
            return escape();
        if (QStringView(u"^$*+?{}]").contains(c))
            return std::nullopt;
        const qsizetype units = c.isHighSurrogate() && i + 1 < p.size() ? 2 : 1;
        i += units;
        return caseless ? 6 : units;
    }

    std::optional<qsizetype> set()
    {
        int depth = 0;
        while (i < p.size()) {
            const QChar c = p[i++];
            if (c == u'\\') {
                if (i < p.size() && (p[i] == u'Q' || p[i] == u'E'))
                    return std::nullopt;
                ++i;
            } else if (c == u'[') {
                ++depth;
            } else if (c == u']' && --depth == 0) {
                return 2;
            }
        }
        return std::nullopt;
    }

    std::optional<qsizetype> escape()
    {
        ++i;
        if (i >= p.size())
            return std::nullopt;
        const QChar c = p[i++];
        if (QStringView(u"dDwWsShHvVntrfeaN").contains(c) || c == u'p' || c == u'P' || c == u'x' ||
            c == u'u' || c == u'U' || c == u'0' || c == u'c') {
            // One code point; skip what the escape carries.
            if (i < p.size() && p[i] == u'{') {
                const qsizetype close = p.indexOf(u'}', i);
                if (close < 0)
                    return std::nullopt;
                i = close + 1;
            } else if (c == u'x') {
                skipDigits(2, 16);
            } else if (c == u'u') {
                i += 4;
            } else if (c == u'U') {
                i += 8;
            } else if (c == u'c') {
                i += 1;
            } else if (c == u'0') {
                skipDigits(3, 8);
            } else if (c == u'p' || c == u'P' || c == u'N') {
                i += 1; // \pL
            }
            if (i > p.size())
                return std::nullopt;
            return caseless ? 6 : 2;
        }
        if (c.isLetterOrNumber())
            return std::nullopt; // \b \A \z \G \R \X \Q, back references
        return caseless ? 6 : 2;
    }

    void skipDigits(int most, int base)
    {
        for (int k = 0; k < most && i < p.size(); ++k, ++i) {
            const int digit = QChar(p[i]).isDigit() ? p[i].digitValue()
                              : (p[i].toLower() >= u'a' && p[i].toLower() <= u'f')
                                  ? p[i].toLower().unicode() - u'a' + 10
                                  : -1;
            if (digit < 0 || digit >= base || p[i].unicode() > 0x7f)
                return;
        }
    }

    // The most times the atom just read may repeat.
    std::optional<qsizetype> quantifier()
    {
        if (i >= p.size())
            return 1;
        qsizetype times = 1;
        if (p[i] == u'?') {
            ++i;
        } else if (p[i] == u'*' || p[i] == u'+') {
            return std::nullopt;
        } else if (p[i] == u'{') {
            const qsizetype close = p.indexOf(u'}', i);
            if (close < 0)
                return std::nullopt;
            const QStringView body = p.sliced(i + 1, close - i - 1);
            const QStringView upper =
                body.contains(u',') ? body.sliced(body.indexOf(u',') + 1) : body;
            bool ok = false;
            times = upper.toLongLong(&ok);
            if (!ok || upper.isEmpty() || times > kLimit)
                return std::nullopt;
            i = close + 1;
        } else {
            return 1;
        }
        if (i < p.size() && (p[i] == u'?' || p[i] == u'+'))
            ++i; // lazy or possessive: same reach
        if (i < p.size() && QStringView(u"?*+{").contains(p[i]))
            return std::nullopt;
        return times;
    }

    QStringView p;
    bool caseless;
    qsizetype i = 0;
};

// A conservative reading of a pattern for the literal text that every match
// begins with. Zero-width openings ("^", lookaround) are stepped over; then
// literal characters (plain ASCII or escaped punctuation, \n, \t) are taken,
// through groups that occur exactly once and hold no alternation, until
// anything else. A character repeated at least n times gives n copies and
// ends the prefix. Alternation at the top level, \G (which depends on the
// previous match) and \Q quoting give no prefix at all. Case-insensitive
// patterns keep a prefix only when it starts with a character that is no
// letter, since letters may match folded characters of other lengths.
class PrefixReader
{
public:
    PrefixReader(QStringView p, bool caseless) : p(p), caseless(caseless) {}

    QString read()
    {
        const auto scan = scanGroup(0);
        if (!scan || scan->alternation || scan->close != p.size())
            return {};
        while (i < p.size() && (p[i] == u'^' || isLookaround(i))) {
            if (p[i] == u'^') {
                ++i;
                continue;
            }
            const auto inner = scanGroup(i + 1);
            if (!inner || inner->close >= p.size())
                return {};
            i = inner->close + 1;
            if (i < p.size() && isQuantifier(p[i]))
                return {};
        }
        QString prefix;
        while (i < p.size() && readPiece(prefix)) {
        }
        if (caseless && !prefix.isEmpty() && prefix.front().isLetter())
            return {};
        return prefix;
    }

private:
    struct GroupScan
    {
        qsizetype close; // the ")" that closes the group, or the pattern's end
        bool alternation;
    };

    static bool isQuantifier(QChar c) { return c == u'*' || c == u'+' || c == u'?' || c == u'{'; }

    bool isLookaround(qsizetype at) const
    {
        const QStringView rest = p.sliced(at);
        return rest.startsWith(u"(?=") || rest.startsWith(u"(?!") || rest.startsWith(u"(?<=") ||
               rest.startsWith(u"(?<!");
    }

    // From inside a group at `at` to its closing ")": whether it holds "|"
    // outside nested groups and sets. Nothing for a pattern this reading
    // does not follow.
    std::optional<GroupScan> scanGroup(qsizetype at) const
    {
        int depth = 0;
        bool alternation = false;
        for (qsizetype k = at; k < p.size(); ++k) {
            const QChar c = p[k];
            if (c == u'\\') {
                if (k + 1 < p.size() && (p[k + 1] == u'G' || p[k + 1] == u'Q'))
                    return std::nullopt;
                ++k;
            } else if (c == u'[') {
                const auto end = setEnd(k);
                if (!end)
                    return std::nullopt;
                k = *end;
            } else if (c == u'(') {
                ++depth;
            } else if (c == u')') {
                if (depth == 0)
                    return GroupScan{k, alternation};
                --depth;
            } else if (c == u'|' && depth == 0) {
                alternation = true;
            }
        }
        return depth == 0 ? std::optional(GroupScan{p.size(), alternation}) : std::nullopt;
    }

    // The "]" that closes the set opened at `at`. A "]" first in a set is
    // not followed: nothing.
    std::optional<qsizetype> setEnd(qsizetype at) const
    {
        int depth = 0;
        for (qsizetype k = at; k < p.size(); ++k) {
            const QChar c = p[k];
            if (c == u']' && (p[k - 1] == u'[' || (p[k - 1] == u'^' && p[k - 2] == u'[')))
                return std::nullopt;
            if (c == u'\\') {
                if (k + 1 < p.size() && p[k + 1] == u'Q')
                    return std::nullopt;
                ++k;
            } else if (c == u'[') {
                ++depth;
            } else if (c == u']' && --depth == 0) {
                return k;
            }
        }
        return std::nullopt;
    }

    // Adds the next piece of the prefix; false where the prefix ends.
    bool readPiece(QString &prefix)
    {
        const QChar c = p[i];
        if (c == u')') {
            ++i; // the end of a group entered below
            return true;
        }
        if (c == u'(')
            return enterGroup();
        const auto literal = literalAt();
        if (!literal)
            return false;
        if (i >= p.size() || !isQuantifier(p[i])) {
            prefix.append(*literal);
            return true;
        }
        const auto times = leastRepetitions();
        if (times)
            prefix.append(QString(*times, *literal));
        return false;
    }

    bool enterGroup()
    {
        const QStringView rest = p.sliced(i);
        qsizetype body = i + 1;
        if (rest.startsWith(u"(?:")) {
            body = i + 3;
        } else if (rest.startsWith(u"(?<") && rest.size() > 3 && rest[3].isLetter()) {
            body = p.indexOf(u'>', i) + 1;
        } else if (rest.startsWith(u"(?")) {
            return false;
        }
        const auto scan = scanGroup(body);
        if (!scan || scan->alternation || scan->close >= p.size() ||
            (scan->close + 1 < p.size() && isQuantifier(p[scan->close + 1])))
            return false;
        i = body;
        return true;
    }

    // The character that the literal at i stands for, stepping over it.
    std::optional<QChar> literalAt()
    {
        const QChar c = p[i];
        if (c == u'\\') {
            if (i + 1 >= p.size())
                return std::nullopt;
            const QChar e = p[i + 1];
            i += 2;
            if (e == u'n')
                return QChar(u'\n');
            if (e == u't')
                return QChar(u'\t');
            if (e.unicode() > 0x20 && e.unicode() < 0x7f && !e.isLetterOrNumber())
                return e;
            return std::nullopt;
        }
        if (c.unicode() < 0x20 || c.unicode() >= 0x7f || QStringView(u"^$.|?*+()[]{}").contains(c))
            return std::nullopt;
        ++i;
        return c;
    }

    // The least count of the quantifier at i: 1 for "+", n for "{n...}".
    std::optional<qsizetype> leastRepetitions() const
    {
        if (p[i] == u'+')
            return 1;
        if (p[i] != u'{')
            return std::nullopt;
        qsizetype k = i + 1;
        qsizetype n = 0;
        while (k < p.size() && p[k] >= u'0' && p[k] <= u'9' && n < 1000)
            n = n * 10 + (p[k++].unicode() - u'0');
        if (k == i + 1 || k >= p.size() || (p[k] != u',' && p[k] != u'}') || n == 0)
            return std::nullopt;
        return n;
    }

    QStringView p;
    bool caseless;
    qsizetype i = 0;
};

} // namespace

Regex::Regex() = default;

Regex::Regex(const QString &pattern, RegexOptions options)
{
    auto c = std::make_shared<Compiled>();
    c->pattern = pattern;
    c->options = options;
    UParseError where{};
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString source(reinterpret_cast<const UChar *>(pattern.constData()),
                                    int32_t(pattern.size()));
    c->icu.reset(icu::RegexPattern::compile(source, icuFlags(options), where, status));
    if (U_FAILURE(status)) {
        spdlog::warn("Invalid regular expression \"{}\": {} at line {}, offset {}",
                     pattern.toStdString(), u_errorName(status), where.line, where.offset);
        c->icu.reset();
    } else {
        UErrorCode countStatus = U_ZERO_ERROR;
        std::unique_ptr<icu::RegexMatcher> probe(c->icu->matcher(countStatus));
        c->groupCount = U_SUCCESS(countStatus) && probe ? probe->groupCount() : 0;
        if (probe)
            c->idle.push_back(std::move(probe));
        const bool caseless = bool(options & RegexOption::CaseInsensitive);
        c->reach = ReachReader(pattern, caseless).read().value_or(-1);
        c->prefix = PrefixReader(pattern, caseless).read();
        c->prefixMatcher.setPattern(c->prefix);
    }
    d = std::move(c);
}

bool Regex::isValid() const
{
    return d && d->icu;
}

const QString &Regex::pattern() const
{
    static const QString none;
    return d ? d->pattern : none;
}

RegexOptions Regex::options() const
{
    return d ? d->options : RegexOptions();
}

int Regex::groupCount() const
{
    return isValid() ? d->groupCount : 0;
}

int Regex::groupNumber(const QString &name) const
{
    if (!isValid() || name.isEmpty())
        return -1;
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString uname(reinterpret_cast<const UChar *>(name.constData()),
                                   int32_t(name.size()));
    const int32_t n = d->icu->groupNumberFromName(uname, status);
    return U_SUCCESS(status) && n > 0 ? n : -1;
}

std::optional<RegexMatch> Regex::match(QStringView text, qsizetype from) const
{
    if (from < 0 || from > text.size())
        return std::nullopt;
    Search s(d.get(), text);
    if (!s.find(from))
        return std::nullopt;
    return s.current();
}

std::optional<RegexMatch> Regex::matchAt(QStringView text, qsizetype at) const
{
    if (at < 0 || at > text.size())
        return std::nullopt;
    Search s(d.get(), text);
    if (!s.lookingAt(at))
        return std::nullopt;
    return s.current();
}

bool Regex::isMatch(QStringView text) const
{
    Search s(d.get(), text);
    return s.find(0);
}

bool Regex::matchesEntirely(QStringView text) const
{
    Search s(d.get(), text);
    return s.matchesEntirely();
}

QList<RegexMatch> Regex::allMatches(QStringView text) const
{
    QList<RegexMatch> matches;
    Search s(d.get(), text);
    while (s.find())
        matches.append(s.current());
    return matches;
}

qsizetype Regex::count(QStringView text) const
{
    qsizetype n = 0;
    Search s(d.get(), text);
    while (s.find())
        ++n;
    return n;
}

QString Regex::expandTemplate(const RegexMatch &match, QStringView text, const QString &templ) const
{
    if (!isValid())
        return {};
    const auto pieces = parseTemplate(*d, templ);
    if (!pieces)
        return {};
    QString out;
    appendExpansion(out, *pieces, match, text);
    return out;
}

QString Regex::replaceAll(const QString &text, const QString &templ) const
{
    if (!isValid())
        return text;
    const auto pieces = parseTemplate(*d, templ);
    if (!pieces)
        return text;
    QString out;
    qsizetype copied = 0;
    bool matched = false;
    Search s(d.get(), text);
    while (s.find()) {
        const RegexMatch m = s.current();
        if (!matched)
            out.reserve(text.size());
        matched = true;
        out.append(QStringView(text).sliced(copied, m.start() - copied));
        appendExpansion(out, *pieces, m, text);
        copied = m.end();
    }
    if (!matched)
        return text;
    out.append(QStringView(text).sliced(copied));
    return out;
}

QString Regex::replaceFirst(const QString &text, const QString &templ) const
{
    if (!isValid())
        return text;
    const auto pieces = parseTemplate(*d, templ);
    if (!pieces)
        return text;
    const auto m = match(text);
    if (!m)
        return text;
    QString out = text.first(m->start());
    appendExpansion(out, *pieces, *m, text);
    out.append(QStringView(text).sliced(m->end()));
    return out;
}

QString Regex::replaceMatches(const QString &text, const MatchEditor &editor) const
{
    return editMatches(text, allMatches(text), editor);
}

QString Regex::editMatches(const QString &text, const QList<RegexMatch> &matches,
                           const MatchEditor &editor)
{
    if (matches.isEmpty())
        return text;
    std::vector<std::optional<QString>> replacements(matches.size());
    bool changed = false;
    for (qsizetype i = matches.size() - 1; i >= 0; --i) {
        replacements[i] = editor(matches[i], text);
        changed = changed || replacements[i].has_value();
    }
    if (!changed)
        return text;
    QString out;
    out.reserve(text.size());
    qsizetype copied = 0;
    for (qsizetype i = 0; i < matches.size(); ++i) {
        const RegexMatch &m = matches[i];
        out.append(QStringView(text).sliced(copied, m.start() - copied));
        if (replacements[i])
            out.append(*replacements[i]);
        else
            out.append(m.captured(text));
        copied = m.end();
    }
    out.append(QStringView(text).sliced(copied));
    return out;
}

qsizetype Regex::maxReplaceRounds(qsizetype textLength)
{
    return 1000 + textLength;
}

QString Regex::replaceWhileMatching(const QString &text, const QString &templ) const
{
    if (!isValid())
        return text;
    const auto pieces = parseTemplate(*d, templ);
    if (!pieces)
        return text;
    return replaceWhileMatching(text, [&](const RegexMatch &m, QStringView current) {
        QString out;
        appendExpansion(out, *pieces, m, current);
        return out;
    });
}

QString Regex::replaceWhileMatching(const QString &text, const MatchReplacer &replacer) const
{
    if (!isValid())
        return text;
    // The rule is to search from the beginning each round. When the pattern
    // bounds how far an attempt reads (reach), an attempt starting at or
    // before start - reach read only the unchanged text before the last
    // replacement and failed there already, so the search may start after it.
    // Without a bound every round searches from the beginning.
    const qsizetype rounds = maxReplaceRounds(text.size());
    const qsizetype maxLength = 8 * text.size() + (1 << 16);
    QString current = text;
    qsizetype from = 0;
    for (qsizetype round = 0;; ++round) {
        const auto m = match(current, from);
        if (!m)
            return current;
        if (round == rounds) {
            spdlog::warn("Regular expression {}: still matching after {} replacements, stopped",
                         pattern().toStdString(), rounds);
            return current;
        }
        const QString replacement = replacer(*m, current);
        if (replacement == m->captured(current)) {
            spdlog::warn("Regular expression {}: replacement \"{}\" recreates its match, stopped",
                         pattern().toStdString(), replacement.toStdString());
            return current;
        }
        if (current.size() - m->length() + replacement.size() > maxLength) {
            spdlog::warn("Regular expression {}: text grew past {} characters, stopped",
                         pattern().toStdString(), maxLength);
            return current;
        }
        current.replace(m->start(), m->length(), replacement);
        // The attempt at start itself succeeded before, so it is searched again.
        from = d->reach < 0
                   ? 0
                   : std::max<qsizetype>(0, m->start() - std::max<qsizetype>(d->reach, 1) + 1);
        // Never inside a surrogate pair: the search from the beginning steps
        // over whole code points.
        if (from > 0 && from < current.size() && current[from].isLowSurrogate() &&
            current[from - 1].isHighSurrogate())
            --from;
    }
}

QString Regex::escapePattern(const QString &literal)
{
    static const QString special = QStringLiteral("\\^$.|?*+()[]{}");
    QString out;
    out.reserve(literal.size() * 2);
    for (QChar ch : literal) {
        if (special.contains(ch))
            out.append(u'\\');
        out.append(ch);
    }
    return out;
}

QString Regex::escapeTemplate(const QString &literal)
{
    QString out;
    out.reserve(literal.size() + 4);
    for (QChar ch : literal) {
        if (ch == u'\\' || ch == u'$')
            out.append(u'\\');
        out.append(ch);
    }
    return out;
}

QString applyRules(const QString &text, std::span<const RegexRule> rules)
{
    QString out = text;
    for (const RegexRule &rule : rules)
        out = rule.regex.replaceAll(out, rule.replacement);
    return out;
}

} // namespace tl
