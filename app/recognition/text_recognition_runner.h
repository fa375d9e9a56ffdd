#pragma once

#include "importers/text_recognition.h"

#include <QFutureWatcher>
#include <QObject>
#include <QPointer>
#include <memory>

class QProgressDialog;
class QWidget;

// "Recognize Text": the recognition of an image or PDF on a worker, with a
// progress sheet that shows the status texts and stops the run, then the
// new document shown. One run at a time.
namespace tl::app {

class TextRecognitionRunner : public QObject
{
    Q_OBJECT
public:
    explicit TextRecognitionRunner(QWidget *window);
    ~TextRecognitionRunner() override;

    void recognize(const QString &path);
    bool isRunning() const { return m_watcher.isRunning(); }
    // The sheet of the run under way, if any.
    QProgressDialog *progressSheet() const;

Q_SIGNALS:
    // The new document; empty when the file held no text or the run was
    // stopped.
    void finished(const QString &document, bool stopped);

private:
    void done();

    QWidget *m_window;
    QString m_source;
    std::unique_ptr<importers::RecognitionRun> m_run;
    QPointer<QProgressDialog> m_progress;
    QFutureWatcher<QString> m_watcher;
};

} // namespace tl::app
