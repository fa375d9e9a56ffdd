#include "convert/latex_writer.h"
#include "convert/multimarkdown.h"
#include "convert_test_support.h"

namespace {

using namespace tl::convert;
using tltest::TextCase;

using LatexWriter = tltest::ConvertTest;

TEST_F(LatexWriter, EachConstructInItsLatexForm)
{
    const TextCase cases[] = {
        {"headings by level with their labels", "<h1 id=\"a\">A</h1><h3 id=\"c\">C</h3><h6>F</h6>",
         "\\section{A}\n\\label{a}\n\n\\subsubsection{C}\n\\label{c}\n\n\\subparagraph{F}\n\n"},
        {"emphasis", "<p><em>e</em> <strong>s</strong> <u>u</u> x<sub>2</sub> x<sup>2</sup></p>",
         "\\emph{e} \\textbf{s} \\underline{u} x\\textsubscript{2} x\\textsuperscript{2}\n\n"},
        {"inline code escaped, not verbatim", "<p><code>a_b{}</code></p>",
         "\\texttt{a\\_b\\{\\}}\n\n"},
        {"nested list", "<ul><li>a<ul><li>b</li></ul></li><li>c</li></ul>",
         "\\begin{itemize}\n\\item a\n\n\\begin{itemize}\n\\item b\n\\end{itemize}\n"
         "\\item c\n\\end{itemize}\n\n"},
        {"ordered list", "<ol><li><p>one</p></li><li>two</li></ol>",
         "\\begin{enumerate}\n\\item one\n\\item two\n\\end{enumerate}\n\n"},
        {"a list without items is none", "<ul></ul>", ""},
        {"task items",
         "<ul><li class=\"tl_checkbox\">a</li><li class=\"tl_checkbox_done\">b</li></ul>",
         "\\begin{itemize}\n\\item {[}\\,\\,{]} a\n\\item {[}x{]} b\n\\end{itemize}\n\n"},
        {"definition list", "<dl><dt>Term</dt><dd>Meaning</dd></dl>",
         "\\begin{description}\n\\item[Term] Meaning\n\\end{description}\n\n"},
        {"quotation", "<blockquote><p>q<br/>\nr</p></blockquote>",
         "\\begin{quote}\nq\\\\\nr\n\n\\end{quote}\n\n"},
        {"verbatim keeps its characters", "<pre><code>a_b {} \\ %\n</code></pre>",
         "\\begin{verbatim}\na_b {} \\ %\n\\end{verbatim}\n\n"},
        {"table with alignment",
         "<table><thead><tr><th style=\"text-align:left;\">L</th><th "
         "style=\"text-align:center;\">C</th><th align=\"right\">R</th></tr></thead>"
         "<tbody><tr><td>1</td><td>2</td></tr></tbody></table>",
         "\\begin{table}[htbp]\n\\centering\n\\begin{tabular}{lcr}\n\\hline\nL & C & R \\\\\n"
         "\\hline\n1 & 2 &  \\\\\n\\hline\n\\end{tabular}\n\\end{table}\n\n"},
        {"links", "<p><a href=\"http://x.org/a%20b#c\">x&amp;y</a> <a href=\"#sec\">s</a></p>",
         "\\href{http://x.org/a\\%20b\\#c}{x\\&y} \\hyperref[sec]{s}\n\n"},
        {"image alone is a figure", "<p><img src=\"pic%20one.png\" alt=\"A_b\" /></p>",
         "\\begin{figure}[htbp]\n\\centering\n\\includegraphics[keepaspectratio,width="
         "\\textwidth,height=0.75\\textheight]{pic one.png}\n\\caption{A\\_b}\n\\end{figure}\n\n"},
        {"image in a list is no float",
         "<ul><li><p><img src=\"p.png\"></p></li><li><img "
         "src=\"q.png\"></li></ul>",
         "\\begin{itemize}\n\\item \\begin{center}\n\\includegraphics[keepaspectratio,width="
         "\\linewidth,height=0.75\\textheight]{p.png}\n\\end{center}\n\\item "
         "\\includegraphics[keepaspectratio,width=\\linewidth,height=0.75\\textheight]{q.png}\n"
         "\\end{itemize}\n\n"},
        {"remote image is a link", "<p><img src=\"https://x.org/p.png\" alt=\"P\"></p>",
         "\\href{https://x.org/p.png}{P}\n\n"},
        {"footnote at its call",
         "<p>a<sup id=\"fnref:1\"><a href=\"#fn:1\" rel=\"footnote\">1</a></sup></p>"
         "<div class=\"footnotes\"><hr/><ol><li id=\"fn:1\"><p>Note_1<a href=\"#fnref:1\" "
         "rev=\"footnote\">&#8617;</a></p></li></ol></div>",
         "a\\footnote{Note\\_1}\n\n"},
        {"index mark kept for the index rewrite", "<p>x [&gt;&gt;a_b] y</p>",
         "x {[>>a\\_b]} y\n\n"},
        {"formulas as they stand", "<p>$$E=mc^2$$, \\(a_b\\) and \\[x^2\\] cost $5</p>",
         "$$E=mc^2$$, \\(a_b\\) and \\[x^2\\] cost \\$5\n\n"},
        {"page break", "<div class=\"pagebreak\"></div><p>--tlpagebreak--</p>",
         "\\newpage\n\n--tlpagebreak--\n\n"},
        {"rule", "<hr/>", "\\begin{center}\\rule{3in}{0.4pt}\\end{center}\n\n"},
        {"breaks at the ends of a paragraph go", "<p><br/>a<br/></p>", "a\n\n"},
        {"scripts go", "<script>x()</script><p>a</p>", "a\n\n"},
    };
    for (const TextCase &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(latexOfHTMLBody(c.input), c.expected);
    }
}

TEST_F(LatexWriter, SpecialCharactersEscapedInTextNotInCommands)
{
    const TextCase cases[] = {
        {"each special character", "# $ % & _ { } ~ ^ \\",
         "\\# \\$ \\% \\& \\_ \\{ \\} \\textasciitilde{} \\textasciicircum{} \\textbackslash{}"},
        {"brackets and angles", "[a] <b> |", "{[}a{]} \\textless{}b\\textgreater{} \\textbar{}"},
        {"other text as it stands", "Caf\u00e9 \u201cquoted\u201d", "Caf\u00e9 \u201cquoted\u201d"},
    };
    for (const TextCase &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(latexEscaped(c.input), c.expected);
    }
    // The commands the writer makes keep their backslashes and braces.
    EXPECT_EQ(latexOfHTMLBody("<h2>50% &amp; more</h2><p><em>a_b</em></p>"),
              "\\subsection{50\\% \\& more}\n\n\\emph{a\\_b}\n\n");
}

TEST_F(LatexWriter, MarkdownThroughTheLayer)
{
    const QString html = tl_multiMarkdownWithPath(
        "# Title\n\nText with *emphasis* and a note[^1].\n\n[^1]: The note.\n", QString());
    EXPECT_EQ(latexOfHTMLBody(html),
              "\\section{Title}\n\\label{title}\n\nText with \\emph{emphasis} and a "
              "note\\footnote{The note.}.\n\n");
}

} // namespace
