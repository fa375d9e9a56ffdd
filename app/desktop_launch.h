#pragma once

#include <QObject>
#include <QPointer>
#include <memory>

namespace tl::browser {
class EventBridge;
class SearchIndexKeeper;
} // namespace tl::browser

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
    // Shows the main window above the others, for a request from outside.
    void bringToFront();

private:
    void showMainWindow();
    void finish();

    browser::EventBridge &m_bridge;
    QPointer<MainWindow> m_main;
    QPointer<WelcomeWindow> m_welcome;
    bool m_finished = false;
    std::unique_ptr<browser::SearchIndexKeeper> m_searchIndex;
};

} // namespace tl::app
