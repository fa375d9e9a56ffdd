#pragma once

// Reminders are delivered by the user's agent, `tavelle reminders --agent`,
// which the session starts at login; the window makes sure it runs.
namespace tl::app {

// Starts the agent beside this program unless one is running already.
void ensureReminderAgent();

} // namespace tl::app
