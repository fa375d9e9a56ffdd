#include "screenplay/fn_html_script.h"
#include "screenplay/script_page.h"
#include "screenplay_test_support.h"
#include "support/test_environment.h"

#include <gtest/gtest.h>

namespace {

using tl::screenplay::FNElement;
using tl::screenplay::FNHTMLScript;
using tl::screenplay::FNScript;

QString bodyOf(const QString &fountain)
{
    return FNHTMLScript(FNScript::fromString(fountain)).bodyForScript();
}

TEST(FNHTMLScript, FrameAroundTheBody)
{
    FNScript script = FNScript::fromString(QStringLiteral("Rain."));
    FNHTMLScript page(script);
    const QString css = FNHTMLScript::cssText();
    ASSERT_TRUE(css.contains(".dual-dialogue-right"));
    const QString body = "<p class='page-break'>1.</p>\n<p class='action'>Rain.</p>\n";
    EXPECT_EQ(page.html(), "<!DOCTYPE html>\n<html>\n<head>\n<style type='text/css'>\n" + css +
                               "</style>\n</head>\n<body>\n<article>\n<section>\n" + body +
                               "</section>\n</article>\n</body>\n</html>");
    EXPECT_EQ(page.numberOfPages(), 1);
    // The body is worked out once.
    page.script.elements.first()->elementText = QStringLiteral("Sun.");
    EXPECT_TRUE(page.html().contains("Rain."));
}

TEST(FNHTMLScript, MissingStyleSheetGivesAnEmptyStyle)
{
    const QString empty = tltest::makeTemporaryFolder("no-resources");
    qputenv("TAVELLE_RESOURCES", empty.toUtf8());
    const QString html = FNHTMLScript(FNScript()).html();
    qunsetenv("TAVELLE_RESOURCES");
    EXPECT_EQ(html, "<!DOCTYPE html>\n<html>\n<head>\n<style type='text/css'>\n</style>\n"
                    "</head>\n<body>\n<article>\n<section>\n</section>\n</article>\n</body>\n"
                    "</html>");
}

struct TitleCase
{
    const char *name;
    const char *titlePage;
    const char *block;
};

const TitleCase kTitleCases[] = {
    {"title alone", "Title: Brick", "<p class='title'>Brick<br></p>"},
    {"authors alone get a credit", "Author: Rian",
     "<p class='title'>Untitled<br></p><p class='credit'>written by<br></p>"
     "<p class='authors'>Rian<br></p>"},
    {"credit alone gets anonymous authors", "Title: Brick\nCredit: by",
     "<p class='title'>Brick<br></p><p class='credit'>by<br></p>"
     "<p class='authors'>Anonymous<br></p>"},
    {"fields in their order, others ignored",
     "Contact: me\nNotes: none\nDraft date: today\nSource: a novel\nTitle: Brick",
     "<p class='title'>Brick<br></p><p class='source'>a novel<br></p>"
     "<p class='draft date'>today<br></p><p class='contact'>me<br></p>"},
    {"values one per break", "Title:\n    Two\n    Lines", "<p class='title'>Two<br>Lines<br></p>"},
    {"a later key replaces an earlier one", "Title: One\nTitle: Two",
     "<p class='title'>Two<br></p>"},
};

TEST(FNHTMLScript, TitleBlock)
{
    for (const TitleCase &c : kTitleCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(bodyOf(QString::fromUtf8(c.titlePage) + "\n\n"),
                  "<div id='script-title'>" + QString::fromUtf8(c.block) + "</div>");
    }
}

struct ElementCase
{
    const char *name;
    const char *fountain;
    const char *html; // after the first page's number
};

const ElementCase kElementCases[] = {
    {"markers come off", "@McCOY\nHi.\n\n~la la\n\n!LOUD\n\n.attic",
     "<p class='character'>McCOY</p>\n<p class='dialogue'>Hi.</p>\n"
     "<p class='lyrics'>la la</p>\n<p class='action'>LOUD</p>\n"
     "<p class='scene-heading'>attic</p>\n"},
    {"scene numbers on both sides", ".attic #4B#",
     "<p class='scene-heading'><span class='scene-number-left'>4B</span>attic"
     "<span class='scene-number-right'>4B</span></p>\n"},
    {"notes, boneyards, synopses and sections print nothing",
     "Rain.\n\n[[note]]\n\n/* cut */\n\n= turn\n\n# Act\n\nSun.",
     "<p class='action'>Rain.</p>\n<p class='action'>Sun.</p>\n"},
    {"a page break element closes the section and the page", "Rain.\n\n===\n\nSun.",
     "<p class='action'>Rain.</p>\n</section>\n<section>\n<p class='page-break'>2.</p>\n"
     "<p class='action'>Sun.</p>\n"},
    {"centred action", ">THE END<", "<p class='action center'>THE END</p>\n"},
    {"a bare marker prints nothing", "!\n\nRain.", "<p class='action'>Rain.</p>\n"},
    {"inline notes come out", "Rain [[wet]] falls.", "<p class='action'>Rain  falls.</p>\n"},
    {"no escaping", "Rain & <b>hail</b>.", "<p class='action'>Rain & <b>hail</b>.</p>\n"},
    {"line ends stay", "Rain.\nSun.", "<p class='action'>Rain.\nSun.</p>\n"},
};

TEST(FNHTMLScript, Elements)
{
    for (const ElementCase &c : kElementCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(bodyOf(QString::fromUtf8(c.fountain)),
                  "<p class='page-break'>1.</p>\n" + QString::fromUtf8(c.html));
    }
}

struct EmphasisCase
{
    const char *text;
    const char *html;
};

const EmphasisCase kEmphasisCases[] = {
    {"_***all***_", "<strong><em><u>all</strong></em></u>"},
    {"***bold italic***", "<strong><em>bold italic</strong></em>"},
    {"**_bold under_**", "<strong><u>bold under</u></strong>"},
    {"*_italic under_*", "<em><u>italic under</em></u>"},
    {"**bold**", "<strong>bold</strong>"},
    {"*italic*", "<em>italic</em>"},
    {"_under_", "<u>under</u>"},
    {"\\*not italic*", "\\*not italic*"},
    {"\\**still bold**", "\\<strong>still bold</strong>"},
    {"*one* and _two_", "<em>one</em> and <u>two</u>"},
};

TEST(FNHTMLScript, EmphasisRowsAsWritten)
{
    for (const EmphasisCase &c : kEmphasisCases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(bodyOf(QString::fromUtf8(c.text)),
                  QStringLiteral("<p class='page-break'>1.</p>\n<p class='action'>%1</p>\n")
                      .arg(QString::fromUtf8(c.html)));
    }
}

const char kOpenPair[] = "<div class='dual-dialogue'>\n<div class='dual-dialogue-left'>\n";
const char kRightHalf[] = "</div>\n<div class='dual-dialogue-right'>\n";
const char kClosePair[] = "</div>\n</div>\n";

TEST(FNHTMLScript, DualDialogueDivisions)
{
    EXPECT_EQ(bodyOf("Rain.\n\nBRICK\nA.\n\nSTEEL ^\nB.\n\nSun."),
              QStringLiteral("<p class='page-break'>1.</p>\n<p class='action'>Rain.</p>\n") +
                  kOpenPair + "<p class='character'>BRICK</p>\n<p class='dialogue'>A.</p>\n" +
                  kRightHalf + "<p class='character'>STEEL</p>\n<p class='dialogue'>B.</p>\n" +
                  kClosePair + "<p class='action'>Sun.</p>\n");
}

TEST(FNHTMLScript, UncompletedPairStaysOpen)
{
    FNScript script = FNScript::fromString("Rain.\n\nBRICK\nA.\n\nSun.");
    script.elements.at(1)->isDualDialogue = true;
    const QString body = FNHTMLScript(script).bodyForScript();
    EXPECT_TRUE(body.contains(kOpenPair));
    EXPECT_FALSE(body.contains("</div>"));
}

TEST(FNHTMLScript, ThirdDualCueOpensNoDivision)
{
    FNScript script = FNScript::fromString("Rain.\n\nA\n1.\n\nB ^\n2.\n\nC\n3.\n\nSun.");
    script.elements.at(5)->isDualDialogue = true;
    const QString body = FNHTMLScript(script).bodyForScript();
    EXPECT_EQ(body.count("<div class='dual-dialogue'>"), 1);
    EXPECT_EQ(body.count(kRightHalf), 1);
    EXPECT_TRUE(body.endsWith(QStringLiteral("<p class='dialogue'>3.</p>\n") + kClosePair +
                              "<p class='action'>Sun.</p>\n"));
}

TEST(FNHTMLScript, PagesAreNumberedAndPairsSpanThem)
{
    QString fountain = QStringLiteral("BRICK\nA.\n\n");
    for (int i = 0; i < 27; ++i)
        fountain += QStringLiteral("Beat %1.\n\n").arg(i);
    fountain += QStringLiteral("STEEL ^\nB.\n\nSun.");
    FNScript script = FNScript::fromString(fountain);
    // The first cue is paired with the second, pages apart.
    ASSERT_TRUE(script.elements.first()->isDualDialogue);
    const QString body = FNHTMLScript(script).bodyForScript();
    EXPECT_TRUE(body.startsWith(QStringLiteral("<p class='page-break'>1.</p>\n") + kOpenPair));
    const qsizetype second = body.indexOf("<p class='page-break'>2.</p>\n");
    ASSERT_GT(second, 0);
    // The left half stays open across the actions and the page number until
    // the second cue; the first action after the pair closes it.
    EXPECT_GT(body.indexOf(kRightHalf), second);
    EXPECT_TRUE(body.endsWith(QStringLiteral("<p class='dialogue'>B.</p>\n") + kClosePair +
                              "<p class='action'>Sun.</p>\n"));
}

TEST(FNHTMLScript, ContinuedCuesPrintAsCharacters)
{
    QString fountain;
    for (int i = 0; i < 20; ++i)
        fountain += QStringLiteral("Beat %1.\n\n").arg(i);
    fountain += "ANNA\n" + QString("One more thing. ").repeated(60).trimmed();
    const QString body = bodyOf(fountain);
    EXPECT_TRUE(body.contains("<p class='character'>(MORE)</p>\n<p class='page-break'>2.</p>\n"
                              "<p class='character'>ANNA</p>\n<p class='dialogue'>One more"))
        << body.toStdString();
}

TEST(ScriptPage, DocumentAndTextGiveThePageAndItsCount)
{
    const QString path = tltest::screenplayFixture("harbour_light.fountain");
    const auto document = tl::screenplay::scriptPageForDocument(path);
    EXPECT_EQ(document.pageCount, 2);
    EXPECT_TRUE(document.html.contains("<p class='page-break'>2.</p>"));
    EXPECT_TRUE(document.html.contains("<p class='title'>Harbour Light<br></p>"));
    const auto text = tl::screenplay::scriptPageForText(QString::fromUtf8(tltest::readFile(path)));
    EXPECT_EQ(text.html, document.html);
    EXPECT_EQ(text.pageCount, document.pageCount);
    EXPECT_EQ(tl::screenplay::scriptPageForText(QString()).pageCount, 0);
}

} // namespace
