#pragma once

#include <QWidget>

class QTreeView;

namespace tl::browser {
class EventBridge;
class TLKSOutlineViewController;
} // namespace tl::browser

// The outline: smart books and the library's books, opened as they were
// left. Selecting a row tells the list and the document view by event.
namespace tl::app {

class ActionRegistry;

class OutlinePane : public QWidget
{
    Q_OBJECT
public:
    OutlinePane(browser::TLKSOutlineViewController &controller, browser::EventBridge &bridge,
                const ActionRegistry &actions, QWidget *parent = nullptr);

    QTreeView *view() const { return m_view; }
    // Selects the book, opening its parents; the selection tells the list.
    void selectBook(const QString &path);
    // The path of the selected book row, empty for none.
    QString selectedPath() const;
    bool selectedIsBook() const;
    // Opens the groups and the books as they were left.
    void expandSavedPaths();
    // Selects Search Results while the list shows a search; once it is left,
    // the book the list went back to.
    void showSearchResults(bool shown, const QString &book);

Q_SIGNALS:
    void selectionChanged();

private:
    void newRootSelected();
    void postSelection();
    // Shows the book the list shows, without telling anyone.
    void followSelectedBook(const QString &path, int smartType);

    browser::TLKSOutlineViewController &m_controller;
    QTreeView *m_view;
    bool m_restoring = false;
    bool m_silent = false;
};

} // namespace tl::app
