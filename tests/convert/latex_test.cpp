#include "convert/latex.h"
#include "convert/store_registration.h"
#include "convert_test_support.h"
#include "store/duplicate_as.h"

#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <unicode/uloc.h>

namespace {

using namespace tl::convert;

using Latex = tltest::ConvertTest;

// The locale's default for one test.
class DefaultLocale
{
public:
    explicit DefaultLocale(const char *locale) : m_saved(uloc_getDefault())
    {
        UErrorCode status = U_ZERO_ERROR;
        uloc_setDefault(locale, &status);
    }
    ~DefaultLocale()
    {
        UErrorCode status = U_ZERO_ERROR;
        uloc_setDefault(m_saved.c_str(), &status);
    }

private:
    std::string m_saved;
};

TEST_F(Latex, PreambleTitlePageBodyAndClosingMatterInOrder)
{
    const QString latex = tl_markdownToLatex(document("My Report.md", "Hello *you*.\n"));
    const QStringList parts{
        "\\documentclass[us, 11pt]{article}",
        "\\usepackage[acronym, toc]{glossaries}",
        "\\makeglossaries\n\n\\usepackage{graphicx}\n\\begin{document}\n\n\\title{My Report}\n"
        "\\author{Author}\n\\date{",
        "\\tableofcontents\n\\clearpage\n\n",
        "Hello \\emph{you}.",
        "\\printglossary[type=\\acronymtype]\n\\clearpage\n\\printindex\n"
        "\\end{document}"};
    qsizetype at = 0;
    for (const QString &part : parts) {
        SCOPED_TRACE(part.toStdString());
        const qsizetype found = latex.indexOf(part, at);
        EXPECT_GE(found, at);
        at = std::max(at, found);
    }
    EXPECT_EQ(latex.count("\\end{document}"), 1);
    EXPECT_FALSE(latex.contains("STARTOFTEXTMARKER"));
}

TEST_F(Latex, ThePartsRulesOnDocumentsAndTexts)
{
    struct Case
    {
        const char *name;
        QString markdown;
        QString holds;
    };
    const Case cases[] = {
        {"page break", "One\n\n{{pagebreak}}\n\nTwo\n", "One\n\n\\newpage\n\nTwo"},
        {"page break in any case", "One\n\n{{PageBreak}}\nTwo\n", "\\newpage\n"},
        {"index mark", "Words [>>Some_entry] here.\n", "\\index{Some\\_entry}"},
        {"inline note", "A note ^[in line] here.\n", "\\footnote{in line}"},
        {"highlight as its text", "A ==marked== word.\n", "A marked word."},
        {"every newline a break", "one\ntwo\n", "one\\\\\ntwo"},
        {"bare text title", "", "\\title{Untitled Document}"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_TRUE(tl_markdownToLatex(c.markdown).contains(c.holds))
            << tl_markdownToLatex(c.markdown);
    }
}

TEST_F(Latex, ThePaperFollowsTheLocale)
{
    EXPECT_EQ(latexPaperForLocale("de_DE"), "a4paper");
    EXPECT_EQ(latexPaperForLocale("en_GB"), "a4paper");
    EXPECT_EQ(latexPaperForLocale("en_US"), "us");
    const QString path = document("Paper.md", "Text\n");
    {
        DefaultLocale german("de_DE");
        EXPECT_TRUE(tl_markdownToLatex(path).startsWith("\\documentclass[a4paper, 11pt]"));
    }
    DefaultLocale american("en_US");
    EXPECT_TRUE(tl_markdownToLatex(path).startsWith("\\documentclass[us, 11pt]"));
}

TEST_F(Latex, TitleDateAndTextComeFromTheFile)
{
    const QString path = document("A_b & c.md", "Body\n");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime(QDate(2021, 3, 4), QTime(10, 0)),
                                 QFileDevice::FileModificationTime));
    file.close();
    DefaultLocale american("en_US");
    const QString latex = tl_markdownToLatex(path);
    EXPECT_TRUE(latex.contains("\\title{A\\_b \\& c}\n")) << latex;
    EXPECT_TRUE(latex.contains("\\date{March 4, 2021}\n")) << latex;
    EXPECT_TRUE(latex.contains("\nBody\n")) << latex;
}

TEST_F(Latex, TheDuplicateStandsBesideTheDocument)
{
    registerConversionsWithStore();
    const QString path = document("Chapter.md", "# Start\n\nText.\n");
    EXPECT_EQ(tl::store::tl_duplicateAsLatex(path), root_ + "/Chapter.tex");
    const QString written = QString::fromUtf8(tltest::readFile(root_ + "/Chapter.tex"));
    EXPECT_TRUE(written.contains("\\section{Start}")) << written;
    EXPECT_TRUE(written.contains("\\title{Chapter}")) << written;
    EXPECT_EQ(tl::store::tl_duplicateAsLatex(path), root_ + "/Chapter 1.tex");
}

// Every construct the writer knows, through pdflatex where it is installed.
TEST_F(Latex, ADocumentWithEveryConstructCompiles)
{
    const QString pdflatex = QStandardPaths::findExecutable("pdflatex");
    if (pdflatex.isEmpty())
        GTEST_SKIP() << "pdflatex is not installed: the compile of a generated document is "
                        "not checked";
    QImage picture(40, 20, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    ASSERT_TRUE(picture.save(root_ + "/picture.png"));
    const QString path = document(
        "Every_Construct & More.md",
        "# Heading One\n\nSome *emphasis*, **strong**, `code & {stuff}`, a "
        "[link](http://example.com/a_b?x=1&y=2#frag) and 50% of $5 & #1 ~ ^ \\ { } _ < > |.\n\n"
        "## Sub [heading]\n\nSee [the start](#headingone).\n\n- item one\n- item two\n"
        "    - nested a\n    - nested b\n\n1. first\n2. second\n\nTerm\n: Definition\n\n"
        "> A quotation\n> over two lines\n\n```\nverbatim {code} \\ here % # _\n```\n\n"
        "| Left | Center | Right |\n|:-----|:------:|------:|\n| a & b | c_d | 1 |\n\n"
        "![An image_1](picture.png)\n\nA note[^1] and ^[inline text] here [>>index entry].\n\n"
        "{{pagebreak}}\n\n- [ ] open task\n- [x] done task\n\n---\n\n#### Level four\n\n"
        "Last line with $$E=mc^2$$ and \\\\(a_b\\\\).\n\n[^1]: The footnote text.\n");
    const QString tex = root_ + "/Every.tex";
    tltest::writeFile(tex, tl_markdownToLatex(path).toUtf8());
    QProcess run;
    run.setWorkingDirectory(root_);
    run.start(pdflatex, {"-interaction=nonstopmode", "-halt-on-error", "Every.tex"});
    ASSERT_TRUE(run.waitForFinished(120000));
    const QString log = QString::fromUtf8(run.readAllStandardOutput());
    EXPECT_EQ(run.exitCode(), 0) << log.right(3000).toStdString();
    EXPECT_FALSE(log.contains("\n! ")) << log.right(3000).toStdString();
    EXPECT_TRUE(QFileInfo::exists(root_ + "/Every.pdf"));
}

} // namespace
