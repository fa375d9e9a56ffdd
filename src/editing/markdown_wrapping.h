#pragma once

#include "editing/editor_settings.h"
#include "editing/text_buffer.h"

// Wrapping the selection in Markdown marks and taking them off again, and
// headings.
namespace tl::editing {

// Toggles the marks around the selection: a second use takes them off.
void insertMarkdownString(EditorBuffer &buffer, const EditorContext &context,
                          const QString &openTag, const QString &closeTag);
// 1 to 5 makes the caret's paragraph a heading of that level, 0 plain text.
void insertMarkdownHeading(EditorBuffer &buffer, int level);

// "*" and "**", or "_" and "__" by the setting.
QString weakEmphasisMark(const EditorContext &context);
QString strongEmphasisMark(const EditorContext &context);
inline constexpr char HighlightMark[] = "==";

} // namespace tl::editing
