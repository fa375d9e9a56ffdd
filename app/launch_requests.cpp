#include "launch_requests.h"

#include "document_windows.h"
#include "foundation/scheduler.h"
#include "quick_entry_window.h"
#include "shell/single_instance.h"
#include "shell/url_actions.h"

#include <QDir>

namespace tl::app {

QStringList launchRequests(const QStringList &arguments)
{
    QStringList requests;
    for (const QString &argument : arguments)
        requests << (shell::isTavelleAddress(argument)
                         ? argument
                         : QDir::cleanPath(QDir::current().absoluteFilePath(argument)));
    return requests;
}

bool bringsMainWindowForward(const QStringList &requests)
{
    // A start with nothing to do asks for the program itself.
    return requests.isEmpty() ||
           std::any_of(requests.begin(), requests.end(), [](const QString &request) {
               return request != QLatin1String(shell::kQuickEntryRequest) &&
                      !shell::textToInsert(request);
           });
}

void runLaunchRequests(const QStringList &requests)
{
    for (const QString &request : requests) {
        if (request == QLatin1String(shell::kQuickEntryRequest))
            Scheduler::main().schedule(QStringLiteral("quick entry"), 0.2,
                                       [] { tl_addQuickEntry(); });
        else if (const std::optional<QString> text = shell::textToInsert(request))
            insertIntoCurrentDocument(*text);
        else if (shell::isTavelleAddress(request))
            shell::handleGetURLEvent(request);
        else
            shell::applicationOpenFile(request);
    }
}

} // namespace tl::app
