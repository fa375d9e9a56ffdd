#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <memory>
#include <utility>

namespace tl::app {
class MainWindow;
}
namespace tl::browser {
class EventBridge;
class SearchIndexKeeper;
} // namespace tl::browser

namespace apptest {

// A main window over a temporary library of the given files, shown and
// exposed; each window test makes one in init() and closes it in cleanup().
class WindowFixture
{
public:
    using Files = QList<std::pair<QString, QByteArray>>;

    WindowFixture();
    ~WindowFixture();

    // False (with the test failed) when the library or the window cannot stand.
    bool open(const QString &label, const Files &files);
    void close();

    tl::app::MainWindow &window() const { return *m_window; }
    QString item(const QString &name) const { return m_library + u'/' + name; }
    // Keeps the library's search index current, as the desktop program does;
    // made once the files stand, and waited for.
    void keepSearchIndex();

    // Selects the book in the outline and waits for the row to be listed.
    void openBook(const QString &book, const QString &expectedRow) const;
    // Selects a row of the list and waits for its document to show.
    void selectRow(const QString &path) const;
    // Moves the injected clock on and runs the timers that fell due.
    static void letTimersRun(double seconds = 1.0);

private:
    QString m_library;
    std::unique_ptr<tl::browser::EventBridge> m_bridge;
    std::unique_ptr<tl::browser::SearchIndexKeeper> m_searchIndex;
    std::unique_ptr<tl::app::MainWindow> m_window;
};

} // namespace apptest
