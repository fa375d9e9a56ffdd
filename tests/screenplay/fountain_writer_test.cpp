#include "screenplay/fn_script.h"
#include "screenplay/fountain_writer.h"
#include "screenplay_test_support.h"
#include "support/test_environment.h"

#include <gtest/gtest.h>

namespace {

using tl::screenplay::FNElement;
using tl::screenplay::FNScript;
using tltest::dump;

struct Element
{
    const char *type;
    const char *text;
};

struct BodyCase
{
    const char *name;
    std::vector<Element> elements;
    const char *body;
};

const BodyCase kBodyCases[] = {
    {"speech stands under its cue",
     {{"Character", "ANNA"}, {"Parenthetical", "(softly)"}, {"Dialogue", "Yes."}},
     "\nANNA\n(softly)\nYes.\n"},
    {"notes, boneyards and synopses",
     {{"Comment", "check"}, {"Boneyard", " cut "}, {"Synopsis", " turn"}},
     "\n[[check]]\n\n/* cut */\n\n= turn\n"},
    {"headings the pipeline would not know are forced",
     {{"Scene Heading", "INT. HOUSE"}, {"Scene Heading", "ATTIC"}},
     "\nINT. HOUSE\n\n.ATTIC\n"},
    {"every transition gets the marker", {{"Transition", "CUT TO:"}}, "\n> CUT TO:\n"},
    {"a page break is written whatever its text", {{"Page Break", ""}}, "\n====\n"},
    {"elements without text are left out",
     {{"Action", " \t"}, {"Lyrics", " "}, {"Action", "Rain."}},
     "\nRain.\n"},
    {"lyrics and others as they are",
     {{"Lyrics", "~la"}, {"General", "Plain"}},
     "\n~la\n\nPlain\n"},
};

FNScript scriptOf(const std::vector<Element> &elements)
{
    FNScript script;
    for (const Element &e : elements)
        script.elements.append(
            FNElement::elementOfType(QString::fromUtf8(e.type), QString::fromUtf8(e.text)));
    return script;
}

TEST(FountainWriter, BodyByType)
{
    for (const BodyCase &c : kBodyCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(scriptOf(c.elements).stringFromBody(), QString::fromUtf8(c.body));
    }
}

TEST(FountainWriter, MarksOfElements)
{
    FNScript script = scriptOf({{"Scene Heading", "INT. HOUSE"},
                                {"Section Heading", " Act"},
                                {"Action", "THE END"},
                                {"Action", "FIN "},
                                {"Character", "BRICK"},
                                {"Character", "STEEL"},
                                {"Character", "THIRD"}});
    script.elements[0]->sceneNumber = QStringLiteral("1A");
    script.elements[1]->sectionDepth = 2;
    script.elements[2]->isCentered = true;
    script.elements[3]->isCentered = true;
    for (int i : {4, 5, 6})
        script.elements[i]->isDualDialogue = true;
    EXPECT_EQ(script.stringFromBody(), "\nINT. HOUSE #1A#\n\n## Act\n\n> THE END <\n\n> FIN <\n"
                                       "\nBRICK\n\nSTEEL ^\n\nTHIRD\n");
    script.suppressSceneNumbers = true;
    EXPECT_TRUE(script.stringFromBody().startsWith("\nINT. HOUSE\n"));
}

TEST(FountainWriter, TitlePage)
{
    FNScript script;
    script.titlePage = {
        {"title", std::make_shared<QStringList>(QStringList{"Brick"})},
        {"authors", std::make_shared<QStringList>(QStringList{"Rian"})},
        {"draft date", std::make_shared<QStringList>(QStringList{"today"})},
        {"authors", std::make_shared<QStringList>(QStringList{"A", "B"})},
        {"notes", std::make_shared<QStringList>()},
    };
    EXPECT_EQ(script.stringFromTitlePage(),
              "Title: Brick\nAuthor: Rian\nDraft date: today\nAuthors:\n\tA\n\tB\nNotes:\n");
    script.elements.append(FNElement::elementOfType("Action", "Rain."));
    EXPECT_EQ(script.stringFromDocument(), script.stringFromTitlePage() + "\n\nRain.");
    EXPECT_EQ(script.description(), script.stringFromDocument());
    EXPECT_EQ(FNScript().stringFromDocument(), "");
}

// Every transition is written behind "> ", and a line ending in "TO:" is a
// transition before the marker is taken off, so those keep it when read
// back. Everything else comes back as it was.
QString afterOneRound(const tl::screenplay::FNElementList &elements)
{
    QStringList lines;
    for (const auto &element : elements) {
        FNElement expected = *element;
        if (expected.isType("Transition") && expected.elementText.endsWith("TO:"))
            expected.elementText.prepend("> ");
        lines.append(expected.description());
    }
    return lines.join(QLatin1Char('\n'));
}

TEST(FountainWriter, ParseWriteParseKeepsTheScript)
{
    for (const QString &path : tltest::screenplayFixtures()) {
        SCOPED_TRACE(path.toStdString());
        const FNScript first = FNScript::fromFile(path);
        ASSERT_FALSE(first.elements.isEmpty());
        const FNScript second = FNScript::fromString(first.stringFromDocument());
        EXPECT_EQ(dump(second.elements), afterOneRound(first.elements));
        EXPECT_EQ(dump(second.titlePage), dump(first.titlePage));
    }
}

// The writer puts a blank before the number that the line parser keeps in
// the heading's text, so such a heading grows by one blank each round.
TEST(FountainWriter, NumberedHeadingGainsABlankPerRound)
{
    const FNScript first = FNScript::fromString(QStringLiteral("INT. HOUSE #1#\n\nRain."));
    const FNScript second = FNScript::fromString(first.stringFromDocument());
    EXPECT_EQ(first.elements.at(0)->elementText, "INT. HOUSE ");
    EXPECT_EQ(second.elements.at(0)->elementText, "INT. HOUSE  ");
    EXPECT_EQ(second.elements.at(0)->sceneNumber, QStringLiteral("1"));
}

TEST(FNScript, LoadsWithEitherParserAndWritesAtomically)
{
    const QString folder = tltest::makeTemporaryFolder("script");
    const QString path = folder + "/Brick.fountain";
    ASSERT_TRUE(tltest::writeFile(path, "Rain.\n\n~la la\n"));
    const FNScript lines = FNScript::fromFile(path);
    EXPECT_EQ(lines.filename, QStringLiteral("Brick.fountain"));
    EXPECT_EQ(dump(lines.elements), "Action: Rain.\nLyrics: ~la la");
    const FNScript pipeline = FNScript::fromFile(path, tl::screenplay::kAlternativeParser);
    EXPECT_EQ(dump(pipeline.elements), "Action: Rain.\nAction: ~la la");
    EXPECT_EQ(dump(FNScript::fromFile(path, 7).elements), dump(lines.elements));
    EXPECT_EQ(FNScript::fromString("Rain.").filename, std::nullopt);

    const QString copy = folder + "/Copy.fountain";
    ASSERT_TRUE(lines.writeToFile(copy));
    EXPECT_EQ(tltest::readFile(copy), "Rain.\n\n~la la");
    EXPECT_FALSE(lines.writeToFile(path + "/Copy.fountain"));
}

} // namespace
