#include "convert/markdownify_loops.h"

#include "convert/rewrite_table.h"

namespace tl::convert::detail {

namespace {

using enum Rewrite;
constexpr RegexOptions kDotAll = RegexOption::DotMatchesNewline;

RestartingLoop makeLoop(const char *pattern, RegexOptions options, const char *opener,
                        Regex::MatchReplacer replacement)
{
    return {Regex(QString::fromUtf8(pattern), options), Regex(QString::fromUtf8(opener)),
            std::move(replacement)};
}

QString paragraph(const RegexMatch &m, QStringView text)
{
    const QStringView content = m.captured(text, 1);
    return content.isEmpty() ? QString() : u'\n' + content.toString() + u'\n';
}

// Only lines of an inner quotation, already marked, get deeper.
QString quotation(const RegexMatch &m, QStringView text)
{
    const QStringView content = m.captured(text, 1);
    if (content.isEmpty())
        return QString();
    return QStringLiteral("> ") +
           content.trimmed().toString().replace(QStringLiteral("\n> "), QStringLiteral("\n> > "));
}

// Sub-items one tab deeper, with one blank behind their marker.
QString indented(const QString &text)
{
    static const Regex subItem(QStringLiteral(R"(\n([ \t]*)(-|\d+\.)\s)"), kDotAll);
    return subItem.replaceAll(text, QStringLiteral("\n$1\t$2 "));
}

// The list text of an innermost list. Every piece between "</li>" counts
// for the numbering, an empty one too. A piece may begin with a sub-list an
// earlier round wrote in front of its item (the lead).
QString list(const RegexMatch &m, QStringView text)
{
    const bool ordered = m.captured(text, 1) == u"ol";
    const QStringList pieces = m.capturedString(text, 2).split(QStringLiteral("</li>"));
    const QString item = QStringLiteral("<li>");
    QString listText;
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const QString piece = pieces[i].trimmed();
        if (piece.isEmpty())
            continue;
        const qsizetype at = piece.indexOf(item);
        QString lead = at >= 0 ? piece.first(at) : QString();
        QString content = at >= 0 ? piece.sliced(at).remove(item).trimmed() : piece;
        if (!lead.isEmpty())
            listText += indented(QStringLiteral("\n ") + lead);
        if (!content.isEmpty()) {
            const QString marker =
                ordered ? QStringLiteral("\n %1.\t").arg(i + 1) : QStringLiteral("\n-\t");
            // Task items read "- [ ]".
            QString entry = marker + indented(content);
            listText += entry.replace(QStringLiteral("\n-\t["), QStringLiteral("\n- ["));
        }
    }
    return listText.replace(QStringLiteral("\n\n"), QStringLiteral("\n"));
}

QString heading(const RegexMatch &m, QStringView text)
{
    const int level = m.captured(text, 1).toInt();
    return QStringLiteral("\n\n") + QString(level, u'#') + u' ';
}

// " | " between cells, a line per row, the separator row with the
// alignment of each header cell behind the head.
QString table(const RegexMatch &m, QStringView text)
{
    static const Regex headerCell(QStringLiteral(R"(<th(\b[^>]*)>)"), RegexOption::CaseInsensitive);
    static const RewriteTable cells = compiledRewrites({
        {Expression, R"(</td>\s*<td\b[^>]*>)", " | ", kDotAll},
        {Expression, R"(</td>\s*</tr>)", "\n", kDotAll},
        {Expression, R"(<tr\b[^>]*>\s*<td\b[^>]*>)", "", kDotAll},
        {Expression, R"(<tbody\b[^>]*>)", "", kDotAll},
        {Expression, R"(</tbody>)", "", kDotAll},
        {Expression, R"(</th>\s*<th\b[^>]*>)", " | ", kDotAll},
        {Expression, R"(</th>\s*</tr>)", "\n", kDotAll},
        {Expression, R"(<tr\b[^>]*>\s*<th\b[^>]*>)", "", kDotAll},
        {Expression, R"(<thead\b[^>]*>)", "", kDotAll},
        // Lines of nothing but blanks and bars.
        {Expression, R"(^[\s|]*$)", "", RegexOption::AnchorsMatchLines},
        {Expression, R"(\n{2,})", "\n"},
    });
    const QString content = m.capturedString(text, 1);
    QStringList alignments;
    for (const RegexMatch &cell : headerCell.allMatches(content)) {
        const QStringView attributes = cell.captured(content, 1);
        if (attributes.contains(u"left"))
            alignments.append(QStringLiteral(" :---------- "));
        else if (attributes.contains(u"right"))
            alignments.append(QStringLiteral(" ----------: "));
        else if (attributes.contains(u"center"))
            alignments.append(QStringLiteral(" :---------: "));
        else
            alignments.append(QStringLiteral(" ----------- "));
    }
    QString rows = applyRewrites(content, cells);
    rows.replace(QStringLiteral("</thead>"), alignments.join(u'|') + u'\n');
    rows.replace(QStringLiteral("\n\n"), QStringLiteral("\n"));
    return QStringLiteral("\n\n") + rows.trimmed() + QStringLiteral("\n\n");
}

QString link(const RegexMatch &m, QStringView text)
{
    return u'[' + m.capturedString(text, 2) + QStringLiteral("](") + m.capturedString(text, 1) +
           u')';
}

// The alternative text is dropped.
QString image(const RegexMatch &m, QStringView text)
{
    return QStringLiteral("![](") + m.capturedString(text, 1).replace(u')', QStringLiteral("%29")) +
           u')';
}

QString definitionList(const RegexMatch &m, QStringView text)
{
    static const RewriteTable terms = compiledRewrites({
        {Expression, "<dt.*?>", "\n"},
        {Literal, "</dt>", "\n"},
        {Expression, "<dd.*?>", ": "},
        {Literal, "</dd>", "\n"},
    });
    return u'\n' + applyRewrites(m.capturedString(text, 1), terms) + u'\n';
}

} // namespace

