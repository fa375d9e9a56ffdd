#include "screenplay/element_types.h"
#include "screenplay/fn_paginator.h"
#include "screenplay_test_support.h"

#include <gtest/gtest.h>

namespace {

using tl::screenplay::FNElement;
using tl::screenplay::FNElementList;
using tl::screenplay::FNElementRef;
using tl::screenplay::FNPaginator;
using tl::screenplay::FNScript;
using tltest::dump;

// Ten characters a line at every width, so that heights are easy to tell:
// "Go on now." is one line.
int tenPerLine(QStringView text, int)
{
    if (text.isEmpty())
        return 0;
    QList<QStringView> lines = text.split(u'\n');
    if (lines.size() > 1 && lines.last().isEmpty())
        lines.removeLast();
    int count = 0;
    for (QStringView line : lines)
        count += std::max<int>(1, int((line.size() + 9) / 10));
    return count;
}

const QString kSentence = QStringLiteral("Go on now.");

class Script
{
public:
    Script &add(const char *type, const QString &text)
    {
        script.elements.append(FNElement::elementOfType(QString::fromLatin1(type), text));
        return *this;
    }
    Script &actions(int count)
    {
        for (int i = 0; i < count; ++i)
            add(tl::screenplay::type::Action, QStringLiteral("Beat %1.").arg(i));
        return *this;
    }
    Script &speech(const QString &text, bool dual = false)
    {
        add(tl::screenplay::type::Character, QStringLiteral("ANNA"));
        script.elements.last()->isDualDialogue = dual;
        return add(tl::screenplay::type::Dialogue, text);
    }
    QList<int> pageSizes()
    {
        FNPaginator paginator(script, tenPerLine);
        QList<int> sizes;
        for (int n = 0; n < paginator.numberOfPages(); ++n)
            sizes.append(int(paginator.pageAtIndex(n).size()));
        return sizes;
    }
    FNScript script;
};

QString sentences(int count)
{
    return kSentence.repeated(count);
}

TEST(FNPaginator, TableOfSpacingMarginsAndWidths)
{
    struct Row
    {
        const char *type;
        int linesBefore, leftMargin, width;
    };
    const Row rows[] = {
        {"Scene Heading", 2, 106, 430}, {"Action", 1, 106, 430},   {"General", 1, 106, 430},
        {"Character", 1, 247, 250},     {"Dialogue", 0, 177, 250}, {"Parenthetical", 0, 205, 212},
        {"Transition", 1, 106, 430},    {"Lyrics", 0, 0, 0},       {"Page Break", 0, 0, 0},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.type);
        const auto element = FNElement::elementOfType(row.type, "x");
        EXPECT_EQ(FNPaginator::spaceBeforeForElement(*element), row.linesBefore);
        EXPECT_EQ(FNPaginator::leftMarginForElement(*element), row.leftMargin);
        EXPECT_EQ(FNPaginator::widthForElement(*element), row.width);
    }
}

TEST(FNPaginator, OneLineActionsFillPagesOf27)
{
    Script s;
    s.actions(100);
    EXPECT_EQ(s.pageSizes(), QList<int>({27, 27, 27, 19}));
    // The Courier measure gives the same for one-line actions.
    FNPaginator courier(s.script);
    EXPECT_EQ(courier.numberOfPages(), 4);
}

TEST(FNPaginator, EmptyScriptHasNoPages)
{
    FNScript script;
    FNPaginator paginator(script);
    EXPECT_EQ(paginator.numberOfPages(), 0);
    EXPECT_TRUE(paginator.pageAtIndex(0).isEmpty());
    EXPECT_TRUE(paginator.pageAtIndex(-1).isEmpty());
}

TEST(FNPaginator, ElementWithoutGlyphsStandsOnNoPage)
{
    Script s;
    s.add("Action", "Rain.").add("Action", "").add("Action", "Sun.");
    FNPaginator paginator(s.script, tenPerLine);
    EXPECT_EQ(dump(paginator.pageAtIndex(0)), "Action: Rain.\nAction: Sun.");
}

