#include "reminder_agent_launch.h"

#include "platform/reminder_centre.h"

#include <QCoreApplication>
#include <QLockFile>
#include <QProcess>

namespace tl::app {

void ensureReminderAgent()
{
    QLockFile lock(platform::reminderAgentLockPath());
    lock.setStaleLockTime(0);
    if (!lock.tryLock(0))
        return;
    lock.unlock();
    QProcess::startDetached(QCoreApplication::applicationDirPath() + QStringLiteral("/tavelle"),
                            {QStringLiteral("reminders"), QStringLiteral("--agent")});
}

} // namespace tl::app
