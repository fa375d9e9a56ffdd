#include "desktop_launch.h"

#include "browser/event_bridge.h"
#include "browser/search_index_keeper.h"
#include "document_window.h"
#include "document_windows.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "main_window.h"
#include "platform/settings.h"
#include "shell/app_delegate.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "welcome_window.h"

#include <QApplication>
#include <QFileInfo>

namespace tl::app {

DesktopLaunch::DesktopLaunch(browser::EventBridge &bridge, QObject *parent)
    : QObject(parent), m_bridge(bridge)
{
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::aboutToQuit, this, &DesktopLaunch::finish);
    connect(&bridge, &browser::EventBridge::openItemsInNewWindow, this, &openItemsInNewWindow);
}

DesktopLaunch::~DesktopLaunch()
{
    delete m_main;
    delete m_welcome;
}

void DesktopLaunch::start()
{
    m_searchIndex = std::make_unique<browser::SearchIndexKeeper>();
    shell::AppDelegate &delegate = shell::appDelegate();
    delegate.applicationWillFinishLaunching();
    const QString root = platform::settings().string(QLatin1String(keys::setting::TavelleFolder));
    if (root.isEmpty()) {
        m_welcome = new WelcomeWindow;
        connect(m_welcome, &WelcomeWindow::libraryChosen, this, [this] {
            m_welcome->deleteLater();
            showMainWindow();
        });
        connect(m_welcome, &WelcomeWindow::cancelled, qApp, &QApplication::quit,
                Qt::QueuedConnection);
        m_welcome->show();
        delegate.applicationDidFinishLaunching();
        return;
    }
    // A missing root or --choose-library asks for a folder first; a cancel
    // there ends the program.
    const bool asks = delegate.options().chooseLibrary || !QFileInfo(store::libraryRoot()).isDir();
    if (asks) {
        delegate.applicationDidFinishLaunching();
        if (!QFileInfo(store::libraryRoot()).isDir() || store::libraryRoot().isEmpty()) {
            QMetaObject::invokeMethod(qApp, &QApplication::quit, Qt::QueuedConnection);
            return;
        }
        showMainWindow();
        return;
    }
    showMainWindow();
    delegate.applicationDidFinishLaunching();
}

void DesktopLaunch::showMainWindow()
{
    delete m_main;
    m_main = new MainWindow(m_bridge);
    m_main->setAttribute(Qt::WA_DeleteOnClose, false);
    m_main->openLibrary();
    m_main->show();
}

void DesktopLaunch::showAllPanes()
{
    if (m_main)
        m_main->showAllPanes();
}

void DesktopLaunch::bringToFront()
{
    if (m_main)
        app::bringToFront(m_main);
}

void DesktopLaunch::reopenDocuments(const QVariantList &documents)
{
    app::reopenDocuments(documents, m_main);
}

bool DesktopLaunch::eventFilter(QObject *watched, QEvent *event)
{
    // The application closes every window before it quits. A filter on the
    // application sees every event of the program: the cheap test first.
    if (event->type() == QEvent::Quit && watched == qApp)
        finish();
    return QObject::eventFilter(watched, event);
}

void DesktopLaunch::finish()
{
    if (m_finished)
        return;
    m_finished = true;
    shell::WindowState state;
    if (m_main)
        state = m_main->windowState();
    state.documentsToOpenOnStartup = extraWindowDocuments();
    shell::appDelegate().applicationWillTerminate(state);
}

} // namespace tl::app
