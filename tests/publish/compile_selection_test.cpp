#include "publish/compile_selection.h"
#include "publish/ebook_details.h"
#include "publish/pdf_printing.h"
#include "publish_test_support.h"

using namespace tltest;
using namespace tl::publish;

namespace {

using SelectionTest = PublishTest;

TEST_F(SelectionTest, OnlyCompilableDocumentsAreKept)
{
    const QString text = doc("a.md", "a");
    const QString image = doc("b.png", "b");
    const QString page = doc("c.html", "c");
    const QString mail = doc("d.eml", "d");
    doc("e.mov", "e");
    doc("f.webloc", "f");
    EXPECT_EQ(compilableDocuments({book_}), QStringList({text, image, page, mail}));
}

TEST_F(SelectionTest, SheetProposals)
{
    EXPECT_EQ(proposedCompileTitle("Given", {"/L/a.md"}), "Given");
    EXPECT_EQ(proposedCompileTitle("", {"/L/Chapter 1.md", "/L/b.md"}), "Chapter 1");
    EXPECT_EQ(proposedCompileTitle("", {}), "Compiled documents");
    EXPECT_EQ(separatorForChoice(2), ">%pagebreak%");
    EXPECT_EQ(separatorForChoice(1), "<hr>");
    EXPECT_EQ(separatorForChoice(0), "");
}

TEST_F(SelectionTest, EBookDetailsProposeTheBookAndThisYearsRights)
{
    useManualClock(QDateTime(QDate(2031, 6, 1), QTime(12, 0)));
    setSetting("eBookAuthor", "Ann Author");
    EBookAttributes given;
    given.subject = "Tales";
    const EBookAttributes filled = withProposedDetails(given, {}, book_);
    EXPECT_EQ(filled.title, "Book");
    EXPECT_EQ(filled.author, "Ann Author");
    EXPECT_EQ(filled.subject, "Tales");
    EXPECT_EQ(filled.rights, QString::fromUtf8("\u00A92031 - All Rights Reserved."));
}

TEST(PaperSize, FollowsTheLocalesTerritory)
{
    const std::pair<const char *, const char *> cases[] = {
        {"en_US", "Letter"}, {"en_CA", "Letter"}, {"es_MX", "Letter"},
        {"en_GB", "A4"},     {"de_DE", "A4"},     {"fr_CA", "Letter"},
    };
    for (const auto &[locale, paper] : cases)
        EXPECT_EQ(paperForLocale(QLocale(QString::fromLatin1(locale))), paper) << locale;
}

TEST_F(SelectionTest, PlainTextPrintsAsPreformattedText)
{
    const QString page = printablePage(doc("n.txt", "a < b\n  indented"));
    EXPECT_TRUE(page.contains("<pre>a &lt; b\n  indented</pre>")) << page;
    EXPECT_TRUE(page.contains("<base href=\"file://" + book_ + "/\" />")) << page;
}

} // namespace
