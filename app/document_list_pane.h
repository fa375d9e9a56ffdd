#pragma once

#include <QListView>
#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

namespace tl::browser {
class DocumentListModel;
class EventBridge;
class OutlineModel;
class SearchFieldController;
} // namespace tl::browser

// The document list: what the selected book holds, with the filter field
// and the sort menu above it. A selection tells the document view by event.
namespace tl::app {

class ActionRegistry;
class SearchOptionsPanel;

// The list itself: rows dragged within it reorder them; rows of the outline
// and files from the file manager dropped on it go into the shown book.
class DocumentListView : public QListView
{
    Q_OBJECT
public:
    DocumentListView(browser::OutlineModel &outline, QWidget *parent);

    // The book drops go into.
    QString shownBook;

Q_SIGNALS:
    // A click on the task mark of a row: the task takes its next state.
    void taskMarkClicked(const QString &path);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    bool goesIntoBook(const QDropEvent *event) const;

    browser::OutlineModel &m_outline;
};

class DocumentListPane : public QWidget
{
    Q_OBJECT
public:
    DocumentListPane(browser::DocumentListModel &model, browser::OutlineModel &outline,
                     browser::EventBridge &bridge, const ActionRegistry &actions,
                     QWidget *parent = nullptr);

    DocumentListView *view() const { return m_view; }
    QLineEdit *filterField() const { return m_filter; }
    SearchOptionsPanel *searchOptions() const { return m_searchOptions; }
    browser::SearchFieldController *searchField() const { return m_search; }
    // The paths of the selected item rows.
    QStringList selectedPaths() const;
    bool selectedIsDocument() const;
    QString shownBook() const;
    bool showsPlainBook() const;
    // Selects the row once it is listed, without telling anyone.
    void selectSilently(const QString &path);

Q_SIGNALS:
    void selectionChanged();

private:
    void handleSelection();
    void updateSortButton();
    void updateEmptyText();
    void applyPendingSelection();
    // The field shows the text without searching for it.
    void setFieldTextQuietly(const QString &text);

    browser::DocumentListModel &m_model;
    DocumentListView *m_view;
    QLineEdit *m_filter;
    QToolButton *m_sort;
    QLabel *m_empty;
    // The field filters a plain book and searches the library on Return.
    browser::SearchFieldController *m_search;
    SearchOptionsPanel *m_searchOptions;
    QLabel *m_searchTitle;
    QString m_pendingSelection;
    bool m_silent = false;
    // The rows selected as last told: rows coming and going around them
    // change the selection model, not what is selected.
    QStringList m_selectedRows;
    bool m_settingField = false;
};

} // namespace tl::app
