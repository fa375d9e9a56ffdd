#pragma once

#include <QObject>
#include <QPointer>
#include <memory>

namespace tl::browser {
class EventBridge;
}

// The start of the desktop program after the core is assembled: the
// welcome window while no library is chosen, then the main window; and the
// end of the session when the last window closes.
namespace tl::app {

class MainWindow;
class WelcomeWindow;

class DesktopLaunch : public QObject
{
    Q_OBJECT
public:
    explicit DesktopLaunch(browser::EventBridge &bridge, QObject *parent = nullptr);
    ~DesktopLaunch() override;

    void start();
    void showAllPanes();

private:
    void showMainWindow();
    void finish();

    browser::EventBridge &m_bridge;
    QPointer<MainWindow> m_main;
    QPointer<WelcomeWindow> m_welcome;
    bool m_finished = false;
};

} // namespace tl::app
