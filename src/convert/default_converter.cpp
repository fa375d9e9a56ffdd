#include "convert/default_converter.h"

#include "convert/contents_block.h"
#include "convert/convert_keys.h"
#include "convert/discount.h"
#include "convert/lone_backquotes.h"
#include "convert/match_edits.h"
#include "foundation/compare.h"
#include "foundation/literal_finder.h"
#include "foundation/regex.h"
#include "platform/file_ops.h"
#include "platform/folders.h"
#include "platform/settings.h"
#include "store/item_path.h"
#include "store/log.h"
#include "store/text_encoding.h"

#include <QFile>
#include <QUuid>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace tl::convert {

namespace {

bool setting(const char *key)
{
    return platform::settings().boolValue(QLatin1String(key));
}

discount::Flags flagsFor(const QString &markdown)
{
    using discount::Flag;
    static const Regex formula(QStringLiteral(R"(\s\$[^\$]+?\$\s)"));
    discount::Flags flags{Flag::TOC,        Flag::ExtraFootnote, Flag::FencedCode,   Flag::Latex,
                          Flag::GithubTags, Flag::Autolink,      Flag::ExplicitList, Flag::DLExtra,
                          Flag::DLDiscount, Flag::IdAnchor,      Flag::NoStyle};
    if (!setting(keys::UseSmartyPants))
        flags.set(Flag::NoPants);
    if (markdown.contains(u'$') && formula.isMatch(markdown)) {
        // "a^b" would break the formulas MathJax typesets.
        flags.set(Flag::NoSuperscript);
        logLine(QStringLiteral("contains MATHJAX > disable superscript"));
    }
    return flags;
}

// The stock library marks task items with its own class and a box glyph;
// the style sheets and later steps know them by these two classes.
QString withCheckboxClasses(const QString &html)
{
    // The two items differ in the glyph's last digit and never overlap, so
    // one walk makes both replacements.
    static const LiteralFinder item(QStringLiteral("<li class=\"github_checkbox\">&#x261"));
    static const QString open = QStringLiteral("<li class=\"tl_checkbox\">");
    static const QString done = QStringLiteral("<li class=\"tl_checkbox_done\">");
    const qsizetype itemLength = item.literal().size() + 2; // the digit and ";"
    QString result;
    qsizetype copied = 0;
    for (qsizetype at = item.indexIn(html); at >= 0; at = item.indexIn(html, at + 1)) {
        const qsizetype digit = at + item.literal().size();
        if (digit + 1 >= html.size() || html[digit + 1] != u';' ||
            (html[digit] != u'0' && html[digit] != u'1'))
            continue;
        if (copied == 0)
            result.reserve(html.size());
        result += QStringView(html).sliced(copied, at - copied);
        result += html[digit] == u'0' ? open : done;
        copied = at + itemLength;
        at = copied - 1;
    }
    if (copied == 0)
        return html;
    result += QStringView(html).sliced(copied);
    return result;
}

// "Title [x]" shows as "Title " where the bracket made the id x.
QString withAnchorBracketsRemoved(const QString &html, const Regex &regex)
{
    return regex.replaceMatches(
        html, [](const RegexMatch &m, QStringView text) -> std::optional<QString> {
            if (localizedCompare(m.captured(text, 1), m.captured(text, 4)) != 0)
                return std::nullopt;
            return withGroupsReplaced(m, text, {{2, m.capturedString(text, 3)}});
        });
}

// "(<li class="tl_checkbox.*?>) " replaced by "$1": the tag runs to the first
// ">" with a blank behind it, and a line end before that fails the match.
QString withoutBlanksBehindTaskTags(const QString &html)
{
    static const LiteralFinder start(QStringLiteral("<li class=\"tl_checkbox"));
    QString result;
    qsizetype copied = 0;
    for (qsizetype at = start.indexIn(html); at >= 0; at = start.indexIn(html, at + 1)) {
        qsizetype end = at + start.literal().size();
        while (end + 1 < html.size() && !Regex::isLineEnd(html[end]) &&
               !(html[end] == u'>' && html[end + 1] == u' '))
            ++end;
        if (end + 1 >= html.size() || Regex::isLineEnd(html[end]))
            continue;
        result += QStringView(html).sliced(copied, end + 1 - copied);
        copied = end + 2; // the blank goes
        at = end + 1;
    }
    if (copied == 0)
        return html;
    result += QStringView(html).sliced(copied);
    return result;
}

// A task item loses its paragraph and the blank behind its tag.
QString withoutCheckboxParagraphs(const QString &html)
{
    static const Regex paragraph(
        QStringLiteral(R"re(<li class="(tl_checkbox.*?)"><p>(.*?)</p></li>)re"),
        RegexOption::DotMatchesNewline);
    static const RegexTemplate item(paragraph, QStringLiteral(R"(<li class="$1">$2</li>)"));
    static const LiteralFinder start(QStringLiteral("<li class=\"tl_checkbox"));
    static const LiteralFinder opening(QStringLiteral("\"><p>"));
    static const LiteralFinder closing(QStringLiteral("</p></li>"));
    // The expression's lazy runs cross elements, so an attempt that fails
    // would read on to the end of the page, for every task item. A match
    // that starts at an item ends at the first closing behind the first
    // opening behind the item: each attempt gets just that stretch, and the
    // two positions only move forward.
    QString result;
    qsizetype copied = 0;
    qsizetype open = -1;
    qsizetype close = -1;
    const qsizetype startLength = start.literal().size();
    const qsizetype openingLength = opening.literal().size();
    for (qsizetype at = start.indexIn(html); at >= 0; at = start.indexIn(html, at + 1)) {
        if (at < copied)
            continue;
        if (open < at + startLength)
            open = opening.indexIn(html, at + startLength);
        if (open >= 0 && close < open + openingLength)
            close = closing.indexIn(html, open + openingLength);
        if (open < 0 || close < 0)
            break;
        const QStringView stretch =
            QStringView(html).sliced(at, close + closing.literal().size() - at);
        const std::optional<RegexMatch> match = paragraph.match(stretch);
        if (!match || match->start() != 0)
            continue;
        result += QStringView(html).sliced(copied, at - copied);
        item.expandInto(result, *match, stretch);
        copied = at + match->length();
    }
    if (copied == 0)
        result = html;
    else
        result += QStringView(html).sliced(copied);
    return withoutBlanksBehindTaskTags(result);
}

// The two work files of one run, removed when the run ends.
struct WorkFiles
{
    QString markdown;
    QString html;
    ~WorkFiles()
    {
        QFile::remove(markdown);
        QFile::remove(html);
    }
};

struct FileCloser
{
    void operator()(FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, FileCloser>;

// The library reads and writes the work files a character or a few at a
// time: a larger buffer spares most of the system calls.
File openFile(const QString &path, const char *mode)
{
    File file(std::fopen(QFile::encodeName(path).constData(), mode));
    if (file)
        std::setvbuf(file.get(), nullptr, _IOFBF, 1 << 16);
    return file;
}

void write(FILE *file, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), file);
}

QString titleBlock(const discount::Document &document)
{
    QString block =
        QStringLiteral("<div id=\"header\"><h1 class=\"title\">%1</h1>").arg(document.title());
    if (!document.author().isEmpty())
        block += QStringLiteral("\n<h2 class=\"author\">%1</h2>").arg(document.author());
    if (!document.date().isEmpty())
        block += QStringLiteral("\n<h3 class=\"date\">%1</h3>").arg(document.date());
    return block + QStringLiteral("</div>\n<hr class=\"invisible-pagebreak\">\n");
}

} // namespace

