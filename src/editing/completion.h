#pragma once

#include "editing/editor_settings.h"
#include "editing/text_buffer.h"

#include <QStringList>
#include <optional>

// Completion on Tab: paths and anchors inside "[[…]]", "](…)" and "{{…}}",
// and context tags after a context marker.
namespace tl::editing {

// What a completion offers: the text it replaces and the choices, in order.
struct Completions
{
    TextRange prefixRange;
    QStringList suggestions;
    QString documentPath; // paths are inserted relative to this document
};

// The paths or anchors for the construct around the caret of the document
// at `documentPath`, below the library `root`; nothing when the caret is in
// no construct.
std::optional<Completions> wikiPathCompletions(const EditorBuffer &buffer,
                                               const QString &documentPath, const QString &root,
                                               const EditorSettings &settings);
// The tags of `availableTags` that complete the context word before the caret.
std::optional<Completions> contextTagCompletions(const EditorBuffer &buffer,
                                                 const QStringList &availableTags,
                                                 const EditorSettings &settings);

// Inserts suggestion `index` in place of the prefix; a path relative to the
// document. The maximum index cancels.
void tl_insertCompletion(EditorBuffer &buffer, const Completions &completions, qsizetype index,
                         const QString &root);

// Tab's triggers: a single choice is inserted at once, several go to `shown`
// for the list. Each answers whether there was any.
bool tryToAutoExpandWikiPath(EditorBuffer &buffer, const QString &documentPath, const QString &root,
                             const EditorSettings &settings, std::optional<Completions> &shown);
bool tryToSuggestContextTags(const EditorBuffer &buffer, const QStringList &availableTags,
                             const EditorSettings &settings, std::optional<Completions> &shown);

// A link pasted inside one of those constructs replaces its inner text by
// the link's path. Answers whether the paste was such a link.
bool pasteLinkIntoConstruct(EditorBuffer &buffer, const QString &pasted, const QString &root);

// The order of the list: documents before books, names that begin with the
// typed word first, then by name (numeric by the setting), then by folder.
bool completionLess(const QString &a, const QString &b, const QString &word, bool numericOrder);

} // namespace tl::editing
