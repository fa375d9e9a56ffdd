#pragma once

#include <functional>

// The rebuild of all reminders from the task lists. The reminder centre sits
// with the desktop and the command, so it registers the rebuild here; until
// one does, a rebuild has nothing to do.
namespace tl::tasks {

std::function<void()> &reminderRebuild();

// Rebuilds at once.
void tl_repostAllNotifications();
// Cancels a pending rebuild and schedules one 0.5 seconds ahead, so a burst
// of recounts ends in one rebuild.
void scheduleReminderRebuild();

} // namespace tl::tasks
