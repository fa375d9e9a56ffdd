#include "convert/latex_writer.h"

#include "convert/html_tree.h"
#include "foundation/regex.h"

#include <QHash>
#include <QUrl>

namespace tl::convert {

namespace {

// The marker of a page break the document rewrite turns into \newpage.
const QString kPageBreakMarker = QStringLiteral("--tlpagebreak--");

const char *const kSections[] = {"section",   "subsection",   "subsubsection",
                                 "paragraph", "subparagraph", "subparagraph"};

QString name(const xmlNode *node)
{
    return node->type == XML_ELEMENT_NODE
               ? QString::fromUtf8(reinterpret_cast<const char *>(node->name)).toLower()
               : QString();
}

QString attribute(const xmlNode *node, const char *key)
{
    xmlChar *value = xmlGetProp(node, reinterpret_cast<const xmlChar *>(key));
    if (!value)
        return QString();
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(value));
    xmlFree(value);
    return text;
}

bool isBlock(const QString &element)
{
    static const QStringList blocks{"p",  "div", "ul",         "ol",    "dl",    "li",    "dt",
                                    "dd", "pre", "blockquote", "table", "hr",    "h1",    "h2",
                                    "h3", "h4",  "h5",         "h6",    "thead", "tbody", "tr",
                                    "td", "th",  "figure",     "head",  "style", "script"};
    return blocks.contains(element);
}

bool isWhitespace(const xmlNode *node)
{
    return node->type == XML_TEXT_NODE && textContent(node).trimmed().isEmpty();
}

// A label or reference target: what LaTeX takes there without complaint.
QString labelOf(const QString &id)
{
    static const Regex unsafe(QStringLiteral("[^A-Za-z0-9.:_\\-]"));
    return unsafe.replaceAll(id, QString());
}

// The characters a URL argument needs escaped.
QString urlArgument(QString url)
{
    return url.replace(u'\\', QStringLiteral("/"))
        .replace(u'%', QStringLiteral("\\%"))
        .replace(u'#', QStringLiteral("\\#"))
        .replace(u'{', QStringLiteral("%7B"))
        .replace(u'}', QStringLiteral("%7D"));
}

// A run of inline text: no breaks at either end, where LaTeX has no line to
// end, and no empty line, which would end the paragraph.
QString trimmedRun(const QString &run)
{
    static const Regex ends(QStringLiteral("^(\\s|\\\\\\\\)+|(\\s|\\\\\\\\)+$"));
    static const Regex emptyLines(QStringLiteral("\\n[ \\t]*\\n\\s*"));
    return emptyLines.replaceAll(ends.replaceAll(run, QString()), QStringLiteral("\n"));
}

class LatexWriter
{
public:
    explicit LatexWriter(const xmlNode *body) { collectNotes(body); }

    QString flow(const xmlNode *parent)
    {
        QString out;
        QString run;
        auto flush = [&] {
            const QString text = trimmedRun(run);
            if (!text.isEmpty())
                out += text + QStringLiteral("\n\n");
            run.clear();
        };
        for (const xmlNode *child = parent->children; child; child = child->next) {
            if (isBlock(name(child))) {
                flush();
                out += block(child);
            } else {
                run += inline_(child);
            }
        }
        flush();
        return out;
    }

private:
    QString block(const xmlNode *node)
    {
        const QString element = name(node);
        if (element.size() == 2 && element[0] == u'h' && element[1] >= u'1' && element[1] <= u'6')
            return heading(node, element[1].digitValue());
        if (element == u"p")
            return paragraph(node);
        if (element == u"ul" || element == u"ol")
            return list(node, element == u"ol" ? "enumerate" : "itemize");
        if (element == u"dl")
            return definitions(node);
        if (element == u"blockquote")
            return environment("quote", nested(node));
        if (element == u"pre")
            return verbatim(node);
        if (element == u"table")
            return table(node);
        if (element == u"hr")
            return QStringLiteral("\\begin{center}\\rule{3in}{0.4pt}\\end{center}\n\n");
        if (element == u"div")
            return division(node);
        if (element == u"head" || element == u"style" || element == u"script")
            return QString();
        return flow(node);
    }

    QString heading(const xmlNode *node, int level)
    {
        QString out = QStringLiteral("\\%1{%2}\n")
                          .arg(QLatin1String(kSections[level - 1]), trimmedRun(inlines(node)));
        const QString label = labelOf(attribute(node, "id"));
        if (!label.isEmpty())
            out += QStringLiteral("\\label{%1}\n").arg(label);
        return out + u'\n';
    }

