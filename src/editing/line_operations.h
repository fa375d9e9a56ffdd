#pragma once

#include "editing/editor_settings.h"
#include "editing/text_buffer.h"

// Operations on whole lines, and the small replacements beside them.
namespace tl::editing {

void tl_toggleComment(EditorBuffer &buffer);
// The lines of the selection in locale order, by the sort settings.
void tl_sortSelectionbyAlphabet(EditorBuffer &buffer, const EditorContext &context);
void tl_moveLineUp(EditorBuffer &buffer, const EditorContext &context);
void tl_moveLineDown(EditorBuffer &buffer, const EditorContext &context);
// Answers the deleted lines, for the clipboard.
QString tl_deleteLine(EditorBuffer &buffer);
// Deletes from the caret through the next occurrence of the character
// before the caret.
void advancedForwardDelete(EditorBuffer &buffer);
// Inserts with a blank on either side where the neighbour is no white space.
void tl_smartReplaceCharactersInRange(EditorBuffer &buffer, TextRange range, const QString &string);

} // namespace tl::editing