const RestartingLoop &paragraphLoop()
{
    static const RestartingLoop loop =
        makeLoop(R"(<p\b.*?>(.*?)</p>)", kDotAll, R"(<p\b)", paragraph);
    return loop;
}

const RestartingLoop &quotationLoop()
{
    static const RestartingLoop loop =
        makeLoop(R"(<blockquote>((?:(?!<blockquote)[\s\S])*?)</blockquote>)",
                 RegexOption::AnchorsMatchLines, "<blockquote>", quotation);
    return loop;
}

const RestartingLoop &listLoop()
{
    static const RestartingLoop loop =
        makeLoop(R"(<(ul|ol)>((?:(?!<ul|<ol)[\s\S])*?)</\1>)", kDotAll, "<(?:ul|ol)>", list);
    return loop;
}

const RestartingLoop &headingLoop()
{
    static const RestartingLoop loop =
        makeLoop(R"(\s*<h([123456]).*?>\s*)", kDotAll, R"(\s*<h[123456])", heading);
    return loop;
}

const RestartingLoop &tableLoop()
{
    static const RestartingLoop loop =
        makeLoop(R"(<table.*?>(.*?)</table>)", kDotAll, "<table", table);
    return loop;
}

const RestartingLoop &linkLoop()
{
    static const RestartingLoop loop =
        makeLoop(R"re(<a [^>]*?href="(.+?)".*?>(.*?)</a>)re", kDotAll, "<a ", link);
    return loop;
}

const RestartingLoop &imageLoop()
{
    static const RestartingLoop loop =
        makeLoop(R"re(<img[^>]* src="(.+?)".*?>)re", kDotAll, "<img", image);
    return loop;
}

const RestartingLoop &definitionListLoop()
{
    static const RestartingLoop loop =
        makeLoop(R"(<dl\b.*?>(.*?)</dl>)", kDotAll, R"(<dl\b)", definitionList);
    return loop;
}

} // namespace tl::convert::detail