    QString paragraph(const xmlNode *node)
    {
        if (const xmlNode *image = onlyImage(node))
            return figure(image);
        const QString text = trimmedRun(inlines(node));
        if (text.isEmpty())
            return QString();
        // The page-break marker as smart punctuation may have set it.
        if (text == kPageBreakMarker || text == QStringLiteral("\u2013tlpagebreak\u2013"))
            return kPageBreakMarker + QStringLiteral("\n\n");
        return text + QStringLiteral("\n\n");
    }

    QString list(const xmlNode *node, const char *kind)
    {
        QString items;
        for (const xmlNode *item = node->children; item; item = item->next) {
            if (name(item) != u"li")
                continue;
            const QString itemClass = attribute(item, "class");
            QString box;
            if (itemClass == u"tl_checkbox")
                box = QStringLiteral("{[}\\,\\,{]} ");
            else if (itemClass == u"tl_checkbox_done")
                box = QStringLiteral("{[}x{]} ");
            items += QStringLiteral("\\item ") + box + nested(item).trimmed() + u'\n';
        }
        // LaTeX refuses a list without items.
        return items.isEmpty() ? QString() : environment(kind, items);
    }

    QString definitions(const xmlNode *node)
    {
        QString items;
        for (const xmlNode *child = node->children; child; child = child->next) {
            if (name(child) == u"dt")
                items += QStringLiteral("\\item[%1] ").arg(trimmedRun(inlines(child)));
            else if (name(child) == u"dd")
                items += nested(child).trimmed() + u'\n';
        }
        return items.isEmpty() ? QString() : environment("description", items);
    }

    QString verbatim(const xmlNode *node)
    {
        QString code = textContent(node);
        if (!code.endsWith(u'\n'))
            code += u'\n';
        return QStringLiteral("\\begin{verbatim}\n%1\\end{verbatim}\n\n").arg(code);
    }

    QString division(const xmlNode *node)
    {
        const QString divisionClass = attribute(node, "class");
        if (divisionClass == u"pagebreak")
            return QStringLiteral("\\newpage\n\n");
        // Notes stand where they are called; the title page has the contents.
        if (divisionClass == u"footnotes" || divisionClass == u"TOC")
            return QString();
        return flow(node);
    }

    QString table(const xmlNode *node)
    {
        QList<QList<const xmlNode *>> rows;
        QList<bool> headerRows;
        collectRows(node, rows, headerRows);
        qsizetype columns = 0;
        for (const auto &row : rows)
            columns = std::max(columns, row.size());
        if (columns == 0)
            return QString();
        QString alignments;
        for (qsizetype column = 0; column < columns; ++column)
            alignments += alignmentOf(rows.first().value(column));
        QString body = QStringLiteral("\\hline\n");
        ++m_cellDepth;
        for (qsizetype r = 0; r < rows.size(); ++r) {
            QStringList cells;
            for (const xmlNode *cell : rows[r])
                cells << trimmedRun(inlines(cell));
            while (cells.size() < columns)
                cells << QString();
            body += cells.join(QStringLiteral(" & ")) + QStringLiteral(" \\\\\n");
            if (headerRows[r] && (r + 1 == rows.size() || !headerRows[r + 1]))
                body += QStringLiteral("\\hline\n");
        }
        --m_cellDepth;
        body += QStringLiteral("\\hline\n");
        const QString tabular =
            QStringLiteral("\\begin{tabular}{%1}\n%2\\end{tabular}\n").arg(alignments, body);
        if (m_depth > 0)
            return environment("center", tabular);
        return QStringLiteral("\\begin{table}[htbp]\n\\centering\n%1\\end{table}\n\n").arg(tabular);
    }

    void collectRows(const xmlNode *node, QList<QList<const xmlNode *>> &rows,
                     QList<bool> &headerRows)
    {
        for (const xmlNode *child = node->children; child; child = child->next) {
            const QString element = name(child);
            if (element == u"thead" || element == u"tbody" || element == u"tfoot") {
                collectRows(child, rows, headerRows);
            } else if (element == u"tr") {
                QList<const xmlNode *> cells;
                bool header = false;
                for (const xmlNode *cell = child->children; cell; cell = cell->next) {
                    if (name(cell) == u"td" || name(cell) == u"th") {
                        cells << cell;
                        header = header || name(cell) == u"th";
                    }
                }
                rows << cells;
                headerRows << header;
            }
        }
    }

