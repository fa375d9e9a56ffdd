#pragma once

#include <QStringView>

namespace tl::screenplay {

// The number of lines a text takes in Courier 12 set in a box of the given
// width in points, broken as a typesetter breaks with a fixed advance of
// 7.2 points per character:
// - a line end starts a new line; one at the very end adds none;
// - lines break after a blank, or after a hyphen that follows a non-blank;
// - blanks at the end of a line hang in the margin and never wrap;
// - a word longer than a line is broken by character.
// Width 0 sets no limit, so each line of the text is one line. An empty text
// takes no lines.
int courierLineCount(QStringView text, int width);

} // namespace tl::screenplay
