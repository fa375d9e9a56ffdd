#pragma once

#include <QString>

namespace tl::store {

// Whether the text holds a screenplay scene heading: a line starting with
// "EXT" or "INT" and a blank or any character, then a blank line.
bool tl_textContainsFountain(const QString &text);

} // namespace tl::store
