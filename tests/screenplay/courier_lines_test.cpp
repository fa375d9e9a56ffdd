#include "screenplay/courier_lines.h"
#include "screenplay/fn_paginator.h"

#include <QString>
#include <gtest/gtest.h>

namespace {

using tl::screenplay::courierLineCount;

struct Case
{
    const char *name;
    QString text;
    int width;
    int lines;
};

const QString a34 = QString(34, u'a');

const Case kCases[] = {
    {"empty text", "", 430, 0},
    {"one character", "a", 430, 1},
    {"59 characters fill a line of 430 points", QString(59, u'a'), 430, 1},
    {"a word longer than the line breaks by character", QString(60, u'a'), 430, 2},
    {"34 characters fill a line of 250 points", a34, 250, 1},
    {"29 characters fill a line of 212 points", QString(30, u'a'), 212, 2},
    {"a line end at the end adds no line", "a\n", 430, 1},
    {"a line end alone is one line", "\n", 430, 1},
    {"an empty line between two counts", "a\n\nb", 430, 3},
    {"every line end character starts a line", "a\rb\u2028c", 430, 3},
    {"the last word that does not fit moves down", QString(30, u'a') + " " + QString(10, u'b'), 250,
     2},
    {"blanks at the end of a line hang", a34 + "     ", 250, 1},
    {"a blank just past the line ends it", a34 + " " + QString(34, u'b'), 250, 2},
    {"a hyphen is a break after a word", "aaaa-" + QString(63, u'b'), 250, 3},
    {"a hyphen after a blank is no break", "aaaa -" + QString(62, u'b'), 250, 3},
    {"text wraps word by word",
     "The lamp turns and the rain runs down the glass of the old lighthouse.", 250, 3},
};

TEST(CourierLines, CountsLinesAsATypesetterBreaksThem)
{
    for (const Case &c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(courierLineCount(c.text, c.width), c.lines);
        EXPECT_EQ(tl::screenplay::FNPaginator::heightForString(c.text, c.width, 12), 12 * c.lines);
    }
}

} // namespace
