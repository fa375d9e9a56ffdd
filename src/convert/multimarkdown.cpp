#include "convert/multimarkdown.h"

#include "convert/code_ranges.h"
#include "convert/contents_block.h"
#include "convert/convert_keys.h"
#include "convert/default_converter.h"
#include "convert/discount.h"
#include "convert/inline_notes.h"
#include "convert/lone_backquotes.h"
#include "convert/match_edits.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "platform/settings.h"

#include <QHash>
#include <QSet>
#include <vector>

namespace tl::convert {

namespace {

// The layer's own Discount run: MultiMarkdown's ids, its quotation and
// task-item shapes, no title block.
discount::Flags multiMarkdownFlags()
{
    using discount::Flag;
    discount::Flags flags{Flag::TOC,      Flag::ExtraFootnote, Flag::FencedCode, Flag::Latex,
                          Flag::Autolink, Flag::DLExtra,       Flag::IdAnchor,   Flag::GithubTags,
                          Flag::NoStyle,  Flag::NoDivQuote};
    if (!platform::settings().boolValue(QLatin1String(keys::UseSmartyPants)))
        flags.set(Flag::NoPants);
    return flags;
}

// Writes the body in the shapes MultiMarkdown gives it: task items keep
// their "[ ]" text, a quotation's paragraph stands on its own lines.
QString inMultiMarkdownShapes(QString html)
{
    html.replace(QStringLiteral("<li class=\"github_checkbox\">&#x2610;"),
                 QStringLiteral("<li>[ ]"));
    html.replace(QStringLiteral("<li class=\"github_checkbox\">&#x2611;"),
                 QStringLiteral("<li>[x]"));
    html.replace(QStringLiteral("<blockquote><p>"), QStringLiteral("<blockquote>\n<p>"));
    html.replace(QStringLiteral("</p></blockquote>"), QStringLiteral("</p>\n</blockquote>"));
    return html;
}

// Where each "[" of the text is closed, for the openings of inline notes.
QHash<qsizetype, qsizetype> closingsOfNotes(const QString &text)
{
    QHash<qsizetype, qsizetype> closings;
    std::vector<qsizetype> open;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'[') {
            open.push_back(i);
        } else if (text[i] == u']' && !open.empty()) {
            if (QStringView(text).sliced(open.back()).startsWith(u"[^ "))
                closings.insert(open.back(), i);
            open.pop_back();
        }
    }
    return closings;
}

// Inline notes, "[^ text]" as the preparation writes them, become
// reference notes, which Discount knows: each note is replaced by its label
// and one definition per label goes behind the text, the last note's
// first. A note runs to its balancing bracket; an unbalanced one, one
// followed by ":" (a definition) and one inside code stay as they are.
QString inlineNotesAsReferences(const QString &source)
{
    if (!source.contains(QStringLiteral("[^ ")))
        return source;
    const QHash<qsizetype, qsizetype> closings = closingsOfNotes(source);
    LazyCodeRanges code;
    QList<std::pair<qsizetype, qsizetype>> notes;
    qsizetype from = 0; // behind the last note: notes inside it are its text
    for (qsizetype at = source.indexOf(QStringLiteral("[^ ")); at >= 0;
         at = source.indexOf(QStringLiteral("[^ "), std::max(from, at + 1))) {
        const auto closing = closings.constFind(at);
        if (closing == closings.cend())
            continue;
        const qsizetype end = *closing + 1;
        if ((end < source.size() && source[end] == u':') || code.contains(source, at, end))
            continue;
        notes.append({at, end});
        from = end;
    }
    QString result = source;
    QSet<QString> defined;
    for (qsizetype i = notes.size() - 1; i >= 0; --i) {
        const auto [start, end] = notes[i];
        const QStringView note = QStringView(source).sliced(start, end - start);
        const QString label = labelOfNote(note);
        result.replace(start, label.size(), label);
        if (!defined.contains(label)) {
            defined.insert(label);
            result += QStringLiteral("\n%1: %2").arg(label, note.sliced(2, note.size() - 3));
        }
    }
    return result;
}

QString htmlOfText(const QString &text, const discount::Flags &flags)
{
    std::unique_ptr<discount::Document> document = discount::Document::parse(text.toUtf8(), flags);
    if (!document)
        return QString();
    document->setAnchorMaker([](QByteArrayView heading) {
        return multiMarkdownCompatibleAnchor(QString::fromUtf8(heading)).toUtf8();
    });
    if (!document->compile())
        return QString();
    const QString list =
        contentsListWithAnchorBracketsRemoved(QString::fromUtf8(document->contents()));
    QString html = inMultiMarkdownShapes(QString::fromUtf8(document->html()));
    html = withHeadingAnchorBracketsRemoved(html);
    return withContentsAtMarkers(html, list);
}

QString htmlOfSource(const QString &source)
{
    const discount::Flags flags = multiMarkdownFlags();
    return convertedWithLoneBackquotesSetAside(
        inlineNotesAsReferences(source), !flags.has(discount::Flag::NoPants),
        [&](const QString &text) { return htmlOfText(text, flags); });
}

// Task items and class quotations as the default converter writes them.
QString withFixUps(const QString &html)
{
    static const Regex open(QStringLiteral(R"((<li>\[ \]\s?))"), RegexOption::DotMatchesNewline);
    static const Regex done(QStringLiteral(R"((<li>\[[x|X]\]\s?))"),
                            RegexOption::DotMatchesNewline);
    static const Regex classQuotation(
        QStringLiteral(R"(<blockquote>\n<p>%(.+?)%\n?(.*?)</p>\n</blockquote>)"),
        RegexOption::DotMatchesNewline);
    auto replacedBy = [](const QString &replacement) {
        return [replacement](const RegexMatch &m, QStringView) -> std::optional<QString> {
            if (m.length() == 0)
                return std::nullopt;
            return replacement;
        };
    };
    QString result =
        open.replaceMatches(html, replacedBy(QStringLiteral("<li class=\"tl_checkbox\">")));
    result =
        done.replaceMatches(result, replacedBy(QStringLiteral("<li class=\"tl_checkbox_done\">")));
    return classQuotation.replaceMatches(
        result, [](const RegexMatch &m, QStringView text) -> std::optional<QString> {
            QString div = QStringLiteral("<div class=\"%1\"><p>%2</p></div>")
                              .arg(m.captured(text, 1), m.captured(text, 2));
            div.remove(QStringLiteral("<p></p>"));
            return div;
        });
}

} // namespace

QString tl_multiMarkdownWithPath(const QString &markdown, const QString &path)
{
    const QString folder = path.isEmpty() ? QString() : path::deletingLastComponent(path);
    QString source = withMetadataHeader(markdown, folder);
    source = withMetadataFooter(source, folder);
    source = withTranscludedFiles(source, folder, path, MultiMarkdownFormat::HTML);
    if (platform::settings().integer(QLatin1String(keys::ShowCriticMarkup)) == 0)
        source = criticMarkupAccepted(source);
    else
        source = criticMarkupAsHTML(source);
    // The metadata block is no part of an HTML body.
    source = source.mid(multiMarkdownMetadata(source).bodyStart);
    return withFixUps(htmlOfSource(source));
}

} // namespace tl::convert
