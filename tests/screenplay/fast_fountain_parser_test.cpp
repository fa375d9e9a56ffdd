#include "screenplay/fast_fountain_parser.h"
#include "screenplay_test_support.h"
#include "support/test_environment.h"

#include <gtest/gtest.h>

namespace {

using tl::screenplay::FastFountainParser;
using tltest::dump;

struct BodyCase
{
    const char *name;
    const char *text;
    const char *elements; // descriptions, one a line
};

const BodyCase kBodyCases[] = {
    {"empty text", "", ""},
    {"forced heading with scene number, trimmed", ".the attic #4B# \n\nDust.",
     "Scene Heading: the attic\nAction: Dust."},
    {"heading with number keeps the blank before it", "INT. HOUSE - DAY #1#\n\nDust.",
     "Scene Heading: INT. HOUSE - DAY \nAction: Dust."},
    {"heading patterns without regard to case",
     "int. a - day\n\nEST. B\n\nI/E CAR\n\nINT./EXT. DOOR\n\nEXTRA",
     "Scene Heading: int. a - day\nScene Heading: EST. B\nScene Heading: I/E CAR\n"
     "Scene Heading: INT./EXT. DOOR\nAction: EXTRA"},
    {"two dots begin no forced heading", "..and so on\n\nNext.",
     "Action: ..and so on\nAction: Next."},
    {"heading with a line under it is action", "INT. HOUSE - DAY\nShe waits.",
     "Action: INT. HOUSE - DAY\nShe waits."},
    {"capitalised first line over a line is a cue", "BOB\nHello.",
     "Character: BOB\nDialogue: Hello."},
    {"capitalised line before a blank line is action", "BOB\n\nHello.",
     "Action: BOB\nAction: Hello."},
    {"capitalised line last in the text is action", "Hello.\n\nBOB", "Action: Hello.\nAction: BOB"},
    {"cue with parenthetical, speech of two lines",
     "Rain.\n\nANNA (CONT'D)\n(quietly)\nFirst line.\nSecond line.",
     "Action: Rain.\nCharacter: ANNA (CONT'D)\nParenthetical: (quietly)\n"
     "Dialogue: First line.\nSecond line."},
    {"lower-case cont'd", "Rain.\n\nANNA (cont'd)\nYes.",
     "Action: Rain.\nCharacter: ANNA (cont'd)\nDialogue: Yes."},
    {"two blanks keep a speech together", "Rain.\n\nANNA\nOne.\n  \nTwo.",
     "Action: Rain.\nCharacter: ANNA\nDialogue: One.\n  \nTwo."},
    {"two blanks outside dialogue are action", "Rain.\n\n  \n\nSun.",
     "Action: Rain.\nAction:   \nAction: Sun."},
    {"forced cue, action and lyric keep their markers", "@McCOY\nHi.\n\n!LOUD\n\n~la la",
     "Character: @McCOY\nDialogue: Hi.\nAction: !LOUD\nLyrics: ~la la"},
    {"a blank line between lyrics is a lyric of one blank", "~one\n\n~two\n~three",
     "Lyrics: ~one\nLyrics:  \nLyrics: ~two\nLyrics: ~three"},
    {"one-line boneyard keeps the blanks inside", "Rain.\n\n/* cut this */\n\nSun.",
     "Action: Rain.\nBoneyard:  cut this \nAction: Sun."},
    {"long boneyard loses its first and last line",
     "Rain.\n\n/* first\nmiddle\n\nmore\nlast */\n\nSun.",
     "Action: Rain.\nBoneyard: \nmiddle\n\nmore\n\nAction: Sun."},
    {"long boneyard with bare markers", "/*\nkept\n*/", "Boneyard: \nkept\n"},
    {"unterminated boneyard is dropped", "Rain.\n\n/* open\nnever closed", "Action: Rain."},
    {"page break keeps its text", "Rain.\n\n=====\n\nSun.",
     "Action: Rain.\nPage Break: =====\nAction: Sun."},
    {"synopsis keeps what follows the marker", "= The turn.\n\n   =Indented",
     "Synopsis:  The turn.\nSynopsis: Indented"},
    {"note on its own after a blank line", "Rain.\n\n[[ check this ]]",
     "Action: Rain.\nComment: check this"},
    {"note straight under action continues it", "Rain.\n[[ check this ]]",
     "Action: Rain.\n[[ check this ]]"},
    {"section depth counts leading blanks", "# Act\n\n  ## Scene\n\n#",
     "Section Heading (1d):  Act\nSection Heading (4d):  Scene"},
    {"transitions", "Rain.\n\nCUT TO:\n\n  FADE OUT.\n\nFADE TO BLACK.\n\n> BURN",
     "Action: Rain.\nTransition: CUT TO:\nTransition:   FADE OUT.\nTransition: FADE TO "
     "BLACK.\nTransition: BURN"},
    {"a TO: transition keeps its marker",
     "Rain.\n\n> SMASH TO:", "Action: Rain.\nTransition: > SMASH TO:"},
    {"centred action", "Rain.\n\n>  THE END  <", "Action: Rain.\nAction (centered): THE END"},
    {"dual dialogue marks the nearest earlier cue",
     "Rain.\n\nBRICK\nScrew it.\n\nA beat.\n\nSTEEL ^\nScrew it.",
     "Action: Rain.\nCharacter (dual dialogue): BRICK\nDialogue: Screw it.\nAction: A beat.\n"
     "Character (dual dialogue): STEEL\nDialogue: Screw it."},
    {"no caret work on a forced cue", "Rain.\n\nBRICK\nA.\n\n@steel ^\nB.",
     "Action: Rain.\nCharacter: BRICK\nDialogue: A.\nCharacter: @steel ^\nDialogue: B."},
    {"every line separator ends a line", "Rain.\u2028Hail.\u2029\u2029Sun.\u0085Snow.",
     "Action: Rain.\nHail.\nAction: Sun.\nSnow."},
    {"return line ends are line feeds", "BOB\r\nHi.\r\rRain.",
     "Character: BOB\nDialogue: Hi.\nAction: Rain."},
};

TEST(FastFountainParser, BodyRulesInOrder)
{
    for (const BodyCase &c : kBodyCases) {
        SCOPED_TRACE(c.name);
        const FastFountainParser parser(QString::fromUtf8(c.text));
        EXPECT_EQ(dump(parser.elements), QString::fromUtf8(c.elements));
    }
}

struct TitleCase
{
    const char *name;
    const char *text;
    const char *titlePage;
    const char *elements;
};

const TitleCase kTitleCases[] = {
    {"one inline key, body from the next block", "Title: Brick\n\nINT. A - DAY", "title=Brick",
     "Scene Heading: INT. A - DAY"},
    {"author becomes authors", "Title: Brick\nAuthor: Rian\nDraft date: today\n\nRain.",
     "title=Brick; authors=Rian; draft date=today", "Action: Rain."},
    {"a key alone with nothing else stays body", "Title:\n\nRain.", "",
     "Action: Title:\nAction: Rain."},
    {"a first block without a key stays body", "INT. A - DAY\n\nRain.", "",
     "Scene Heading: INT. A - DAY\nAction: Rain."},
    {"multi-line values are trimmed", "Contact:\n    Quill\n\t12 Row\n\nRain.",
     "contact=Quill|12 Row", "Action: Rain."},
    {"leading blank lines are no part of the block", "\n\n  Title: Brick\n\nRain.", "title=Brick",
     "Action: Rain."},
    {"the block goes wherever it is repeated", "Title: Echo\n\nRain.\n\nTitle: Echo", "title=Echo",
     "Action: Rain."},
    {"an inline key starts a fresh list", "Title:\n    A\nCredit: by\nAuthor:\n    C\n\nRain.",
     "title=A; credit=by; authors=C", "Action: Rain."},
};

TEST(FastFountainParser, TitlePages)
{
    for (const TitleCase &c : kTitleCases) {
        SCOPED_TRACE(c.name);
        const FastFountainParser parser(QString::fromUtf8(c.text));
        EXPECT_EQ(dump(parser.titlePage), QString::fromUtf8(c.titlePage));
        EXPECT_EQ(dump(parser.elements), QString::fromUtf8(c.elements));
    }
}

TEST(FastFountainParser, ConsecutiveKeysAloneShareOneList)
{
    const FastFountainParser parser(
        QStringLiteral("Title:\n    A\n    B\nAuthor:\n    C\n\nRain."));
    ASSERT_EQ(parser.titlePage.size(), 2);
    EXPECT_EQ(dump(parser.titlePage), "title=A|B|C; authors=A|B|C");
    EXPECT_EQ(parser.titlePage.at(0).values, parser.titlePage.at(1).values);
}

TEST(FastFountainParser, SceneNumbersAndDepthsAreFields)
{
    const FastFountainParser parser(QStringLiteral(".attic #4B#\n\n### Part"));
    ASSERT_EQ(parser.elements.size(), 2);
    EXPECT_EQ(parser.elements.at(0)->sceneNumber, QStringLiteral("4B"));
    EXPECT_EQ(parser.elements.at(1)->sectionDepth, 3u);
    EXPECT_EQ(parser.elements.at(1)->sceneNumber, std::nullopt);
}

TEST(FastFountainParser, UnreadableFileGivesAnEmptyScript)
{
    const QString path = tltest::makeTemporaryFolder("fountain") + "/latin1.fountain";
    ASSERT_TRUE(tltest::writeFile(path, QByteArray("INT. CAF\xC9 - DAY\n\nRain.")));
    const FastFountainParser parser = FastFountainParser::fromFile(path);
    EXPECT_TRUE(parser.elements.isEmpty());
    EXPECT_TRUE(parser.titlePage.isEmpty());
    EXPECT_TRUE(FastFountainParser::fromFile(path + "-missing").elements.isEmpty());
}

} // namespace
