#include "foundation/regex.h"

#include "foundation/literal_finder.h"
#include "foundation/regex_syntax.h"

#include <climits>
#include <mutex>
#include <spdlog/spdlog.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>
#include <vector>

namespace tl {

struct Regex::Compiled
{
    QString pattern;
    RegexOptions options;
    std::unique_ptr<icu::RegexPattern> icu; // null when the pattern is invalid
    int groupCount = 0;
    // The most UTF-16 units a match attempt can read from its start, when the
    // pattern bounds it; -1 when it does not.
    qsizetype reach = -1;
    // Literal text every match begins with; empty when the pattern promises
    // none.
    LiteralFinder prefix;

    // Matchers are costly to make and not shareable between threads: each call
    // borrows an idle one or makes its own.
    mutable std::mutex mutex;
    mutable std::vector<std::unique_ptr<icu::RegexMatcher>> idle;
};

namespace {

constexpr size_t kMaxIdleMatchers = 8;
// ICU counts in steps of its engine that take about a millisecond each.
constexpr int32_t kTimeLimitSteps = 1000;

std::unique_ptr<icu::RegexMatcher> newMatcher(const Regex::Compiled &c, UErrorCode &status)
{
    std::unique_ptr<icu::RegexMatcher> matcher(c.icu->matcher(status));
    if (U_SUCCESS(status) && (c.options & RegexOption::TimeLimited))
        matcher->setTimeLimit(kTimeLimitSteps, status);
    return matcher;
}

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
            m = newMatcher(*c, status);
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
        if (!c->prefix.literal().isEmpty())
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
        const QString &prefix = c->prefix.literal();
        if (from > text.size())
            return -1;
        if (!(c->options & RegexOption::CaseInsensitive)) {
            return c->prefix.indexIn(text, from);
        }
        // The prefix begins with a character that only matches itself (see
        // PrefixReader); the rest is compared by ASCII case. Any other
        // character may fold into several, so it ends the comparison with a
        // possible match.
        // The places of the first two, when the second is ASCII.
        const char16_t second = prefix.size() > 1 ? prefix[1].toLower().unicode() : 0xffff;
        auto next = [&](qsizetype at) {
            if (second > 0x7f)
                return text.indexOf(prefix.front(), at);
            return indexOfCaselessPair(text, at, prefix.front().unicode(), second);
        };
        for (qsizetype at = next(from); at >= 0; at = next(at + 1)) {
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
        std::unique_ptr<icu::RegexMatcher> probe = newMatcher(*c, countStatus);
        c->groupCount = U_SUCCESS(countStatus) && probe ? probe->groupCount() : 0;
        if (probe)
            c->idle.push_back(std::move(probe));
        const bool caseless = bool(options & RegexOption::CaseInsensitive);
        c->reach = detail::patternReach(pattern, caseless).value_or(-1);
        c->prefix = LiteralFinder(detail::literalPrefix(pattern, caseless));
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
    return RegexTemplate(*this, templ).expanded(match, text);
}

QString Regex::replaceAll(const QString &text, const QString &templ) const
{
    return replaceAll(text, RegexTemplate(*this, templ));
}

QString Regex::replaceAll(const QString &text, const RegexTemplate &templ) const
{
    if (!isValid() || !templ.isValid())
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
        templ.expandInto(out, m, text);
        copied = m.end();
    }
    if (!matched)
        return text;
    out.append(QStringView(text).sliced(copied));
    return out;
}

QString Regex::replaceFirst(const QString &text, const QString &templ) const
{
    return replaceFirst(text, RegexTemplate(*this, templ));
}

QString Regex::replaceFirst(const QString &text, const RegexTemplate &templ) const
{
    if (!isValid() || !templ.isValid())
        return text;
    const auto m = match(text);
    if (!m)
        return text;
    QString out = text.first(m->start());
    templ.expandInto(out, *m, text);
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
    return replaceWhileMatching(text, RegexTemplate(*this, templ));
}

QString Regex::replaceWhileMatching(const QString &text, const RegexTemplate &templ) const
{
    if (!isValid() || !templ.isValid())
        return text;
    return replaceWhileMatching(
        text, [&](const RegexMatch &m, QStringView current) { return templ.expanded(m, current); });
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
