#pragma once

#include <QObject>
#include <QPointer>
#include <QVariantList>
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
    // The extra windows of the last session again, the main window closed
    // when it was closed at the end of that session.
    void reopenDocuments(const QVariantList &documents);

protected:
    // A request to quit is answered once the session's windows are
    // written down, while they are still open.
    bool eventFilter(QObject *watched, QEvent *event) override;

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
