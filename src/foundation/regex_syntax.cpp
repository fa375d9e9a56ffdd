#include "foundation/regex_syntax.h"

namespace tl::detail {

namespace {

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

std::optional<qsizetype> patternReach(QStringView pattern, bool caseless)
{
    return ReachReader(pattern, caseless).read();
}

QString literalPrefix(QStringView pattern, bool caseless)
{
    return PrefixReader(pattern, caseless).read();
}

} // namespace tl::detail
