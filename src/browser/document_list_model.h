#pragma once

#include "browser/document_list.h"

#include <QAbstractListModel>
#include <QHash>
#include <QSet>
#include <QStringList>
#include <memory>

// The document list as an item model: group headers and rows in display
// order. Every change of the controller's rows reaches the views as the
// smallest set of removals, moves, insertions and data changes, so the
// selection and the scroll position survive; only a new book (or smart
// book) resets the model.
namespace tl::browser {

class CoalescingWorker;
class EventBridge;

class DocumentListModel : public QAbstractListModel
{
    Q_OBJECT
public:
    enum Role {
        PathRole = Qt::UserRole + 1,
        // Qt::DisplayRole gives the title too.
        TitleRole,
        // The first lines of the document where showPreviewForNotes asks for them.
        PreviewRole,
        // The date shown: the creation date when sorting by it, else modDate.
        DateRole,
        // Task icon name ("icon-task-open", ...); empty for no task.
        TaskIconRole,
        PinnedRole,
        // The colour label as the stored "%.4f %.4f %.4f %.4f" text, empty for none.
        ColorLabelRole,
        IsHeaderRole,
        SmartTypeRole,
        IsBookRole,
        DueDateRole,
        // The due date of an open task as the list shows it; empty for others.
        DueTextRole,
        // The row as the dictionary the command prints.
        RecordRole,
    };

    // The model takes over the controller's rowsChanged callback.
    explicit DocumentListModel(TLKSDocumentListViewController &list, QObject *parent = nullptr);
    ~DocumentListModel() override;

    TLKSDocumentListViewController &list() { return m_list; }

    // Follows the bridge's file and selection events on the main thread.
    void connectToBridge(EventBridge &bridge);

    // The row of an item, invalid when it is not listed.
    QModelIndex indexForPath(const QString &path) const;
    QString pathAt(const QModelIndex &index) const;

    // The filter field's text: the list is rebuilt with it.
    void setFilter(const QString &filter);
    // Lists the book off the main thread; the rows appear when the scan ends.
    // A newer request replaces a waiting one.
    void reloadBookInBackground();
    bool isLoading() const;
    void waitForLoading();
    // Blocks until the previews asked for are made; for shutdown and tests.
    void waitForPreviews();

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Drags carry the paths as file URLs; a drop of rows of this list on a
    // row of the same section is a manual reordering.
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    Qt::DropActions supportedDropActions() const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                         const QModelIndex &parent) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;
    // Moves rows within their section and stores the manual order.
    bool moveRows(const QModelIndex &sourceParent, int sourceRow, int count,
                  const QModelIndex &destinationParent, int destinationChild) override;

Q_SIGNALS:
    void loadingChanged(bool loading);
    // The text an empty list shows changed (emptyListText of the controller).
    void emptyListTextChanged(const QString &text);

private:
    struct Entry;
    // A file event from the bridge, waiting for the end of the event-loop
    // turn: an import reports thousands of files, 3 or 4 events each, and
    // the list takes what arrived in a turn as one update.
    struct FileEvent
    {
        enum Kind { Modified, Deleted, Created, Moved, TaskIcon } kind;
        QString path;
        QString newPath;
    };
    void queueFileEvent(FileEvent event);
    // Applies what waits at the end of this turn, once however often asked.
    void postApply();
    void applyFileEvents();
    void dropFileEvents();
    void syncWithList();
    // Removes the rows that are gone and puts the rest in the new order; the
    // caller inserts the new ones.
    void reshapeTo(const QList<Entry> &fresh);
    // A new order of all rows (a new sort) as one layout change.
    void reorderAsLayout(const QStringList &order);
    QList<Entry> currentEntries() const;
    QString previewOf(const QString &path) const;

    TLKSDocumentListViewController &m_list;
    QList<Entry> m_entries;
    QList<FileEvent> m_fileEvents;
    // Paths with a change waiting: another change of the same file adds nothing.
    QSet<QString> m_modifiedWaiting;
    bool m_applyPosted = false;
    // While events are applied the rows change many times; the views hear once.
    bool m_applying = false;
    bool m_rowsChangedMeanwhile = false;
    QString m_shownBook;
    int m_shownType = -1;
    std::unique_ptr<CoalescingWorker> m_loader;
    // Previews are made off the main thread: a row shows none until its
    // preview arrives, then changes.
    struct PreviewQueue;
    void previewsMade(const QVariantMap &previews);
    std::unique_ptr<CoalescingWorker> m_previewer;
    std::shared_ptr<PreviewQueue> m_previewQueue;
    mutable QHash<QString, QString> m_previews;
    mutable QSet<QString> m_previewsAsked;
};

} // namespace tl::browser