QString contentsListWithAnchorBracketsRemoved(const QString &list)
{
    static const Regex entry(QStringLiteral(R"re(href="#(.+?)">((.+?)\[(.+?)\])</a>)re"),
                             RegexOption::AnchorsMatchLines);
    return withAnchorBracketsRemoved(list, entry);
}

QString withHeadingAnchorBracketsRemoved(const QString &html)
{
    static const Regex heading(
        QStringLiteral(R"re(^<h[1-6] id="(.+?)">((.+?)\[(.+?)\])</h[1-6]>$)re"),
        RegexOption::AnchorsMatchLines);
    return withAnchorBracketsRemoved(html, heading);
}

QString multiMarkdownCompatibleAnchor(const QString &heading)
{
    static const Regex bracket(QStringLiteral(R"(\[(.+?)\])"), RegexOption::AnchorsMatchLines);
    static const Regex foreign(QStringLiteral(R"([^a-zA-Z0-9\.:\-_])"));
    static const Regex dashes(QStringLiteral(R"(\-+)"));
    static const RegexTemplate dash(dashes, QStringLiteral("-"));
    if (heading.endsWith(u']')) {
        const QList<RegexMatch> matches = bracket.allMatches(heading);
        if (!matches.isEmpty())
            return store::percentEncodedForPath(matches.last().capturedString(heading, 1));
    }
    return dashes.replaceAll(foreign.replaceAll(heading, QString()), dash).toLower();
}

namespace {

QString convertedByDiscount(const QString &markdown, bool withTitleBlock, bool withContents)
{
    const QString folder = platform::temporaryFolder();
    platform::makeFolder(folder);
    const QString unique = QUuid::createUuid().toString(QUuid::WithoutBraces);
    WorkFiles files{folder + QStringLiteral("/mdtoconvert-%1.md").arg(unique),
                    folder + QStringLiteral("/convertedmd-%1.html").arg(unique)};

    if (!platform::writeFileInPlace(files.markdown, markdown.toUtf8())) {
        logLine(
            QStringLiteral("Error on Markdown Conversion: cannot write text: %1 ").arg(markdown));
        logLine(QStringLiteral("to file: %1").arg(files.markdown));
        logLine(QStringLiteral("Error %1").arg(QString::fromLocal8Bit(std::strerror(errno))));
        return QString();
    }
    const discount::Flags flags = flagsFor(markdown);
    std::unique_ptr<discount::Document> document;
    {
        File input = openFile(files.markdown, "r");
        if (!input) {
            logLine(QStringLiteral("Error on Markdown Conversion: cannot open file: %1")
                        .arg(files.markdown));
            return QString();
        }
        document = discount::Document::read(input.get(), flags);
    }
    // When the library makes nothing of the text, the text goes on as it
    // is, as it does for a converter that names no library; when a work
    // file fails, the body is empty.
    if (!document)
        return markdown;

    const bool mmdAnchors = setting(keys::UseMMDCompatibleAnchors);
    {
        File output = openFile(files.html, "w");
        if (!output)
            return QString();
        if (mmdAnchors) {
            document->setAnchorMaker([](QByteArrayView heading) {
                return multiMarkdownCompatibleAnchor(QString::fromUtf8(heading)).toUtf8();
            });
        }
        if (!document->compile())
            return markdown;
        if (withTitleBlock && !document->title().isEmpty())
            write(output.get(), titleBlock(*document));
        // The contents list serves the top of the page and the markers in
        // it; a page with neither is spared making it.
        std::optional<QString> list;
        auto contentsList = [&] {
            if (!list) {
                list = QString::fromUtf8(document->contents());
                if (mmdAnchors)
                    list = contentsListWithAnchorBracketsRemoved(*list);
            }
            return *list;
        };
        if (withContents && !contentsList().isEmpty() &&
            !markdown.contains(QStringLiteral("<TOC>")) &&
            !markdown.contains(QStringLiteral("{{TOC")))
            write(output.get(), contentsBlock(*list));
        if (!document->writeHTML(output.get()) || std::fclose(output.release()) != 0)
            return QString();

        const std::optional<QByteArray> bytes = platform::readFile(files.html);
        if (!bytes)
            return QString();
        const auto decoded = store::decodedTextOfUnknownEncoding(*bytes);
        QString html = withCheckboxClasses(decoded ? decoded->text : QString());
        if (holdsContentsMarker(html))
            html = withContentsAtMarkers(html, contentsList());
        document.reset();
        html = withoutCheckboxParagraphs(html);
        return mmdAnchors ? withHeadingAnchorBracketsRemoved(html) : html;
    }
}

} // namespace

QString tl_markdownWithPandoc(const QString &markdown, bool withTitleBlock, bool withContents)
{
    return convertedWithLoneBackquotesSetAside(
        markdown, setting(keys::UseSmartyPants), [&](const QString &text) {
            return convertedByDiscount(text, withTitleBlock, withContents);
        });
}

} // namespace tl::convert
