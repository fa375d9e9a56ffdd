#include "highlighter.h"

#include "foundation/regex.h"
#include "store/log.h"

#include <algorithm>
#include <vector>

namespace tl::editing {

namespace {

constexpr RegexOptions DotAll = RegexOption::DotMatchesNewline;
constexpr RegexOptions Lines = RegexOption::AnchorsMatchLines;
constexpr RegexOptions Insensitive = RegexOption::CaseInsensitive;
constexpr float Slant = 0.2f;

// The attributes of one range while the rules run, in positions of the range.
class Painter
{
public:
    Painter(QStringView text, const HighlightOptions &options)
        : text(text), options(options), chars(std::size_t(text.size()))
    {
        const double s = options.stroke;
        if (options.highlightMarkdown) {
            headIndent = measure(u"#### ", s) + (options.printing ? 2 * measure(u"#", s) : 0);
            hashWidth = measure(u"#", s);
            blankWidth = measure(u" ", s);
        }
        base.alignment = alignmentForString(text);
        base.lineHeightMultiple = options.lineHeightMultiple;
        base.headIndent = base.firstLineHeadIndent = headIndent;
        if (!options.printing && options.lineFragmentPadding <= 20)
            base.tailIndent = -headIndent;
        base.tabInterval = headIndent > 0 ? headIndent : 28;
        for (qsizetype start = 0; start <= text.size();) {
            qsizetype end = start;
            while (end < text.size() && !isParagraphSeparator(text.at(end)))
                ++end;
            if (end < text.size())
                end += text.at(end) == u'\r' && end + 1 < text.size() && text.at(end + 1) == u'\n'
                           ? 2
                           : 1;
            if (end == start && start > 0)
                break;
            paragraphs.append({start, end - start, base});
            if (end >= text.size())
                break;
            start = end;
        }
    }

    double measure(QStringView piece, double stroke) const
    {
        return options.width ? options.width(piece, stroke) : 8.0 * piece.size();
    }

    template <typename Change> void change(qsizetype start, qsizetype length, Change change)
    {
        const qsizetype end = std::min<qsizetype>(start + length, text.size());
        for (qsizetype i = std::max<qsizetype>(start, 0); i < end; ++i)
            change(chars[std::size_t(i)]);
    }
    void color(qsizetype start, qsizetype length, ColorRole role)
    {
        change(start, length, [role](CharacterStyle &c) { c.color = role; });
    }
    void color(const RegexMatch &m, int group, ColorRole role)
    {
        if (m.hasGroup(group))
            color(m.groupStart(group), m.groupLength(group), role);
    }
    void stroke(const RegexMatch &m, int group, float value)
    {
        if (m.hasGroup(group))
            change(m.groupStart(group), m.groupLength(group),
                   [value](CharacterStyle &c) { c.stroke = value; });
    }
    void slant(const RegexMatch &m, int group)
    {
        if (m.hasGroup(group))
            change(m.groupStart(group), m.groupLength(group),
                   [](CharacterStyle &c) { c.slant = Slant; });
    }
    void strike(const RegexMatch &m, int group, bool on)
    {
        if (m.hasGroup(group))
            change(m.groupStart(group), m.groupLength(group),
                   [on](CharacterStyle &c) { c.strike = on; });
    }
    void link(qsizetype start, qsizetype length, bool on)
    {
        change(start, length, [on](CharacterStyle &c) { c.link = on; });
    }
    ParagraphStyle &paragraphAt(qsizetype at)
    {
        auto it = std::upper_bound(paragraphs.begin(), paragraphs.end(), at,
                                   [](qsizetype a, const ParagraphRun &p) { return a < p.start; });
        return (it == paragraphs.begin() ? it : it - 1)->style;
    }
    // Wrapped lines of the paragraph align after `prefix`.
    void hangAfter(qsizetype paragraphAt_, QStringView prefix, qsizetype strokeAt)
    {
        const float strokeThere = strokeAt < text.size() ? chars[std::size_t(strokeAt)].stroke : 0;
        paragraphAt(paragraphAt_).headIndent = headIndent + measure(prefix, strokeThere);
    }