    static QChar alignmentOf(const xmlNode *cell)
    {
        if (!cell)
            return u'l';
        const QString style = attribute(cell, "style") + attribute(cell, "align");
        if (style.contains(QStringLiteral("center")))
            return u'c';
        if (style.contains(QStringLiteral("right")))
            return u'r';
        return u'l';
    }

    // A figure where the image stands alone in its paragraph, at the outer
    // level, where floats may go.
    static const xmlNode *onlyImage(const xmlNode *paragraph)
    {
        const xmlNode *image = nullptr;
        for (const xmlNode *child = paragraph->children; child; child = child->next) {
            if (isWhitespace(child))
                continue;
            if (name(child) != u"img" || image)
                return nullptr;
            image = child;
        }
        return image;
    }

    QString figure(const xmlNode *image)
    {
        const QString source = attribute(image, "src");
        if (isRemote(source))
            return inline_(image) + QStringLiteral("\n\n");
        if (m_depth > 0)
            return environment("center", graphics(source, QStringLiteral("\\linewidth")) + u'\n');
        QString out = QStringLiteral("\\begin{figure}[htbp]\n\\centering\n%1\n")
                          .arg(graphics(source, QStringLiteral("\\textwidth")));
        const QString alt = attribute(image, "alt").trimmed();
        if (!alt.isEmpty())
            out += QStringLiteral("\\caption{%1}\n").arg(latexEscaped(alt));
        return out + QStringLiteral("\\end{figure}\n\n");
    }

    static bool isRemote(const QString &source)
    {
        const QUrl url(source);
        return !url.scheme().isEmpty() && url.scheme() != u"file";
    }

    // Sized to the width at hand, never taller than most of a page.
    static QString graphics(const QString &source, const QString &width)
    {
        QString file = QUrl::fromPercentEncoding(source.toUtf8());
        if (file.startsWith(QStringLiteral("file://")))
            file = file.mid(7);
        return QStringLiteral(
                   "\\includegraphics[keepaspectratio,width=%1,height=0.75\\textheight]{%2}")
            .arg(width, urlArgument(file));
    }

    QString nested(const xmlNode *node)
    {
        ++m_depth;
        QString out = flow(node);
        --m_depth;
        return out;
    }

    static QString environment(const char *kind, const QString &content)
    {
        return QStringLiteral("\\begin{%1}\n%2\\end{%1}\n\n").arg(QLatin1String(kind), content);
    }

    QString inlines(const xmlNode *node)
    {
        QString out;
        for (const xmlNode *child = node->children; child; child = child->next)
            out += inline_(child);
        return out;
    }

    QString inline_(const xmlNode *node)
    {
        if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)
            return text(textContent(node));
        const QString element = name(node);
        if (element.isEmpty())
            return QString();
        if (element == u"em" || element == u"i" || element == u"cite")
            return command("emph", node);
        if (element == u"strong" || element == u"b")
            return command("textbf", node);
        if (element == u"u")
            return command("underline", node);
        if (element == u"sub")
            return command("textsubscript", node);
        if (element == u"code" || element == u"tt" || element == u"kbd" || element == u"samp")
            return QStringLiteral("\\texttt{%1}").arg(latexEscaped(textContent(node)));
        if (element == u"br")
            return m_cellDepth > 0 ? QStringLiteral(" ") : QStringLiteral("\\\\\n");
        if (element == u"img")
            return image(node);
        if (element == u"a")
            return link(node);
        if (element == u"sup")
            return superscript(node);
        if (isBlock(element))
            return nested(node);
        return inlines(node);
    }

    QString command(const char *name, const xmlNode *node)
    {
        return QStringLiteral("\\%1{%2}").arg(QLatin1String(name), inlines(node));
    }

    QString image(const xmlNode *node)
    {
        const QString source = attribute(node, "src");
        if (isRemote(source)) {
            const QString alt = attribute(node, "alt");
            return QStringLiteral("\\href{%1}{%2}")
                .arg(urlArgument(source), latexEscaped(alt.isEmpty() ? source : alt));
        }
        return graphics(source, QStringLiteral("\\linewidth"));
    }

