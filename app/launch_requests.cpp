#include "launch_requests.h"

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

void runLaunchRequests(const QStringList &requests)
{
    for (const QString &request : requests) {
        if (shell::isTavelleAddress(request))
            shell::handleGetURLEvent(request);
        else
            shell::applicationOpenFile(request);
    }
}

} // namespace tl::app
