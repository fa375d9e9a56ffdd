#include "convert/markdown_preparation.h"

#include "convert/code_ranges.h"
#include "convert/convert_keys.h"
#include "convert/inline_notes.h"
#include "convert/match_edits.h"
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
QString replacedOutsideCode(const QString &text, const Regex &regex, LazyCodeRanges &code,
                            const std::function<QString(const RegexMatch &)> &replacement)
{
    return regex.replaceMatches(
        text, [&](const RegexMatch &match, QStringView) -> std::optional<QString> {
            if (code.contains(text, match))
                return std::nullopt;
            return replacement(match);
        });
}

QString withCommonExtensions(QString text, LazyCodeRanges &code)
{
    static const Regex caretNote(QStringLiteral(R"((\^\[).+?\])"), RegexOption::DotMatchesNewline);
    static const Regex highlight(QStringLiteral(R"((?<![\w{])(==([^\n]+?)==)\W)"),
                                 RegexOption::DotMatchesNewline);
    static const Regex tagNote(QStringLiteral(R"re(<<fnote "([^"]+?)">>)re"),
                               RegexOption::DotMatchesNewline);
    static const Regex pageBreak(QStringLiteral(R"(^\{\{pagebreak\}\}\s*$)"),
                                 RegexOption::CaseInsensitive | RegexOption::AnchorsMatchLines);

    text = replacedOutsideCode(text, caretNote, code, [&](const RegexMatch &m) {
        return withGroupsReplaced(m, text, {{1, QStringLiteral("[^ ")}});
    });
    text = replacedOutsideCode(text, highlight, code, [&](const RegexMatch &m) {
        return withGroupsReplaced(
            m, text, {{1, QStringLiteral("<mark>%1</mark>").arg(m.captured(text, 2))}});
    });
    text = replacedOutsideCode(text, tagNote, code, [&](const RegexMatch &m) {
        return QStringLiteral("[^ %1]").arg(m.captured(text, 1));
    });
    text = replacedOutsideCode(text, pageBreak, code,
                               [](const RegexMatch &) { return QStringLiteral(">%pagebreak%\n"); });
    return text;
}

QString preparedForMultiMarkdown(QString text)
{
    static const Regex linkTarget(QStringLiteral(R"(\[[^\]]*\]\((.*?)\))"));
    static const Regex openContentsRange(QStringLiteral(R"(^\s*\{\{TOC:(.{1,3})\}\}.*?$)"),
                                         RegexOption::AnchorsMatchLines);

    // A linked image on the line after some text starts a paragraph.
    text.replace(QStringLiteral("\n[![]"), QStringLiteral("\n\n[![]"));
    text = linkTarget.replaceMatches(
        text, [&](const RegexMatch &m, QStringView) -> std::optional<QString> {
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

QString preparedForDefaultConverter(QString text, LazyCodeRanges &code)
{
    static const Regex headingAnchor(QStringLiteral(R"(^#+ ?(.+?)(\[).+?(\])([\s#]*)$)"),
                                     RegexOption::AnchorsMatchLines);
    static const Regex checkbox(QStringLiteral(R"((- \[.\])\s+?)"));
    static const RegexTemplate oneBlank(checkbox, QStringLiteral("$1 "));

    text = notesMovedToDefinitions(text, code);
    if (!setting(keys::UseMMDCompatibleAnchors)) {
        // "## Title [anchor]" becomes "## [Title ](id:anchor)".
        text = headingAnchor.replaceMatches(
            text, [&](const RegexMatch &m, QStringView) -> std::optional<QString> {
                return withGroupsReplaced(m, text,
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
    if (setting(keys::IgnoreCommentsForWordCount))
        text = tl_stringByRemovingComments(text);
    if (!setting(keys::UseMarkdownStrictly))
        text = tl_makeEveryNewlineaLinebreak(text);
    if (text.contains(QStringLiteral("[[")))
        text = tl_makeWikiLinksMarkdownLinks(text);

    // One code-range list for the rest of the pass, made at the first
    // candidate and never brought up to date.
    LazyCodeRanges code;
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
