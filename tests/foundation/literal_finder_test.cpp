#include "foundation/literal_finder.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>

using tl::LiteralFinder;

namespace {

TEST(LiteralFinder, FindsWhatIndexOfFinds)
{
    struct Case
    {
        const char16_t *literal;
        const char16_t *text;
        qsizetype from;
        qsizetype expected;
    };
    const Case cases[] = {
        {u"[[", u"a [[b]] [[c", 0, 2},
        {u"[[", u"a [[[b", 3, 3}, // overlapping starts count
        {u"[[", u"a [[b]] [[c", 4, 8},
        {u"\n```", u"```\n``\n```x", 0, 6},
        {u" id=\"", u"<h1 id=\"a\">", 0, 3},
        {u"ab", u"xxa", 0, -1}, // the text ends inside a possible match
        {u"==", u"==", 1, -1},
        {u"x", u"", 0, -1},
        {u"", u"abc", 2, 2},
    };
    for (const Case &c : cases) {
        const QString literal = QString::fromUtf16(c.literal);
        const QString text = QString::fromUtf16(c.text);
        SCOPED_TRACE(literal.toStdString() + " in " + text.toStdString());
        EXPECT_EQ(LiteralFinder(literal).indexIn(text, c.from), c.expected);
    }
}

TEST(LiteralFinder, AgreesWithIndexOfOnRandomText)
{
    QRandomGenerator random(3);
    const QString alphabet = QStringLiteral("ab[]<=\" \n`");
    for (int round = 0; round < 500; ++round) {
        QString text;
        for (int i = int(random.bounded(60)); i > 0; --i)
            text += alphabet[random.bounded(alphabet.size())];
        QString literal;
        for (int i = int(random.bounded(1, 4)); i > 0; --i)
            literal += alphabet[random.bounded(alphabet.size())];
        const LiteralFinder finder(literal);
        for (qsizetype from = 0; from <= text.size(); ++from)
            ASSERT_EQ(finder.indexIn(text, from), text.indexOf(literal, from))
                << literal.toStdString() << " in " << text.toStdString() << " from " << from;
    }
}

} // namespace
