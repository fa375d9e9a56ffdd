// tavelle-desktop: the window over the library. The one place the desktop
// program is put together.
#include "assembly/core_assembly.h"
#include "browser/event_bridge.h"
#include "desktop_launch.h"
#include "document_window.h"
#include "document_windows.h"
#include "importers/shared_items.h"
#include "launch_requests.h"
#include "qt_alert_presenter.h"
#include "reminder_agent_launch.h"
#include "shell/single_instance.h"
#include "shell/url_actions.h"
#include "shell/version.h"
#include "store/log.h"
#include "tasks/reminder_rebuild.h"
#include "theme.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QTimer>

namespace {

struct Launch
{
    tl::shell::LaunchOptions options;
    QStringList requests;
};

Launch parseLaunch(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Tavelle, the desktop program."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption choose(QStringLiteral("choose-library"),
                                    QStringLiteral("Ask for the library folder first."));
    const QCommandLineOption noRestore(
        QStringLiteral("no-restore"),
        QStringLiteral("Show the library's top book, not the last document."));
    const QCommandLineOption quickNote(QStringLiteral("quick-note"),
                                       QStringLiteral("Open a window for a quick note."));
    parser.addOption(choose);
    parser.addOption(noRestore);
    parser.addOption(quickNote);
    parser.addPositionalArgument(QStringLiteral("url"),
                                 QStringLiteral("tavelle:// addresses, files or folders to open."),
                                 QStringLiteral("[url|path...]"));
    parser.process(arguments);
    QStringList requests = tl::app::launchRequests(parser.positionalArguments());
    if (parser.isSet(quickNote))
        requests << QLatin1String(tl::shell::kQuickEntryRequest);
    return {{parser.isSet(choose), parser.isSet(noRestore)}, requests};
}

// Without a desktop's icon theme (a bare X server) the freedesktop icons
// still come from Adwaita.
void chooseIconTheme()
{
    if (!QIcon::hasThemeIcon(QStringLiteral("folder")))
        QIcon::setThemeName(QStringLiteral("Adwaita"));
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tavelle"));
    QApplication::setApplicationDisplayName(QStringLiteral("Tavelle"));
    QApplication::setApplicationVersion(QString::fromLatin1(tl::shell::kShortVersion));
    QApplication::setDesktopFileName(QStringLiteral("com.tavelle.app"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/tavelle/icons/tavelle.svg")));
    const Launch launch = parseLaunch(QApplication::arguments());
    // One program per user: a running one takes the requests and comes to the front.
    if (tl::shell::handOverToRunningInstance(launch.requests))
        return 0;
    tl::shell::InstanceServer instance;
    instance.listen();
    tl::setUpDiagnostics();
    chooseIconTheme();

    tl::browser::EventBridge bridge;
    tl::app::DesktopLaunch desktop(bridge);
    tl::assembly::CoreParts parts;
    parts.host = tl::assembly::Host::Desktop;
    parts.launch = launch.options;
    parts.alerts = std::make_shared<tl::app::QtAlertPresenter>();
    parts.showWhatsNew = [] {};
    parts.showAllPanes = [&desktop] { desktop.showAllPanes(); };
    parts.effectiveAppearanceName = [] {
        return tl::app::Theme::instance().effectiveAppearanceName();
    };
    parts.openDocuments = [&desktop](const QVariantList &documents) {
        desktop.reopenDocuments(documents);
    };
    parts.showInOpenWindow = tl::app::showInOpenWindow;
    tl::assembly::assembleCore(parts);
    if (!tl::assembly::checkAssembly())
        return 1;
    tl::app::Theme::instance().apply();
    // The agent rebuilds and delivers reminders itself, also once the window
    // is closed; a rebuild here only makes sure it runs.
    tl::tasks::reminderRebuild() = tl::app::ensureReminderAgent;
    tl::app::ensureReminderAgent();

    if (std::any_of(launch.requests.begin(), launch.requests.end(), tl::shell::isTavelleAddress))
        tl::shell::setHandlingURLEvent();
    desktop.start();
    // What was shared with the program meanwhile comes in at start and
    // whenever the program is brought to the front.
    tl::importers::TLStaticFunctions::importSharedItems();
    QObject::connect(&app, &QGuiApplication::applicationStateChanged, &desktop,
                     [](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive)
                             tl::importers::TLStaticFunctions::importSharedItems();
                     });
    QObject::connect(&instance, &tl::shell::InstanceServer::requestsReceived, &desktop,
                     [&desktop](const QStringList &requests) {
                         if (tl::app::bringsMainWindowForward(requests))
                             desktop.bringToFront();
                         tl::app::runLaunchRequests(requests);
                     });
    QTimer::singleShot(0, &desktop, [&launch] { tl::app::runLaunchRequests(launch.requests); });
    return app.exec();
}
