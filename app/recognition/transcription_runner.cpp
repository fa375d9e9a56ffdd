#include "recognition/transcription_runner.h"

#include "importers/transcription.h"
#include "progress_sheet.h"

#include <QLocale>
#include <QProgressDialog>
#include <QtConcurrent/QtConcurrentRun>

namespace tl::app {

TranscriptionRunner::TranscriptionRunner(QWidget *window)
    : QObject(window), m_window(window), m_locale(importers::transcriptionLocale())
{
    if (!importers::tl_speechIsAuthorized(m_locale))
        m_refusal = QStringLiteral("No speech model for %1 is installed, so recordings cannot be "
                                   "transcribed.")
                        .arg(QLocale::languageToString(
                            QLocale(QString(m_locale).replace(u'-', u'_')).language()));
    connect(&m_watcher, &QFutureWatcher<std::optional<QString>>::finished, this,
            &TranscriptionRunner::done);
}

TranscriptionRunner::~TranscriptionRunner()
{
    m_cancelled = true;
    m_watcher.waitForFinished();
}

void TranscriptionRunner::transcribe(const QString &recording)
{
    if (isRunning() || !m_refusal.isEmpty() || recording.isEmpty())
        return;
    m_cancelled = false;
    const QString label = importers::transcriptionStatusText(m_locale);
    m_progress = openProgressSheet(m_window, QStringLiteral("Transcribe Recording"), label,
                                   QStringLiteral("Cancel"));
    connect(m_progress, &QProgressDialog::canceled, this, [this] { m_cancelled = true; });
    // The worker's progress reaches the sheet on the main thread.
    QPointer<QProgressDialog> progress = m_progress;
    const auto report = [progress](double share) {
        QMetaObject::invokeMethod(
            progress,
            [progress, share] {
                if (progress)
                    progress->setValue(int(share * 100));
            },
            Qt::QueuedConnection);
    };
    m_watcher.setFuture(QtConcurrent::run([this, recording, report] {
        return importers::tl_transcribeAudioWithLocale(recording, m_locale, report, &m_cancelled);
    }));
}

void TranscriptionRunner::done()
{
    const QString path = m_watcher.result().value_or(QString());
    if (m_progress)
        m_progress->deleteLater();
    showMadeDocument(path);
    Q_EMIT finished(path);
}

} // namespace tl::app
