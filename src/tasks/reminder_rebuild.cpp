#include "tasks/reminder_rebuild.h"

#include "foundation/scheduler.h"

namespace tl::tasks {

std::function<void()> &reminderRebuild()
{
    static std::function<void()> rebuild;
    return rebuild;
}

void tl_repostAllNotifications()
{
    if (reminderRebuild())
        reminderRebuild()();
}

void scheduleReminderRebuild()
{
    Scheduler::main().schedule(QStringLiteral("tl_repostAllNotifications"), 0.5,
                               [] { tl_repostAllNotifications(); });
}

} // namespace tl::tasks
