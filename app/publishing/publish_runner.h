#pragma once

#include "publish/document_compiler.h"

#include <QFutureWatcher>
#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>

class QProgressDialog;
class QWidget;

// "Compile..." and "Create E-Book...": the sheet, then the run on a worker
// with a progress sheet and its Stop button, then the result selected. One
// run at a time.
namespace tl::app {

class PublishRunner : public QObject
{
    Q_OBJECT
public:
    explicit PublishRunner(QWidget *window);
    ~PublishRunner() override;

    // The selection's documents, or those of the book shown, go into a new
    // document in that book.
    void compile(const QStringList &selection, const QString &book);
    void createEBook(const QStringList &selection, const QString &book);
    bool isRunning() const { return m_watcher.isRunning(); }

Q_SIGNALS:
    // The new document, PDF or e-book; empty when stopped or failed.
    void finished(const QString &path);

private:
    using Work = std::function<QString(publish::TLKSDocumentCompiler &)>;
    void run(const QString &label, const QString &base, Work work);
    void done();

    QWidget *m_window;
    std::unique_ptr<publish::TLKSDocumentCompiler> m_compiler;
    QPointer<QProgressDialog> m_progress;
    QFutureWatcher<QString> m_watcher;
};

} // namespace tl::app
