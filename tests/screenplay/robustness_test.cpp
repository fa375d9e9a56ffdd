// Texts put together at random from the pieces the markup is made of, with
// odd line ends and characters: every stage takes them without harm and
// keeps its own promises.
#include "screenplay/fn_html_script.h"

#include <gtest/gtest.h>
#include <random>

namespace {

using tl::screenplay::FNScript;

const char *const kPieces[] = {
    "INT. HOUSE - DAY",
    ".forced",
    "..",
    "EXT. ROAD #12#",
    "#",
    "## Part",
    "= synopsis",
    "===",
    "/*",
    "*/",
    "/* one */",
    "[[note]]",
    "[[",
    "]]",
    "~lyric",
    "!action",
    "@cue",
    "BOB",
    "BOB ^",
    "^",
    "(beat)",
    "(",
    "CUT TO:",
    "FADE OUT.",
    ">",
    "<",
    "> center <",
    ">trans",
    "  ",
    "\t",
    "Title:",
    "Author: Someone",
    "    value",
    "*",
    "**",
    "***",
    "_",
    "\\*",
    "Go on now.",
    "A longer line of action that runs past the width of one line of the page and on.",
    "&lt;",
    "...",
    "@@@@@",
    "\u2028",
    "\u0085",
    "\r",
    "\r\n",
    "\n",
    "\n\n",
    "\u00e9",
    "\U0001F600",
};

QString randomText(std::mt19937 &random)
{
    std::uniform_int_distribution<int> piece(0, int(std::size(kPieces)) - 1);
    std::uniform_int_distribution<int> length(0, 80);
    std::uniform_int_distribution<int> separator(0, 3);
    QString text;
    for (int n = length(random); n > 0; --n) {
        text += QString::fromUtf8(kPieces[piece(random)]);
        text += separator(random) == 0 ? QStringLiteral(" ") : QStringLiteral("\n");
    }
    return text;
}

TEST(ScreenplayRobustness, RandomTextsGoThroughEveryStage)
{
    static const QStringList types{"Scene Heading", "Action",     "Character",       "Dialogue",
                                   "Parenthetical", "Transition", "Lyrics",          "Boneyard",
                                   "Comment",       "Synopsis",   "Section Heading", "Page Break"};
    std::mt19937 random(18);
    for (int round = 0; round < 200; ++round) {
        const QString text = randomText(random);
        SCOPED_TRACE(text.toStdString());
        for (int parser : {0, tl::screenplay::kAlternativeParser}) {
            const FNScript script = FNScript::fromString(text, parser);
            for (const auto &element : script.elements)
                ASSERT_TRUE(types.contains(element->elementType))
                    << element->elementType.toStdString();
            // Writing back and reading again needs no particular result, only
            // no harm.
            FNScript::fromString(script.stringFromDocument(), parser);
            tl::screenplay::FNHTMLScript page(script);
            const QString html = page.html();
            ASSERT_TRUE(html.startsWith("<!DOCTYPE html>\n"));
            if (!text.contains("page-break")) {
                EXPECT_EQ(html.count("<p class='page-break'>"), page.numberOfPages());
            }
        }
    }
}

} // namespace