    QString link(const xmlNode *node)
    {
        const QString target = attribute(node, "href");
        if (target.startsWith(QStringLiteral("#fnref:")))
            return QString();
        const QString content = inlines(node);
        if (target.startsWith(u'#')) {
            const QString label = labelOf(target.mid(1));
            return label.isEmpty() ? content
                                   : QStringLiteral("\\hyperref[%1]{%2}").arg(label, content);
        }
        if (target.isEmpty())
            return content;
        if (content.trimmed().isEmpty())
            return QStringLiteral("\\url{%1}").arg(urlArgument(target));
        return QStringLiteral("\\href{%1}{%2}").arg(urlArgument(target), content);
    }

    // A note's call is a superscript holding a link to the note.
    QString superscript(const xmlNode *node)
    {
        for (const xmlNode *child = node->children; child; child = child->next) {
            if (name(child) != u"a")
                continue;
            const QString target = attribute(child, "href");
            if (target.startsWith(QStringLiteral("#fn:")))
                return QStringLiteral("\\footnote{%1}").arg(m_notes.value(target.mid(1)));
        }
        return command("textsuperscript", node);
    }

    // The text of each note, by its id, for its call.
    void collectNotes(const xmlNode *node)
    {
        for (const xmlNode *child = node->children; child; child = child->next) {
            if (name(child) == u"div" && attribute(child, "class") == u"footnotes") {
                for (const xmlNode *list = child->children; list; list = list->next) {
                    if (name(list) != u"ol")
                        continue;
                    for (const xmlNode *note = list->children; note; note = note->next)
                        if (name(note) == u"li")
                            m_notes.insert(attribute(note, "id"), nested(note).trimmed());
                }
            } else if (child->type == XML_ELEMENT_NODE) {
                collectNotes(child);
            }
        }
    }

    // Text as it stands in a paragraph: escaped; index marks kept whole for
    // the document's index rewrite; formulas, which the converter keeps
    // between "$$", "\(" or "\[", as they are.
    static QString text(const QString &raw)
    {
        static const Regex kept(
            QStringLiteral(
                "\\[>>([^\\]].+?)\\]|\\$\\$.+?\\$\\$|\\\\\\(.+?\\\\\\)|\\\\\\[.+?\\\\\\]"),
            RegexOption::DotMatchesNewline);
        QString out;
        qsizetype at = 0;
        for (const RegexMatch &m : kept.allMatches(raw)) {
            out += latexEscaped(QStringView(raw).sliced(at, m.start() - at));
            out += m.hasGroup(1) ? QStringLiteral("{[>>%1]}").arg(latexEscaped(m.captured(raw, 1)))
                                 : m.capturedString(raw);
            at = m.end();
        }
        return out + latexEscaped(QStringView(raw).sliced(at));
    }

    QHash<QString, QString> m_notes;
    // Inside lists, quotations and notes no float may stand.
    int m_depth = 0;
    // Inside table cells no line may end.
    int m_cellDepth = 0;
};

const xmlNode *bodyOf(const xmlNode *node)
{
    for (; node; node = node->next) {
        if (name(node) == u"body")
            return node;
        if (const xmlNode *inner = bodyOf(node->children))
            return inner;
    }
    return nullptr;
}

} // namespace

QString latexEscaped(QStringView text)
{
    QString out;
    out.reserve(text.size() + text.size() / 8);
    for (const QChar c : text) {
        switch (c.unicode()) {
        case u'#':
        case u'$':
        case u'%':
        case u'&':
        case u'_':
        case u'{':
        case u'}':
            out += u'\\';
            out += c;
            break;
        case u'~':
            out += QStringLiteral("\\textasciitilde{}");
            break;
        case u'^':
            out += QStringLiteral("\\textasciicircum{}");
            break;
        case u'\\':
            out += QStringLiteral("\\textbackslash{}");
            break;
        case u'[':
            out += QStringLiteral("{[}");
            break;
        case u']':
            out += QStringLiteral("{]}");
            break;
        case u'<':
            out += QStringLiteral("\\textless{}");
            break;
        case u'>':
            out += QStringLiteral("\\textgreater{}");
            break;
        case u'|':
            out += QStringLiteral("\\textbar{}");
            break;
        default:
            out += c;
        }
    }
    return out;
}

QString latexOfHTMLBody(const QString &html)
{
    const HtmlDocument document =
        parsedHTML(QStringLiteral("<html><body>%1</body></html>").arg(html));
    const xmlNode *body = document ? bodyOf(xmlDocGetRootElement(document.get())) : nullptr;
    if (!body)
        return QString();
    LatexWriter writer(body);
    return writer.flow(body);
}

} // namespace tl::convert
