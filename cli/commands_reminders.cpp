// reminders: the schedule of reminders, and the agent that delivers them.
#include "cli.h"
#include "platform/freedesktop_reminders.h"
#include "store/item_path.h"
#include "store/library_root.h"
#include "tasks/reminder_agent.h"
#include "tasks/reminder_rebuild.h"

#include <QCoreApplication>
#include <QLockFile>
#include <QProcess>

namespace tl::cli {

namespace {

const QString kAgent = QStringLiteral("agent");

QVariantMap rowValue(const tasks::ReminderRow &row, const platform::Reminder *reminder)
{
    return {{QStringLiteral("path"), row.path},
            {QStringLiteral("modDate"), row.modDate},
            {QStringLiteral("fireDate"), row.fireDate},
            {QStringLiteral("counterIncrement"), row.counterIncrement},
            {QStringLiteral("repeatInterval"), row.repeatInterval},
            {QStringLiteral("normPath"), row.normPath},
            {QStringLiteral("taskState"), row.taskState},
            {QStringLiteral("notification"), reminder != nullptr},
            {QStringLiteral("sound"), reminder && reminder->sound}};
}

int printSchedule(bool json)
{
    if (store::libraryRoot().isEmpty())
        return fail(
            QStringLiteral("No library chosen: run 'tavelle init DIR' or pass --library DIR"),
            Usage);
    platform::ReminderCentre centre;
    const QList<tasks::ReminderRow> rows = tasks::rebuildReminders(centre);
    const QList<platform::Reminder> scheduled = centre.scheduled();
    QVariantList list;
    for (const tasks::ReminderRow &row : rows) {
        const auto it =
            std::find_if(scheduled.cbegin(), scheduled.cend(),
                         [&](const platform::Reminder &r) { return r.identifier == row.path; });
        const platform::Reminder *reminder = it == scheduled.cend() ? nullptr : &*it;
        if (json)
            list << rowValue(row, reminder);
        else
            printLine(QStringLiteral("%1\t%2\t%3")
                          .arg(row.fireDate.toLocalTime().toString(Qt::ISODate),
                               reminder ? (reminder->sound ? QStringLiteral("alert")
                                                           : QStringLiteral("silent"))
                                        : QStringLiteral("due"),
                               row.path));
    }
    if (json)
        printValue(list, true);
    return Success;
}

// Opens the item in the desktop program, which takes the address to the
// window already running.
void openInDesktop(const platform::Reminder &reminder)
{
    const QString link = QStringLiteral("tavelle://show") +
                         store::percentEncodedForPath(store::tl_normalizedPath(reminder.taskPath));
    QProcess::startDetached(
        QCoreApplication::applicationDirPath() + QStringLiteral("/tavelle-desktop"), {link});
}

int runAgent()
{
    if (!platform::FreedesktopReminderCentre::available())
        return fail(QStringLiteral("No desktop notification service on the session bus"));
    // One agent per user: a second one started at login or by the window
    // leaves quietly.
    QLockFile lock(platform::reminderAgentLockPath());
    lock.setStaleLockTime(0);
    if (!lock.tryLock(0))
        return Success;
    auto centre = std::make_shared<platform::FreedesktopReminderCentre>();
    centre->didActivate = openInDesktop;
    tasks::ReminderAgent agent(centre);
    agent.start();
    return QCoreApplication::exec();
}

void describeReminders(QCommandLineParser &p)
{
    p.setApplicationDescription(
        QStringLiteral("The reminders a rebuild schedules, one a line: the delivery time, "
                       "\"alert\" or \"silent\" (with or without sound) or \"due\" for a task "
                       "past its date, and the task.\nWith --agent, stays running and shows each "
                       "reminder as a desktop notification on time."));
    p.addOption({kAgent, QStringLiteral("Deliver the reminders of the chosen library as desktop "
                                        "notifications until the session ends.")});
}

int runReminders(const QCommandLineParser &parser, const Invocation &in)
{
    if (!in.arguments.isEmpty())
        return fail(QStringLiteral("usage: tavelle reminders [--json] [--agent]"), Usage);
    return parser.isSet(kAgent) ? runAgent() : printSchedule(in.json);
}

} // namespace

Command remindersCommand()
{
    return {"reminders", "The schedule of task reminders; --agent delivers them.", false,
            describeReminders, runReminders};
}

} // namespace tl::cli