TEST(FNPaginator, PageBreakClosesThePageAndStaysLastOnIt)
{
    Script s;
    s.actions(3).add("Page Break", "===").actions(27);
    FNPaginator paginator(s.script, tenPerLine);
    ASSERT_EQ(paginator.numberOfPages(), 2);
    EXPECT_EQ(paginator.pageAtIndex(0).size(), 4);
    EXPECT_EQ(paginator.pageAtIndex(0).last()->elementType, "Page Break");
    // The next page starts at height 0: it holds 27 one-line actions.
    EXPECT_EQ(paginator.pageAtIndex(1).size(), 27);
    EXPECT_TRUE(paginator.pageAtIndex(7).isEmpty());
}

TEST(FNPaginator, TallBlockOnAnEmptyPageClosesAnEmptyPageFirst)
{
    Script s;
    s.add("Action", QString(600, u'x')).add("Action", "Sun.");
    EXPECT_EQ(s.pageSizes(), QList<int>({0, 1, 1}));
}

TEST(FNPaginator, HeadingAtTheFootGoesWithWhatFollows)
{
    Script s;
    s.actions(26).add("Scene Heading", "INT. HOUSE - DAY").add("Action", "Rain.");
    FNPaginator paginator(s.script, tenPerLine);
    ASSERT_EQ(paginator.numberOfPages(), 2);
    EXPECT_EQ(paginator.pageAtIndex(0).size(), 26);
    // The inserted break stands among the elements and closes no page.
    EXPECT_EQ(dump(paginator.pageAtIndex(1)),
              "Page Break: \nScene Heading: INT. HOUSE - DAY\nAction: Rain.");
    EXPECT_EQ(s.script.elements.size(), 28);
}

TEST(FNPaginator, HeadingOrCueLastInTheScriptStandsAlone)
{
    Script heading;
    heading.actions(26).add("Scene Heading", "INT. HOUSE - DAY");
    EXPECT_EQ(heading.pageSizes(), QList<int>({26, 1}));
    Script cue;
    cue.actions(3).add("Character", "ANNA");
    EXPECT_EQ(cue.pageSizes(), QList<int>({4}));
}

TEST(FNPaginator, SmallOverflowMovesTheWholeSpeech)
{
    Script s;
    s.actions(25).speech(sentences(3));
    FNPaginator paginator(s.script, tenPerLine);
    ASSERT_EQ(paginator.numberOfPages(), 2);
    EXPECT_EQ(paginator.pageAtIndex(0).size(), 25);
    EXPECT_EQ(dump(paginator.pageAtIndex(1)), "Character: ANNA\nDialogue: " + sentences(3));
}

TEST(FNPaginator, LongSpeechSplitsAtASentenceWithMore)
{
    Script s;
    s.actions(20).speech(sentences(20)).actions(1);
    FNPaginator paginator(s.script, tenPerLine);
    ASSERT_EQ(paginator.numberOfPages(), 2);
    const FNElementList first = paginator.pageAtIndex(0);
    ASSERT_EQ(first.size(), 23);
    EXPECT_EQ(dump(first.mid(20)),
              "Character: ANNA\nDialogue: " + sentences(12) + "\nCharacter: (MORE)");
    EXPECT_EQ(dump(paginator.pageAtIndex(1)),
              "Character: ANNA\nDialogue: " + sentences(8) + "\nAction: Beat 0.");
    // The script itself is unchanged.
    EXPECT_EQ(s.script.elements.at(21)->elementText, sentences(20));
}

TEST(FNPaginator, OneSentenceThatDoesNotFitMovesWithoutMore)
{
    Script s;
    s.actions(20).speech(QString(199, u'x') + ".");
    const FNElementRef cue = s.script.elements.at(20);
    FNPaginator paginator(s.script, tenPerLine);
    ASSERT_EQ(paginator.numberOfPages(), 2);
    EXPECT_EQ(paginator.pageAtIndex(0).size(), 20);
    EXPECT_EQ(dump(paginator.pageAtIndex(1)),
              "Character: ANNA\nDialogue: " + QString(199, u'x') + ".");
    // A new cue stands there; the script's own stands on no page.
    for (int n = 0; n < 2; ++n)
        EXPECT_FALSE(paginator.pageAtIndex(n).contains(cue));
}

