#pragma once

// ICU regular expressions over QString's UTF-16 buffer, without copying it.
// Positions and lengths are UTF-16 code units, as ICU sees them. A Regex is
// compiled once, copied cheaply (the compiled form is shared) and may be used
// from several threads at once. An invalid pattern logs one line, answers
// isValid() false and finds nothing; no exception leaves this facility.

#include <QFlags>
#include <QList>
#include <QString>
#include <QStringView>
#include <QVarLengthArray>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace tl {

enum class RegexOption {
    NoOptions = 0,
    DotMatchesNewline = 1, // "." also matches line terminators
    AnchorsMatchLines = 2, // "^" and "$" match at every line start and end
    CaseInsensitive = 4,   // Unicode case folding
    // Each search gives up, finding nothing, after about a second of work:
    // for expressions made from outside text, which may backtrack for ages.
    TimeLimited = 8,
};
Q_DECLARE_FLAGS(RegexOptions, RegexOption)
Q_DECLARE_OPERATORS_FOR_FLAGS(RegexOptions)

// One match: group 0 is the whole match, groups 1..groupCount() the captures.
// A group that took no part in the match has start -1 and length 0.
struct RegexMatch
{
    struct Range
    {
        qsizetype start = -1;
        qsizetype length = 0;
    };
    QVarLengthArray<Range, 6> groups;

    qsizetype start() const { return groupStart(0); }
    qsizetype length() const { return groupLength(0); }
    qsizetype end() const { return groupEnd(0); }
    int groupCount() const { return int(groups.size()) - 1; }

    // -1 / 0 / -1 for a group that is out of range or did not participate.
    qsizetype groupStart(int n) const { return valid(n) ? groups[n].start : -1; }
    qsizetype groupLength(int n) const { return valid(n) ? groups[n].length : 0; }
    qsizetype groupEnd(int n) const { return valid(n) ? groups[n].start + groups[n].length : -1; }
    bool hasGroup(int n) const { return valid(n) && groups[n].start >= 0; }

    // The text of group n, a view into `text` (the text that was searched);
    // empty for a group that did not participate.
    QStringView captured(QStringView text, int n = 0) const
    {
        return hasGroup(n) ? text.mid(groups[n].start, groups[n].length) : QStringView();
    }
    QString capturedString(QStringView text, int n = 0) const
    {
        return captured(text, n).toString();
    }

private:
    bool valid(int n) const { return n >= 0 && n < groups.size(); }
};

class RegexTemplate;

class Regex
{
public:
    // Decides whether to replace one match, and with what: std::nullopt keeps
    // the matched text. `text` is the text being searched.
    using MatchEditor = std::function<std::optional<QString>(const RegexMatch &, QStringView text)>;
    // The replacement for one match of `text`.
    using MatchReplacer = std::function<QString(const RegexMatch &, QStringView text)>;

    Regex(); // invalid, finds nothing
    explicit Regex(const QString &pattern, RegexOptions options = RegexOption::NoOptions);

    bool isValid() const;
    const QString &pattern() const;
    RegexOptions options() const;
    // Number of capture groups in the pattern (0 when invalid).
    int groupCount() const;
    // Number of the named group "(?<name>...)", or -1.
    int groupNumber(const QString &name) const;

    // First match at or after `from` (lookbehind and \b still see the text
    // before `from`).
    std::optional<RegexMatch> match(QStringView text, qsizetype from = 0) const;
    // A match that begins exactly at `at`, as find() tries one there.
    std::optional<RegexMatch> matchAt(QStringView text, qsizetype at) const;
    bool isMatch(QStringView text) const;         // a match anywhere
    bool matchesEntirely(QStringView text) const; // the whole text matches
    // All matches, first to last, as ICU's find() walks them (an empty match
    // moves the next search on by one character).
    QList<RegexMatch> allMatches(QStringView text) const;
    qsizetype count(QStringView text) const;

    // Replacement templates (see RegexTemplate) come taken apart already, or
    // as text taken apart for this one call. An invalid template changes
    // nothing. Replace operations answer `text` itself (shared, not copied)
    // when nothing matches.
    QString expandTemplate(const RegexMatch &match, QStringView text, const QString &templ) const;
    QString replaceAll(const QString &text, const RegexTemplate &templ) const;
    QString replaceAll(const QString &text, const QString &templ) const;
    QString replaceFirst(const QString &text, const RegexTemplate &templ) const;
    QString replaceFirst(const QString &text, const QString &templ) const;

    // Edits every match of the original text. The editor is called from the
    // last match to the first, and the result is what editing the text in
    // place in that order gives: earlier ranges stay valid because matches
    // never overlap. Built in one pass, linear in the size of the text.
    QString replaceMatches(const QString &text, const MatchEditor &editor) const;
    // The same edit of matches found otherwise: in order, not overlapping.
    static QString editMatches(const QString &text, const QList<RegexMatch> &matches,
                               const MatchEditor &editor);

    // "As long as a match is found": replaces the first match, then searches
    // again from the beginning of the changed text, until nothing matches. A
    // replacement may create a new match anywhere, also before itself, and it
    // is found. Each round searches the whole text, so the cost is rounds x
    // text size. The loop stops, logging, when a replacement leaves the text
    // unchanged (it would find the same match forever), after
    // maxReplaceRounds(text) rounds, or when the text grows past a bound.
    QString replaceWhileMatching(const QString &text, const RegexTemplate &templ) const;
    QString replaceWhileMatching(const QString &text, const QString &templ) const;
    QString replaceWhileMatching(const QString &text, const MatchReplacer &replacer) const;
    static qsizetype maxReplaceRounds(qsizetype textLength);

    // Whether "." stops at the character: ICU's line ends.
    static bool isLineEnd(QChar c)
    {
        return (c >= u'\n' && c <= u'\r') || c == u'\u0085' || c == u'\u2028' || c == u'\u2029';
    }

    // A pattern matching `literal` exactly, and a template producing it.
    static QString escapePattern(const QString &literal);
    static QString escapeTemplate(const QString &literal);

    struct Compiled;

private:
    std::shared_ptr<const Compiled> d;
};

// A replacement template taken apart once, for the expression it was made
// for. It follows ICU: $n (as many digits as name an existing group),
// ${name}, "\" escapes the next character, \uhhhh and \Uhhhhhhhh. A template
// that names no existing group, or a "$" followed by neither a digit nor
// "{", is invalid: it logs one line and expands to nothing.
class RegexTemplate
{
public:
    RegexTemplate(); // invalid
    RegexTemplate(const Regex &regex, const QString &templ);

    bool isValid() const;
    // Appends the expansion for one match of `text`.
    void expandInto(QString &out, const RegexMatch &match, QStringView text) const;
    QString expanded(const RegexMatch &match, QStringView text) const;

    struct Piece;

private:
    std::shared_ptr<const std::vector<Piece>> d;
};

// One row of an ordered rule table: the table is applied top to bottom, each
// row replacing all its matches. The replacement is taken apart when the
// row is made.
struct RegexRule
{
    RegexRule(Regex regex, const QString &replacement)
        : regex(std::move(regex)), replacement(this->regex, replacement)
    {
    }
    Regex regex;
    RegexTemplate replacement;
};
QString applyRules(const QString &text, std::span<const RegexRule> rules);

} // namespace tl
