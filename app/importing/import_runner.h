#pragma once

#include "importers/file_import.h"

#include <QFutureWatcher>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <atomic>
#include <utility>

class QProgressDialog;
class QWidget;

// Mail messages, outlines and Evernote exports into a book: "Import...",
// files dropped on a book and the Evernote page's link all come here. The
// files are read on a worker behind a progress sheet with Cancel; a stopped
// export keeps the notes finished before. Imports asked for during a run
// follow it.
namespace tl::app {

class ImportRunner : public QObject
{
    Q_OBJECT
public:
    explicit ImportRunner(QWidget *window);
    ~ImportRunner() override;

    // "Import...": the file dialog, then the import into the book.
    void chooseAndImport(const QString &book);
    // The files the import takes go into the book; answers the others.
    QStringList importFiles(const QStringList &paths, const QString &book);
    // Asks whether the export's notes are to come into the book that holds it.
    void offerEvernoteImport(const QString &exportPath);
    bool isRunning() const { return m_watcher.isRunning(); }

Q_SIGNALS:
    // The new documents of a run, however it ended.
    void finished(const QStringList &documents);

private:
    struct Result
    {
        QStringList documents;
        bool complete = true;
    };
    void startNext();
    void done();

    QWidget *m_window;
    QList<std::pair<QStringList, QString>> m_queue;
    std::atomic_bool m_stop = false;
    QPointer<QProgressDialog> m_progress;
    QFutureWatcher<Result> m_watcher;
};

} // namespace tl::app
