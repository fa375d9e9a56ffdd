#pragma once

#include <QString>

// A repeating task that was finished regenerates itself: the document stays
// the living task with its next due date, and a finished copy is left beside it.
namespace tl::tasks {

void tl_addRepeatingTask(const QString &itemPath);
// Runs tl_addRepeatingTask 0.3 seconds later, so the caller shows the
// finished state first.
void scheduleRepeatingTask(const QString &itemPath);

} // namespace tl::tasks
