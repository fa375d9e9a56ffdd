#pragma once

#include <QString>
#include <optional>

// A click on a plain checkbox "- [ ]" in a rendered Markdown document ticks
// or unticks it in the source text.
namespace tl::tasks {

enum class CheckboxToggle {
    Toggled,
    // The document is empty or can't be read: nothing to do.
    Unchanged,
    // No line of the source holds just the checkbox and the task; the user
    // was told to toggle it in the plain text.
    NotFound,
};

// `task` is the Markdown of the clicked list item, `pos` the number of list
// items of the same text before it. Writing the toggled text back drops
// every backslash of the document.
CheckboxToggle toggleMarkdownCheckboxForTask(const QString &documentPath, const QString &task,
                                             std::optional<qsizetype> pos = std::nullopt);

} // namespace tl::tasks
