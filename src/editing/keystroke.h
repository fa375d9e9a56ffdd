#pragma once

#include "editing/editor_settings.h"
#include "editing/text_buffer.h"

// The keystroke hook: what a typed, pasted or deleted replacement does
// beyond itself, in a fixed order of rules.
namespace tl::editing {

struct KeystrokeDecision
{
    bool allowed = true;        // the replacement asked for goes ahead
    bool listItemAfter = false; // a Return: continue the list once it is in
    bool renumberAfter = false; // a deleted newline: renumber once it is out
};

// Asked before `replacement` takes the place of `affected`; a rule that
// answers for itself edits the buffer and refuses.
KeystrokeDecision textViewShouldChangeText(EditorBuffer &buffer, const EditorContext &context,
                                           TextRange affected, const QString &replacement);

// The whole keystroke: the hook, the replacement if allowed and what
// follows it. While undoing only the replacement is made.
void typeText(EditorBuffer &buffer, const EditorContext &context, TextRange affected,
              const QString &replacement);

// The characters that pair, openers and closers at the same index.
inline constexpr char16_t PairOpeners[] = u"([{`\"'";
inline constexpr char16_t PairClosers[] = u")]}`\"'";

} // namespace tl::editing