    QStringView text;
    const HighlightOptions &options;
    std::vector<CharacterStyle> chars;
    QList<ParagraphRun> paragraphs;
    ParagraphStyle base;
    double headIndent = 0, hashWidth = 0, blankWidth = 0;
};

using Style = std::function<void(Painter &, const RegexMatch &)>;

// One row of a highlighting table: matches holding one of `skipIfHolds`
// are left alone.
struct Rule
{
    Regex regex;
    QStringList skipIfHolds;
    Style style;
};

void apply(Painter &painter, const Rule &rule)
{
    for (const RegexMatch &m : rule.regex.allMatches(painter.text)) {
        if (m.length() == 0)
            continue;
        const QStringView matched = m.captured(painter.text);
        if (std::any_of(rule.skipIfHolds.begin(), rule.skipIfHolds.end(),
                        [&](const QString &s) { return matched.contains(s); }))
            continue;
        rule.style(painter, m);
    }
}

void applyAll(Painter &painter, const std::vector<Rule> &rules)
{
    for (const Rule &rule : rules)
        apply(painter, rule);
}

Rule rule(const char16_t *pattern, RegexOptions options, Style style,
          QStringList skip = QStringList())
{
    return Rule{Regex(QString::fromUtf16(pattern), options), std::move(skip), std::move(style)};
}

const QStringList BlankLine{QStringLiteral("\n\n")};

// Faded as a whole, with some captures in their own colours.
Style faded(std::initializer_list<std::pair<int, ColorRole>> captures = {})
{
    std::vector<std::pair<int, ColorRole>> list(captures);
    return [list](Painter &p, const RegexMatch &m) {
        p.color(m, 0, ColorRole::Faded);
        for (const auto &[group, role] : list)
            p.color(m, group, role);
    };
}

Style colored(ColorRole role)
{
    return [role](Painter &p, const RegexMatch &m) { p.color(m, 0, role); };
}

void emphasis(Painter &p, const RegexMatch &m)
{
    const qsizetype marks = m.groupLength(2);
    if (marks >= 2)
        p.stroke(m, 3, float(p.options.stroke + 1.0));
    if (marks == 1 || marks == 3)
        p.slant(m, 3);
    p.color(m, 2, ColorRole::Faded);
    p.color(m, 4, ColorRole::Faded);
}

void heading(Painter &p, const RegexMatch &m)
{
    const qsizetype level = m.groupLength(1);
    ParagraphStyle &paragraph = p.paragraphAt(m.start());
    paragraph.firstLineHeadIndent = p.headIndent - p.hashWidth * level - p.blankWidth;
    paragraph.headIndent = p.headIndent;
    p.color(m, 2, ColorRole::Heading);
    p.stroke(m, 2, float(std::min(p.options.stroke + level, -1.0)));
    p.color(m, 1, ColorRole::Faded);
    p.color(m, 3, ColorRole::Faded);
}

void wikiLink(Painter &p, const RegexMatch &m)
{
    p.color(m, 0, ColorRole::Faded);
    const QStringView inner = m.captured(p.text, 1);
    const qsizetype bar = inner.indexOf(u'|');
    const qsizetype firstLength = bar < 0 ? inner.size() : bar;
    p.color(m.groupStart(1), firstLength, ColorRole::Label);
    if (bar >= 0 && inner.indexOf(u'|', bar + 1) < 0)
        p.color(m.groupStart(1) + bar + 1, inner.size() - bar - 1, ColorRole::Label);
    p.link(m.groupStart(1), m.groupLength(1), false);
    if (p.options.wikiLinksActive)
        p.link(m.groupStart(1), firstLength, true);
}

void linkTarget(Painter &p, const RegexMatch &m)
{
    p.color(m, 0, ColorRole::Faded);
    p.link(m.groupStart(1), m.groupLength(1), false);
    const QStringView target = m.captured(p.text, 1);
    if ((target.contains(u':') && target.contains(u"//")) ||
        (p.options.namesFile && p.options.namesFile(target))) {
        p.color(m, 1, ColorRole::Link);
        if (p.options.wikiLinksActive)
            p.link(m.groupStart(1), m.groupLength(1), true);
    }
}

void definition(Painter &p, const RegexMatch &m)
{
    p.color(m, 0, ColorRole::Faded);
    p.color(m, 1, ColorRole::Label);
    if (p.options.autoIndentLists)
        p.hangAfter(m.start(), m.captured(p.text), m.start());
}

void listPrefix(Painter &p, const RegexMatch &m)
{
    if (!m.hasGroup(1) || !m.hasGroup(2))
        return;
    const QStringView prefix = m.captured(p.text, 1);
    p.hangAfter(m.groupStart(1), prefix, m.groupStart(1));
    p.color(m, 2, prefix.contains(u"[ ]") ? ColorRole::Attribute : ColorRole::ListPrefix);
}

const std::vector<Rule> &htmlTagRules()
{
    static const std::vector<Rule> rules{
        rule(uR"((?<!\\)(<{1,}/?\b[^<\n]*?>{1,}))", DotAll, colored(ColorRole::HtmlTag)),
        rule(uR"(<!--.*?-->)", DotAll,
             [](Painter &p, const RegexMatch &m) {
                 p.color(m, 0, ColorRole::Faded);
                 p.slant(m, 0);
             }),
    };
    return rules;
}

Style htmlTag(ColorRole tags)
{
    return [tags](Painter &p, const RegexMatch &m) {
        p.color(m, 1, tags);
        p.color(m, 3, tags);
        p.color(m, 2, ColorRole::HtmlBlue);
    };
}

const std::vector<Rule> &htmlRules()
{
    static const std::vector<Rule> rules{
        rule(uR"x((<img) [^>]*?src="(.+?)"[^>]*(>))x", DotAll, htmlTag(ColorRole::HtmlRed)),
        rule(uR"x((<a) [^>]*?href="(.+?)"[^>]*(>))x", DotAll, htmlTag(ColorRole::HtmlYellow)),
        rule(uR"(</a>)", DotAll, colored(ColorRole::HtmlYellow)),
    };
    return rules;
}

const std::vector<Rule> &opmlRules()
{
    static const std::vector<Rule> rules{
        rule(uR"x(text="(.+?)")x", DotAll,
             [](Painter &p, const RegexMatch &m) { p.color(m, 1, ColorRole::HtmlBlue); })};
    return rules;
}

// The title block and the "Title:" line count only at the start of the text.
const std::vector<Rule> &titleRules()
{
    static const std::vector<Rule> rules{
        rule(uR"(\A(% ?)([^\n]*?)\n(% ?)[^\n]*?\n(% ?)[^\n]*?\n)", RegexOption::NoOptions,
             [](Painter &p, const RegexMatch &m) {
                 const double s = p.options.stroke;
                 const double percent = p.measure(u"% ", s);
                 for (ParagraphRun &run : p.paragraphs)
                     if (run.start < m.end()) {
                         run.style.firstLineHeadIndent = p.headIndent - percent;
                         run.style.headIndent = p.headIndent;
                     }
                 p.stroke(m, 0, float(s / 2));
                 p.stroke(m, 2, float(s));
                 p.color(m, 2, ColorRole::Heading);
                 for (int group : {1, 3, 4})
                     p.color(m, group, ColorRole::Faded);
             }),
        rule(uR"(\A(---\n)?Title:\s*([^\n]*?)\n)", Insensitive,
             [](Painter &p, const RegexMatch &m) {
                 p.color(m, 2, ColorRole::Heading);
                 p.stroke(m, 2, float(p.options.stroke));
             }),
    };
    return rules;
}

const std::vector<Rule> &markdownRules()
{
    using R = ColorRole;
    static const std::vector<Rule> rules{
        rule(uR"(^(#+)[ \t]*(.*?)(#*?)$)", Lines, heading),
        rule(uR"(^[-|=]+$)", Lines, colored(R::Heading)), // a heading's underline
        rule(uR"(^\s*-\s+(.*?)\s+@done\s*$)", Lines,
             [](Painter &p, const RegexMatch &m) {
                 p.strike(m, 1, true);
                 p.color(m, 1, R::Faded);
             }),
        rule(uR"((?<!\\)((\*{1,3})(\b.*?)(?<!\*)(\2))(?!\*))", RegexOption::NoOptions, emphasis,
             BlankLine),
        rule(uR"((?<!\\)\b((_{1,3})(.*?)(?<!_)(\2))\b)", RegexOption::NoOptions, emphasis,
             BlankLine),
        rule(uR"(((~{2,})(\b[^~]*?)(\2))(?!~))", DotAll,
             [](Painter &p, const RegexMatch &m) {
                 p.color(m, 2, R::Faded);
                 p.color(m, 4, R::Faded);
                 p.strike(m, 3, true);
             },
             {QStringLiteral("\n\n"), QStringLiteral("\n~~~")}),
        rule(
            uR"((->).*?(<-))", DotAll, // centred text
            [](Painter &p, const RegexMatch &m) {
                p.color(m, 1, R::Faded);
                p.color(m, 2, R::Faded);
            },
            BlankLine),
        rule(uR"(\{\{(.*?)\}\})", DotAll, faded({{1, R::Label}}), BlankLine),
        rule(uR"(^>%(.+?)%$)", Lines, faded()),
        rule(uR"(\[([^\]]*?)\] *\[)", Lines, faded({{1, R::Base}})),
        rule(uR"(\] *\[([^#\n\]]*?)\])", Lines, faded({{1, R::Label}})),
        rule(uR"((?<!\] ?)\[([^\[\]]*?)\](?!(( *\[)|\(|\])))", Lines, faded({{1, R::Label}}),
             BlankLine),
        rule(uR"(\[([^\]\n]*?)\]\[\])", Lines, faded({{1, R::Label}})),
        rule(uR"((?<!\[)\[[\^>\?]([^\]]+?)\]\s*?(?![\[\(]))", Lines, faded({{1, R::Label}}),
             BlankLine),
        rule(uR"x(<<fnote "([^"]+?)">>)x", Lines, faded({{1, R::Label}}), BlankLine),
        rule(uR"(\[\[([^\]]*?)\]\])", RegexOption::NoOptions, wikiLink),
        rule(
            uR"(\[?!?\[([^\]]*?)\]\()", RegexOption::NoOptions,
            [](Painter &p, const RegexMatch &m) {
                const bool image =
                    p.text.mid(m.start(), m.groupStart(1) - m.start()).contains(u'!');
                p.color(m, 0, R::Faded);
                p.color(m, 1, image ? R::Label : R::Base);
            },
            BlankLine),
        rule(uR"(\]\((.*?)\))", RegexOption::NoOptions, linkTarget),
        rule(uR"(^\s{0,3}\^?\[[\^>\?]?(.+?)\]:\s*)", Lines, definition),
        rule(uR"(\^\[(.+?)\])", RegexOption::NoOptions, faded({{1, R::Label}})),
        rule(uR"(\[[\?>]\((.+?)\)(.+?)])", DotAll, faded({{1, R::Label}, {2, R::Attribute}})),
        rule(uR"((\[([^\]]*)\])?\[#(.+?)\])", DotAll, faded({{2, R::Attribute}, {3, R::Label}})),
        rule(uR"(\[>>([^\]]+?)])", DotAll, faded({{1, R::Label}})),
        rule(uR"(\{\#(.*?)\})", DotAll, faded({{1, R::Label}})),
        rule(uR"(`((?:(?!\n\s*\n)[^`])+?)`)", DotAll,
             [](Painter &p, const RegexMatch &m) {
                 p.color(m, 0, R::Code);
                 p.slant(m, 0);
             }),
        rule(uR"(^(`{3,})([^`]*?)$)", Lines, colored(R::Label)),
    };
    return rules;
}

const std::vector<Rule> &listRules()
{
    static const std::vector<Rule> rules{
        rule(uR"((?:^|\n)([ \t]*([-—+\*•>:]?)(?: |\t)+))", RegexOption::NoOptions, listPrefix),
        rule(uR"((?:^|\n)([ \t]*(-\s+\[[ |x|X]\])(?:$| |\t)?))", RegexOption::NoOptions,
             listPrefix),
        rule(uR"((?:^|\n)( ?: {0,3}(-\s+\[[ |x|X]\])(?:$| |\t)?))", RegexOption::NoOptions,
             listPrefix),
        rule(uR"((?:^|\n)( {0,3}> {0,3}(-\s+\[[ |x|X]\])(?:$| |\t)?))", RegexOption::NoOptions,
             listPrefix),
        rule(uR"((?:^|\n)([ \t]*(\d+[\.|)])(?: |\t)+))", RegexOption::NoOptions, listPrefix),
    };
    return rules;
}

const std::vector<Rule> &commentRules()
{
    static const std::vector<Rule> rules{
        rule(uR"(^( *\/\/[ \t]*).*$)", Lines, [](Painter &p, const RegexMatch &m) {
            p.color(m, 0, ColorRole::Faded);
            p.slant(m, 0);
            p.hangAfter(m.start(), m.captured(p.text, 1), m.start());
        })};
    return rules;
}

const std::vector<Rule> &criticRules()
{
    using R = ColorRole;
    static const std::vector<Rule> rules{
        rule(uR"(\{--.*?--\})", DotAll, colored(R::CriticDeletion)),
        rule(uR"(\{\+\+.*?\+\+\})", DotAll, colored(R::CriticAddition)),
        rule(uR"(\{~~.*?~>.*?~~\})", DotAll,
             [](Painter &p, const RegexMatch &m) {
                 p.color(m, 0, R::CriticSubstitution);
                 p.strike(m, 0, false);
             }),
        rule(uR"(\{>>.*?<<\})", DotAll, colored(R::CriticComment)),
        rule(uR"(\{==.*?==\})", DotAll, colored(R::CriticHighlight)),
    };
    return rules;
}

const std::vector<Rule> &closingRules()
{
    static const std::vector<Rule> rules{
        rule(uR"(\W==([^\n]+?)==\W)", DotAll, faded({{1, ColorRole::Attribute}})),
        // Nothing inside a fenced block stays coloured.
        rule(uR"(\n\s{0,3}([~|`]{3,})[^~`].*?\n\s{0,3}\1)", DotAll,
             [](Painter &p, const RegexMatch &m) {
                 p.change(m.start(), m.length(), [](CharacterStyle &c) { c = CharacterStyle(); });
                 for (ParagraphRun &run : p.paragraphs)
                     if (run.start > m.start() && run.start < m.end())
                         run.style = p.base;
             }),
    };
    return rules;
}

Highlighting collect(const Painter &painter, qsizetype offset)
{
    Highlighting result;
    result.range = {offset, painter.text.size()};
    const std::vector<CharacterStyle> &chars = painter.chars;
    for (std::size_t i = 0; i < chars.size();) {
        std::size_t end = i + 1;
        while (end < chars.size() && chars[end] == chars[i])
            ++end;
        result.runs.append({offset + qsizetype(i), qsizetype(end - i), chars[i]});
        i = end;
    }
    for (ParagraphRun run : painter.paragraphs) {
        run.start += offset;
        result.paragraphs.append(run);
    }
    return result;
}

} // namespace

Highlighting tl_highlightStringinRange(QStringView text, TextRange range, TextRange selection,
                                       const HighlightOptions &options)
{
    if (range.location < 0) {
        logLine(QStringLiteral("*** highlightStringInRange NOT FOUND"));
        return {};
    }
    if (range.end() > text.size()) {
        logLine(QStringLiteral("*** highlightStringInRange outof bounds"));
        range = selection;
        if (range.location < 0 || range.end() > text.size())
            return {};
    }
    const QStringView part = text.mid(range.location, range.length);
    Painter painter(part, options);
    if (options.excluded)
        return collect(painter, range.location);
    const bool html = options.kind == DocumentKind::Html;
    if (options.highlightMarkdown || html)
        applyAll(painter, htmlTagRules());
    if (html)
        applyAll(painter, htmlRules());
    if (options.kind == DocumentKind::Opml)
        applyAll(painter, opmlRules());
    if (options.highlightMarkdown) {
        const std::vector<Rule> &rules = markdownRules();
        apply(painter, rules[0]);
        apply(painter, rules[1]);
        if (range.location == 0)
            applyAll(painter, titleRules());
        for (std::size_t i = 2; i < rules.size(); ++i)
            apply(painter, rules[i]);
    }
    if (options.autoIndentLists)
        applyAll(painter, listRules());
    if (options.ignoreCommentsForWordCount)
        applyAll(painter, commentRules());
    if (options.multiMarkdown)
        applyAll(painter, criticRules());
    applyAll(painter, closingRules());
    if (options.checkMixedTextDirections)
        for (ParagraphRun &run : painter.paragraphs)
            run.style.alignment = alignmentForString(part.mid(run.start, run.length));
    return collect(painter, range.location);
}

Alignment alignmentForString(QStringView text)
{
    qsizetype rightToLeft = 0, other = 0;
    for (QChar c : text.left(400)) {
        if (!c.isLetter())
            continue;
        const QChar::Script script = c.script();
        if (script == QChar::Script_Arabic || script == QChar::Script_Hebrew)
            ++rightToLeft;
        else
            ++other;
    }
    return rightToLeft > other ? Alignment::RightToLeft : Alignment::Natural;
}

} // namespace tl::editing
