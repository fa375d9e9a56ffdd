#pragma once

#include "store/list_row.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>

// The model behind the document list: what lies in the book or smart book
// selected in the outline, as three sections of rows. Rebuilt whole from
// disk by getDocumentsInFolder, kept current row by row by the file events.
namespace tl::browser {

// One line of the list as shown: a group header or a row.
struct ListEntry
{
    QString header;
    std::optional<store::ListRow> row;
};

class TLKSDocumentListViewController
{
public:
    TLKSDocumentListViewController();
    ~TLKSDocumentListViewController();
    TLKSDocumentListViewController(const TLKSDocumentListViewController &) = delete;
    TLKSDocumentListViewController &operator=(const TLKSDocumentListViewController &) = delete;

    // The book shown; for a context, the tag names joined by newlines.
    QString path;
    int smartBookType = 0;
    QString searchFilter;

    QList<store::ListRow> smartBooksList;
    QList<store::ListRow> booksList;
    QList<store::ListRow> documentsList;
    QString sortOrder = QStringLiteral("title");
    bool sortAscending = true;
    qsizetype numberOfHiddenDoneTasks = 0;

    // Called after every change of the rows.
    std::function<void()> rowsChanged = [] {};

    void getDocumentsInFolder();
    // The sort key and direction of what is shown, from its book or settings.
    void loadDisplayParameters();
    void sortDocuments();
    // loadDisplayParameters, then a fresh list.
    void reloadBook();
    // The sort menu's choice by index; see the menu's table in the source.
    void selectSortOrder(int index);
    // Stores the rows' order as the manual order after a drag.
    void saveCustomSortOrder();
    bool sortControlIsVisible() const;
    // "Title", "Created", "Modified", "State" or "Custom".
    QString sortButtonLabel() const;

    // Upper-cased headers of the three sections; empty for an empty section.
    QString smartBooksHeader() const;
    QString booksHeader() const;
    QString documentsHeader() const;
    // Headers and rows in display order.
    QList<ListEntry> entries() const;
    // What an empty list shows; empty while there are rows.
    QString emptyListText() const;

    // The file events; the list never rebuilds for a single file.
    void documentModifiedOnDisk(const QString &path);
    void documentMoved(const QString &originalPath, const QString &newPath);
    void documentDeletedFromDisk(const QString &path);
    void newFileCreated(const QString &path);
    // A task's state or date changed: its row anew; a book (after a reset)
    // shown here is listed anew.
    void taskIconChanged(const QString &path);
    // The outline's selection: a book, a smart book or a context.
    void handleOpenBookNotification(const QString &path, int smartType);
    // Takes the selection's book and type; answers whether the rows must be
    // read anew (not for the same plain book again).
    bool takeOpenedBook(const QString &path, int smartType);

    // Follows the file and selection events of the notification centre.
    void startObserving();

private:
    bool isTaskList() const;
    bool isPlainBook() const { return smartBookType == 0; }
    void fillPlainBook();
    void fillSmartBook();
    void addSmartBookRows();
    void addRows(const QStringList &paths, bool asFound);
    QList<store::ListRow> *listHoldingPath(const QString &path, qsizetype *index);
    bool rowBelongsHere(const QString &path) const;
    // Whether a name passes the search field's filter.
    bool matchesFilter(const QString &name) const;
    std::optional<store::ListRow> rowForPath(const QString &path) const;
    void insertRow(const store::ListRow &row);
    void changed();

    struct Observers;
    std::unique_ptr<Observers> m_observers;
};

} // namespace tl::browser
