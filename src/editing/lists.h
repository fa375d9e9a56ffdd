#pragma once

#include "editing/editor_settings.h"
#include "editing/text_buffer.h"

// Lists in plain text: continuing an item on Return, renumbering, indenting
// and outdenting on Tab, and the cycle bullet, number, task box, plain.
namespace tl::editing {

// After a Return has been inserted at the caret.
void tryToInsertListItem(EditorBuffer &buffer, const EditorContext &context);
// Renumbers the numbered list block around the paragraph at `line`, level by
// level; `count` is the next number, 0 to take it from the list.
void updateNumberedListAtRange(EditorBuffer &buffer, TextRange line, qint64 count);
bool selectionIsInNumberedList(const EditorBuffer &buffer, const EditorContext &context);
void tl_updateNumberedList(EditorBuffer &buffer, const EditorContext &context);
// Answers whether the Tab was used up.
bool tabButtonPressed(EditorBuffer &buffer, const EditorContext &context, bool forceIndent,
                      bool outdent);
void tl_toggleList(EditorBuffer &buffer, const EditorContext &context);
void tl_reverseToggleList(EditorBuffer &buffer, const EditorContext &context);

} // namespace tl::editing
