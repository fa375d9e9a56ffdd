#include "server/control/server_preferences.h"

#include "platform/settings.h"
#include "server/control/connection_details.h"
#include "server/control/server_control.h"
#include "server/control/server_settings.h"
#include "shell/shell_keys.h"

#include <QUuid>

namespace server {

namespace {

tl::platform::Settings &settings()
{
    return tl::platform::settings();
}

const QString kLaunchKey = QLatin1String(tl::keys::setting::LaunchLocalWebDAVServer);

} // namespace

ServerPaneState TLServerPreferences::toggleServer(bool on)
{
    if (on) {
        settings().set(kLaunchKey, QStringLiteral("yes"));
        if (settings().string(QLatin1String(kLocalWebDAVServerStringKey)).isEmpty())
            createNewPassword();
        launchTavelleServer();
    } else {
        settings().remove(kLaunchKey);
        terminateTavelleServer();
    }
    return updateConnectionDetails();
}

ServerPaneState TLServerPreferences::refreshPassword()
{
    terminateTavelleServer();
    createNewPassword();
    launchTavelleServer();
    return updateConnectionDetails();
}

QString TLServerPreferences::createNewPassword()
{
    const QString password = QUuid::createUuid().toString(QUuid::WithoutBraces).mid(9, 9).toLower();
    settings().set(QLatin1String(kLocalWebDAVServerStringKey), password);
    return password;
}

ServerPaneState TLServerPreferences::updateConnectionDetails()
{
    ServerPaneState pane;
    if (!settings().contains(kLaunchKey)) {
        pane.buttonTitle = QLatin1String(kStartServerButton);
        return pane;
    }
    pane.buttonTitle = QLatin1String(kStopServerButton);
    pane.buttonOn = true;
    pane.showsCredentials = true;
    pane.user = QLatin1String(kServerUserName);
    pane.password = settings().string(QLatin1String(kLocalWebDAVServerStringKey));
    pane.connectionDetails = connectionDetailsText(
        localHostName(), quint64(settings().integer(QLatin1String(kLocalWebDAVServerPortKey))),
        ipv4Interfaces());
    return pane;
}

} // namespace server
