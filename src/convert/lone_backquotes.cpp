#include "convert/lone_backquotes.h"

#include "store/log.h"

#include <QList>
#include <QStringView>
#include <algorithm>
#include <limits>

namespace tl::convert {

namespace {

struct Run
{
    qsizetype start = 0;
    qsizetype length = 0;
    bool inPlainText = false;
    // Three or more at the start of a line: a fence, if another one closes
    // it or it closes another. Even alone the library tries it as one, which
    // its first three backquotes tell it.
    bool mayFence = false;
};

struct Paragraph
{
    QList<Run> runs;
    qsizetype end = 0;
    // A line of it underlines a heading above, perhaps across a definition.
    bool underlined = false;
};

bool isBlank(QStringView line)
{
    return std::all_of(line.begin(), line.end(), [](QChar c) { return c.isSpace(); });
}

// Only blanks and the markers of quotations and list items: what may stand
// before a fence.
bool isLineStart(QStringView before)
{
    static const QString markers = QStringLiteral(">*+-.)0123456789");
    return std::all_of(before.begin(), before.end(),
                       [](QChar c) { return c.isSpace() || markers.contains(c); });
}

QStringView withoutQuotationMarkers(QStringView line)
{
    qsizetype i = 0;
    while (i < line.size() && (line[i].isSpace() || line[i] == u'>'))
        ++i;
    return line.mid(i);
}

// An underline of equals signs or hyphens makes the line above a heading.
bool isUnderline(QStringView line)
{
    const QStringView mark = withoutQuotationMarkers(line).trimmed();
    return !mark.isEmpty() &&
           (std::all_of(mark.begin(), mark.end(), [](QChar c) { return c == u'='; }) ||
            std::all_of(mark.begin(), mark.end(), [](QChar c) { return c == u'-'; }));
}

// Lines whose backquotes may go into an id or an address: any that may hold
// a heading (also in quotations, list items and task items), and reference
// definitions.
bool isSpecialLine(QStringView line)
{
    const QStringView text = withoutQuotationMarkers(line);
    return line.contains(u'#') || (text.startsWith(u'[') && text.contains(u"]:"));
}

bool isAddress(QStringView word)
{
    return word.contains(u"://") || word.contains(u'@') || word.startsWith(u"www.");
}

// Backquotes within a tag, a link's target or an address are copied or
// encoded there, not read as text: what the line holds before each run is
// followed in one pass.
void collectRuns(QStringView line, qsizetype offset, bool special, QList<Run> &runs)
{
    // What follows a fence's opening is its information, which may hold no
    // backquote: there they tell whether the line opens a fence at all.
    qsizetype start = 0;
    while (start < line.size() && isLineStart(line.mid(start, 1)))
        ++start;
    const QStringView rest = line.mid(start);
    const bool fenceLine = rest.startsWith(u"```") || rest.startsWith(u"~~~");
    qsizetype tagOpened = -1, tagClosed = -1, targetOpened = -1, targetClosed = -1;
    qsizetype wordEnd = 0;
    bool inAddress = false;
    for (qsizetype i = 0; i < line.size();) {
        if (i >= wordEnd && !line[i].isSpace()) {
            wordEnd = i;
            while (wordEnd < line.size() && !line[wordEnd].isSpace())
                ++wordEnd;
            inAddress = isAddress(line.mid(i, wordEnd - i));
        }
        const QChar c = line[i];
        if (c != u'`') {
            if (c == u'<')
                tagOpened = i;
            else if (c == u'>')
                tagClosed = i;
            else if (c == u'(' && i > 0 && line[i - 1] == u']')
                targetOpened = i;
            else if (c == u')')
                targetClosed = i;
            ++i;
            continue;
        }
        qsizetype end = i;
        while (end < line.size() && line[end] == u'`')
            ++end;
        const bool escaped = i > 0 && line[i - 1] == u'\\';
        const bool inPlainText = !special && !escaped && !inAddress && tagOpened <= tagClosed &&
                                 targetOpened <= targetClosed && (!fenceLine || i == start);
        runs.append({offset + i, end - i, inPlainText, end - i >= 3 && isLineStart(line.left(i))});
        i = end;
    }
}

// The runs of one paragraph that open and close nothing, and the library's
// work on them.
qint64 collectLoneRuns(const Paragraph &paragraph, bool fences, QList<Run> &lone)
{
    if (paragraph.underlined)
        return 0;
    const QList<Run> &runs = paragraph.runs;
    QList<qsizetype> shortestAfter(runs.size());
    qsizetype shortest = std::numeric_limits<qsizetype>::max();
    for (qsizetype i = runs.size() - 1; i >= 0; --i) {
        shortestAfter[i] = shortest;
        shortest = std::min(shortest, runs[i].length);
    }
    qint64 work = 0;
    qsizetype longestBefore = 0;
    for (qsizetype i = 0; i < runs.size(); ++i) {
        const Run &run = runs[i];
        // The three kept of a fence that closes nothing open nothing either,
        // and close nothing where no run before them is as long.
        const qsizetype kept = run.mayFence ? 3 : 0;
        if (run.inPlainText && !(fences && run.mayFence) && longestBefore < run.length &&
            (kept == 0 || longestBefore < kept) && shortestAfter[i] > run.length &&
            run.length > kept) {
            lone.append({run.start + kept, run.length - kept});
            work += qint64(run.length) * (paragraph.end - run.start);
        }
        longestBefore = std::max(longestBefore, run.length);
    }
    return work;
}

std::optional<QChar> characterNotIn(const QString &text)
{
    for (char16_t c = 0xE000; c < 0xF900; ++c) {
        if (!text.contains(QChar(c)))
            return QChar(c);
    }
    return std::nullopt;
}

} // namespace

std::optional<SetAsideBackquotes> withLoneBackquotesSetAside(const QString &markdown,
                                                             qint64 leastWork)
{
    // The library's "^" looks back at the last character it read, which would
    // then be a placeholder instead of a backquote.
    if (qint64(markdown.count(u'`')) * markdown.size() < leastWork || markdown.contains(u'^'))
        return std::nullopt;
    const QList<QStringView> lines = QStringView(markdown).split(u'\n');
    QList<Paragraph> paragraphs(1);
    qsizetype offset = 0;
    for (qsizetype l = 0; l < lines.size(); ++l) {
        const QStringView line = lines[l];
        if (isBlank(line)) {
            paragraphs.last().end = offset;
            paragraphs.append(Paragraph());
        } else {
            paragraphs.last().underlined |= isUnderline(line);
            collectRuns(line, offset, isSpecialLine(line), paragraphs.last().runs);
        }
        offset += line.size() + 1;
    }
    paragraphs.last().end = markdown.size();
    qsizetype mayFence = 0;
    for (const Paragraph &paragraph : std::as_const(paragraphs))
        mayFence += std::count_if(paragraph.runs.begin(), paragraph.runs.end(),
                                  [](const Run &run) { return run.mayFence; });
    QList<Run> lone;
    qint64 work = 0;
    for (const Paragraph &paragraph : std::as_const(paragraphs))
        work += collectLoneRuns(paragraph, mayFence > 1, lone);
    const std::optional<QChar> placeholder =
        work < leastWork ? std::nullopt : characterNotIn(markdown);
    if (!placeholder)
        return std::nullopt;
    SetAsideBackquotes aside{markdown, *placeholder, 0};
    for (const Run &run : std::as_const(lone)) {
        std::fill_n(aside.text.begin() + run.start, run.length, *placeholder);
        aside.count += run.length;
    }
    return aside;
}

std::optional<QString> withBackquotesBack(const QString &html, const SetAsideBackquotes &aside)
{
    if (html.count(aside.placeholder) != aside.count)
        return std::nullopt;
    QString back = html;
    return back.replace(aside.placeholder, u'`');
}

QString convertedWithLoneBackquotesSetAside(const QString &markdown, bool typographicQuotes,
                                            const std::function<QString(const QString &)> &convert)
{
    const std::optional<SetAsideBackquotes> aside =
        typographicQuotes ? std::nullopt : withLoneBackquotesSetAside(markdown);
    if (aside) {
        if (const std::optional<QString> html = withBackquotesBack(convert(aside->text), *aside))
            return *html;
        logLine(QStringLiteral("backquotes set aside did not come back; converting again"));
    }
    return convert(markdown);
}

} // namespace tl::convert
