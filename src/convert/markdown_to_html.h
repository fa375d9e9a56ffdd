#pragma once

#include <QString>
#include <optional>

namespace tl::convert {

// The complete HTML document for the Markdown document at `receiver`, or,
// when `receiver` names no existing file, for `receiver` as the text
// itself: prepared, converted by the document's converter, post-processed
// and put into the envelope with the inherited style sheet.
QString tl_markdownToHTML(const QString &receiver);

// The same for a text of the document at path (read already, or changed
// in an editor); path may be empty for a text that belongs to no file. A
// given converter number takes the place of the document's own.
QString markdownToHTMLForDocument(const QString &text, const QString &path,
                                  std::optional<int> converter = std::nullopt);

} // namespace tl::convert
