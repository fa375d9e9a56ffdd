// The loops that repeat "as long as a match is found" run in passes; on
// generated HTML, nested and broken, they must give what the literal loop
// gives: replace the first match, search again from the beginning.
#include "convert/markdownify_loops.h"
#include "convert_test_support.h"

#include <QRandomGenerator>

namespace {

using tl::convert::RestartingLoop;
using namespace tl::convert::detail;

QString literalLoop(QString text, const RestartingLoop &loop)
{
    while (const std::optional<tl::RegexMatch> m = loop.regex.match(text)) {
        const QString replacement = loop.replacement(*m, text);
        if (replacement == m->captured(text))
            break;
        text.replace(m->start(), m->length(), replacement);
    }
    return text;
}

struct Element
{
    const char *open;
    const char *close;
};

// Elements nested at random, with text between them; now and then an end
// tag goes missing or a stray piece stands between.
class HtmlGenerator
{
public:
    HtmlGenerator(quint32 seed, std::vector<Element> elements, QStringList pieces)
        : m_random(seed), m_elements(std::move(elements)), m_pieces(std::move(pieces))
    {
    }

    QString next() { return children(0); }

private:
    QString children(int depth)
    {
        QString html;
        const int count = int(m_random.bounded(1, 5));
        for (int i = 0; i < count; ++i) {
            const quint32 roll = m_random.bounded(10);
            if (roll < 4 && depth < 4) {
                const Element &e = m_elements[m_random.bounded(quint32(m_elements.size()))];
                html += QString::fromUtf8(e.open) + children(depth + 1);
                if (m_random.bounded(8) != 0)
                    html += QString::fromUtf8(e.close);
            } else {
                html += m_pieces.at(int(m_random.bounded(quint32(m_pieces.size()))));
            }
        }
        return html;
    }

    QRandomGenerator m_random;
    std::vector<Element> m_elements;
    QStringList m_pieces;
};

void expectSameAsLiteralLoop(const RestartingLoop &loop, HtmlGenerator generator)
{
    for (int round = 0; round < 1500; ++round) {
        const QString html = generator.next();
        ASSERT_EQ(tl::convert::replacedWhileMatching(html, loop), literalLoop(html, loop)) << html;
    }
}

TEST(MarkdownifyLoops, Paragraphs)
{
    expectSameAsLiteralLoop(
        paragraphLoop(),
        HtmlGenerator(1, {{"<p>", "</p>"}, {"<p class=\"x\">", "</p>"}, {"<b>", "</b>"}},
                      {"a", "\n", "<", "p", ">", "<pre>", "</p>", "<p", " ", "<p>", "b c"}));
}

TEST(MarkdownifyLoops, Quotations)
{
    expectSameAsLiteralLoop(
        quotationLoop(),
        HtmlGenerator(2, {{"\n<blockquote>", "</blockquote>"}, {"<i>", "</i>"}},
                      {"a", "\n", "\n> b", " ", "<blockquote", "</blockquote>", ">", "<"}));
}

TEST(MarkdownifyLoops, Lists)
{
    expectSameAsLiteralLoop(listLoop(), HtmlGenerator(3,
                                                      {{"<ul>", "</ul>"},
                                                       {"<ol>", "</ol>"},
                                                       {"<li>", "</li>"},
                                                       {"<li>[ ]\t", "</li>"},
                                                       {"<li>[x]\t", "</li>"}},
                                                      {"a", "\n", " ", "<li>", "</li>", "<", "ul>",
                                                       "-\tb", "\n 1.\tc", "2. d"}));
}

TEST(MarkdownifyLoops, Headings)
{
    expectSameAsLiteralLoop(
        headingLoop(),
        HtmlGenerator(4, {{"<h1>", "</h1>"}, {"<h2 id=\"a\">", "</h2>"}, {"\n<h6>\n", "</h6>"}},
                      {"a", "\n", " ", "\n\n", "<h", "3>", "<hr>", "<", ">", "h4"}));
}

TEST(MarkdownifyLoops, Tables)
{
    expectSameAsLiteralLoop(tableLoop(),
                            HtmlGenerator(5,
                                          {{"<table>", "</table>"},
                                           {"<table class=\"t\">", "</table>"},
                                           {"<thead>", "</thead>"},
                                           {"<tbody>", "</tbody>"},
                                           {"<tr>", "</tr>"},
                                           {"<td>", "</td>"},
                                           {"<th style=\"text-align: center;\">", "</th>"},
                                           {"<th align=\"left\">", "</th>"}},
                                          {"a", "\n", " | ", "|", "<table", ">", "x y"}));
}

TEST(MarkdownifyLoops, Links)
{
    expectSameAsLiteralLoop(
        linkLoop(), HtmlGenerator(6,
                                  {{"<a href=\"u\">", "</a>"},
                                   {"<a id=\"i\" href=\"v(1)\" title=\"t\">", "</a>"},
                                   {"<a name=\"n\">", "</a>"},
                                   {"<b>", "</b>"}},
                                  {"a", "\n", "<a ", "\"", ">", "href=\"w\"", "</a>", " "}));
}

TEST(MarkdownifyLoops, Images)
{
    expectSameAsLiteralLoop(
        imageLoop(),
        HtmlGenerator(7, {{"<p>", "</p>"}},
                      {"<img src=\"a.png\">", "<img alt=\"x\" src=\"b(1).png\" />", "<img",
                       " src=\"", "\"", ">", "x", "\n", "<img src=\"<img src=\"c\">\">"}));
}

TEST(MarkdownifyLoops, DefinitionLists)
{
    expectSameAsLiteralLoop(definitionListLoop(),
                            HtmlGenerator(8,
                                          {{"<dl>", "</dl>"},
                                           {"<dl class=\"d\">", "</dl>"},
                                           {"<dt>", "</dt>"},
                                           {"<dd>", "</dd>"}},
                                          {"a", "\n", "<dl", ">", "</dl>", "<", "dl>"}));
}

} // namespace
