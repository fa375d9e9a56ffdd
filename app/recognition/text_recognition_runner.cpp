#include "recognition/text_recognition_runner.h"

#include "progress_sheet.h"

#include <QProgressDialog>
#include <QtConcurrent/QtConcurrentRun>

namespace tl::app {

TextRecognitionRunner::TextRecognitionRunner(QWidget *window) : QObject(window), m_window(window)
{
    connect(&m_watcher, &QFutureWatcher<QString>::finished, this, &TextRecognitionRunner::done);
}

TextRecognitionRunner::~TextRecognitionRunner()
{
    if (m_run)
        m_run->cancelled = true;
    m_watcher.waitForFinished();
}

void TextRecognitionRunner::recognize(const QString &path)
{
    if (isRunning() || !importers::tl_canRecognizeText(path))
        return;
    m_source = path;
    m_run = std::make_unique<importers::RecognitionRun>();
    const QString label = QString::fromUtf8(importers::texts::RecognizingText);
    m_progress = openProgressSheet(m_window, QStringLiteral("Recognize Text"), label,
                                   QStringLiteral("Cancel"));
    importers::RecognitionRun *run = m_run.get();
    connect(m_progress, &QProgressDialog::canceled, this, [run] { run->cancelled = true; });
    // The worker's status reaches the sheet on the main thread.
    QPointer<QProgressDialog> progress = m_progress;
    run->showStatus = [progress](const QString &text, double part) {
        QMetaObject::invokeMethod(
            progress,
            [progress, text, part] {
                if (!progress)
                    return;
                if (progress->labelText() != text)
                    progress->setLabelText(text);
                progress->setValue(int(part * 100));
            },
            Qt::QueuedConnection);
    };
    m_watcher.setFuture(
        QtConcurrent::run([run, path] { return importers::tl_recognizeText(path, *run); }));
}

QProgressDialog *TextRecognitionRunner::progressSheet() const
{
    return m_progress.data();
}

void TextRecognitionRunner::done()
{
    const bool stopped = m_run->cancelled;
    const QString text = m_watcher.result();
    if (m_progress)
        m_progress->deleteLater();
    m_run.reset();
    const QString document = stopped ? QString() : importers::tl_saveRecognizedText(m_source, text);
    showMadeDocument(document);
    Q_EMIT finished(document, stopped);
}

} // namespace tl::app
