#pragma once

#include "convert/code_ranges.h"

#include <QString>

namespace tl::convert {

// Moves inline notes ("[^ text]", as the preparation writes them) to
// reference notes: the note becomes its label, and a definition of the label
// is appended to the end of the text. A note whose definition exists stays.
// `code` is the code-range list of the whole pass, stale or not yet made.
QString notesMovedToDefinitions(const QString &text, LazyCodeRanges &code);

// The label a note "[^ a [b] c]" is filed under, "[^ a -b- c]": brackets
// inside it become "-".
QString labelOfNote(QStringView note);

} // namespace tl::convert
