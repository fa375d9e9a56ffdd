#pragma once

#include <QString>

// A task made from a line of a document carries a link to that document;
// when the task is finished, canceled or reopened, the line's mark follows.
namespace tl::tasks {

// `state` is "done", "canceled" or "open"; any other state changes nothing,
// nor does a source line that no longer matches.
void mirrorTaskStateIntoSource(const QString &itemPath, const QString &state);

} // namespace tl::tasks