TEST(FNPaginator, LastSentenceTriedStandsOnBothPagesWhenItFitted)
{
    Script s;
    s.actions(20).speech(sentences(2) + QString(180, u'x'));
    FNPaginator paginator(s.script, tenPerLine);
    ASSERT_EQ(paginator.numberOfPages(), 2);
    EXPECT_EQ(dump(paginator.pageAtIndex(0).mid(20)),
              "Character: ANNA\nDialogue: " + sentences(2) + "\nCharacter: (MORE)");
    // Text behind the last sentence mark is in no sentence.
    EXPECT_EQ(dump(paginator.pageAtIndex(1)), "Character: ANNA\nDialogue: " + kSentence);
}

Script splitAtParenthetical()
{
    Script s;
    s.actions(20)
        .speech(sentences(6))
        .add("Parenthetical", "(beat)")
        .add("Dialogue", sentences(14));
    return s;
}

TEST(FNPaginator, SplitAtAParentheticalRepeatsTheCueContinued)
{
    Script s = splitAtParenthetical();
    FNPaginator paginator(s.script, tenPerLine);
    ASSERT_EQ(paginator.numberOfPages(), 2);
    EXPECT_EQ(dump(paginator.pageAtIndex(0).mid(20)),
              "Character: ANNA (CONT'D)\nDialogue: " + sentences(6) + "\nCharacter: (MORE)");
    EXPECT_EQ(dump(paginator.pageAtIndex(1)),
              "Character: ANNA (CONT'D)\nParenthetical: (beat)\nDialogue: " + sentences(14));
    // The very cue of the script was changed.
    EXPECT_EQ(s.script.elements.at(20)->elementText, "ANNA (CONT'D)");
}

TEST(FNPaginator, PaginatingAgainAppendsAndContinuesTheCueOnceMore)
{
    Script s = splitAtParenthetical();
    FNPaginator paginator(s.script, tenPerLine);
    paginator.paginate();
    paginator.paginate();
    EXPECT_EQ(paginator.numberOfPages(), 4);
    EXPECT_EQ(s.script.elements.at(20)->elementText, "ANNA (CONT'D) (CONT'D)");
}

TEST(FNPaginator, ParentheticalNearTheCueIsNoSplit)
{
    Script s;
    s.actions(20)
        .add("Character", "ANNA")
        .add("Parenthetical", "(" + QString(58, u'x') + ")")
        .add("Dialogue", sentences(13));
    // The walk stops at the six-line parenthetical, second in the block:
    // the page runs over its limit.
    EXPECT_EQ(s.pageSizes(), QList<int>({23}));
}

TEST(FNPaginator, SecondHalfOfADualDialogueCountsOnlyItsDifference)
{
    Script dual;
    dual.actions(10).speech(sentences(15), true).speech(sentences(16), true);
    EXPECT_EQ(dual.pageSizes(), QList<int>({14}));
    Script single;
    single.actions(10).speech(sentences(15)).speech(sentences(16));
    EXPECT_EQ(single.pageSizes(), QList<int>({12, 2}));
}

TEST(FNPaginator, DualDialogueHalfIsKeptAcrossPages)
{
    Script s;
    s.speech(sentences(15), true).add("Page Break", "").actions(20).speech(sentences(16), true);
    EXPECT_EQ(s.pageSizes(), QList<int>({3, 22}));
}

TEST(FNPaginator, PageSizeSetsTheLimit)
{
    Script s;
    s.actions(10);
    FNPaginator paginator(s.script, tenPerLine);
    paginator.paginateForSize(QSizeF(612, 145 + 12 + 24 * 4));
    EXPECT_EQ(paginator.pages().size(), 2);
    EXPECT_EQ(paginator.pages().at(0).size(), 5);
}

} // namespace
