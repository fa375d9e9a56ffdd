#include "screenplay/fast_fountain_parser.h"
#include "screenplay/fountain_parser.h"
#include "screenplay_test_support.h"

#include <gtest/gtest.h>

namespace {

namespace FountainParser = tl::screenplay::FountainParser;
using tl::screenplay::FastFountainParser;
using tltest::dump;

// Constructs both parsers read alike.
const char *const kCommonConstructs[] = {
    "INT. HOUSE - DAY\n\nRain on the glass.\n\nEXT. YARD - NIGHT\n\nWind.",
    "Rain.\n\nANNA\n(quietly)\nFirst line.\nSecond line.\n\nSun.",
    "Rain.\n\nBOB\nWell... maybe.",
    "Rain.\n\nCUT TO:\n\nEXT. ROAD - DAY\n\nA car.",
    "Rain.\n\n>THE END<",
    "Rain.\n\n/* cut this */\n\nSun.",
    "Rain.\n\n[[a note]]\n\nSun.",
    "= The turn.\n\nRain.",
    "# Act One\n\nRain.",
    "Rain.\n\nBOB\nHi.\n\nAL ^\nYo.",
    "Title: Brick\nAuthor: Rian\n\nRain.",
    "Title:\n    Two\n    Lines\nAuthor: Rian\n\nRain.",
};

TEST(FountainParser, AgreesWithTheLineParserOnCommonConstructs)
{
    for (const char *text : kCommonConstructs) {
        SCOPED_TRACE(text);
        const FastFountainParser fast(QString::fromUtf8(text));
        EXPECT_EQ(dump(FountainParser::parseBodyOfString(QString::fromUtf8(text))),
                  dump(fast.elements));
        EXPECT_EQ(dump(FountainParser::parseTitlePageOfString(QString::fromUtf8(text))),
                  dump(fast.titlePage));
    }
}

TEST(FountainParser, AgreesWithTheLineParserOnScriptsWithoutMarkers)
{
    for (const char *name : {"harbour_light.fountain", "night_ferry.fountain"}) {
        SCOPED_TRACE(name);
        const QString path = tltest::screenplayFixture(QString::fromLatin1(name));
        const FastFountainParser fast = FastFountainParser::fromFile(path);
        ASSERT_GT(fast.elements.size(), 30);
        EXPECT_EQ(dump(FountainParser::parseBodyOfFile(path)), dump(fast.elements));
        EXPECT_EQ(dump(FountainParser::parseTitlePageOfFile(path)), dump(fast.titlePage));
    }
}

struct Difference
{
    const char *name;
    const char *text;
    const char *lineParser;
    const char *pipeline;
};

// Where the two parsers part, each by its own rules.
const Difference kKnownDifferences[] = {
    {"a page break keeps its text in the line parser only", "Rain.\n\n===\n\nSun.",
     "Action: Rain.\nPage Break: ===\nAction: Sun.", "Action: Rain.\nPage Break: \nAction: Sun."},
    {"lyrics are known to the line parser only", "Rain.\n\n~la la\n\nSun.",
     "Action: Rain.\nLyrics: ~la la\nAction: Sun.", "Action: Rain.\nAction: ~la la\nAction: Sun."},
    {"forced cues are known to the line parser only", "Rain.\n\n@McCOY\nHi.",
     "Action: Rain.\nCharacter: @McCOY\nDialogue: Hi.", "Action: Rain.\nAction: @McCOY\nHi."},
    {"the pipeline's section row takes a scene number", "INT. HOUSE - DAY #1#\n\nRain.",
     "Scene Heading: INT. HOUSE - DAY \nAction: Rain.", "Section Heading (1d): 1#\nAction: Rain."},
    {"the centred row takes the blank line behind it", "Rain.\n\n>THE END<\n\n> FADE TO BLACK.",
     "Action: Rain.\nAction (centered): THE END\nTransition: FADE TO BLACK.",
     "Action: Rain.\nAction (centered): THE END\nAction: > FADE TO BLACK."},
    {"the pipeline pairs cues from the third element on", "Rain.\n\nBOB ^\nHi.",
     "Action: Rain.\nCharacter (dual dialogue): BOB\nDialogue: Hi.",
     "Action: Rain.\nCharacter: BOB ^\nDialogue: Hi."},
    {"a long boneyard is whole in the pipeline", "Rain.\n\n/* one\ntwo */\n\nSun.",
     "Action: Rain.\nBoneyard: \n\nAction: Sun.",
     "Action: Rain.\nBoneyard:  one\ntwo \nAction: Sun."},
};

TEST(FountainParser, KnownDifferencesFromTheLineParser)
{
    for (const Difference &d : kKnownDifferences) {
        SCOPED_TRACE(d.name);
        const QString text = QString::fromUtf8(d.text);
        EXPECT_EQ(dump(FastFountainParser(text).elements), QString::fromUtf8(d.lineParser));
        EXPECT_EQ(dump(FountainParser::parseBodyOfString(text)), QString::fromUtf8(d.pipeline));
    }
}

struct BlockCase
{
    const char *text;
    const char *body;
    const char *titlePage;
};

const BlockCase kBlockCases[] = {
    {"Rain.", "\n\nRain.\n\n", ""},
    {"\n\n\nRain.", "\n\nRain.\n\n", ""},
    {"\n\nRain.\n\nSun.", "\n\nRain.\n\nSun.\n\n", ""},
    {"Title: Brick\nAuthor: Rian\n\nRain.", "\n\n\nRain.\n\n", "Title: Brick\nAuthor: Rian"},
    {"Contact:\n  Quill\n\nRain.", "\n\n\nRain.\n\n", "Contact:\n  Quill"},
    {"Title:\n\nRain.", "\n\nTitle:\n\nRain.\n\n", ""},
};

TEST(FountainParser, TitlePageBlockAndBody)
{
    for (const BlockCase &c : kBlockCases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(FountainParser::bodyOfString(QString::fromUtf8(c.text)),
                  QString::fromUtf8(c.body));
        EXPECT_EQ(FountainParser::titlePageOfString(QString::fromUtf8(c.text)),
                  QString::fromUtf8(c.titlePage));
    }
}

TEST(FountainParser, TitlePageFields)
{
    const QString text = QStringLiteral("Title: Brick\nAuthor(s): Rian\nContact:\n\tQuill\n"
                                        "  12 Row\nNotes:\nDraft date: today\n\nRain.");
    EXPECT_EQ(dump(FountainParser::parseTitlePageOfString(text)),
              "title=Brick; contact=Quill|12 Row; draft date=today");
}

TEST(FountainParser, FieldsOfTaggedElements)
{
    const auto elements = FountainParser::parseBodyOfString(
        QStringLiteral("Rain.\n\n.ATTIC\n\n## Part Two\n\n> THE END <"));
    ASSERT_EQ(elements.size(), 4);
    EXPECT_EQ(elements.at(1)->description(), "Scene Heading: ATTIC");
    EXPECT_EQ(elements.at(2)->sectionDepth, 2u);
    EXPECT_EQ(elements.at(2)->elementText, " Part Two");
    EXPECT_TRUE(elements.at(3)->isCentered);
    EXPECT_EQ(elements.at(3)->elementText, "THE END");
}

TEST(FountainParser, NotesKeepTheirLineEndsAndEscapesComeBack)
{
    const std::pair<const char *, const char *> cases[] = {
        {"Rain.\n\n/* one\ntwo */\n\n[[three\nfour]]\n\n/* five\nsix */\n\nSun.",
         "Action: Rain.\nBoneyard:  one\ntwo \nComment: three\nfour\nBoneyard:  five\nsix \n"
         "Action: Sun."},
        {"Rain... & <b>hail</b>.\n\nSun.", "Action: Rain... & <b>hail</b>.\nAction: Sun."},
    };
    for (const auto &[text, elements] : cases)
        EXPECT_EQ(dump(FountainParser::parseBodyOfString(QString::fromUtf8(text))),
                  QString::fromUtf8(elements));
}

} // namespace
