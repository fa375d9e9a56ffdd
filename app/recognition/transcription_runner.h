#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QPointer>
#include <atomic>
#include <optional>

class QProgressDialog;
class QWidget;

// "Transcribe Recording": the recogniser runs on a worker behind a progress
// sheet with Cancel; the transcript is shown when done. One run at a time.
namespace tl::app {

class TranscriptionRunner : public QObject
{
    Q_OBJECT
public:
    explicit TranscriptionRunner(QWidget *window);
    ~TranscriptionRunner() override;

    // Why recordings cannot be transcribed in the user's language; empty
    // when they can. Asked once: models are installed with the system.
    const QString &refusal() const { return m_refusal; }
    void transcribe(const QString &recording);
    bool isRunning() const { return m_watcher.isRunning(); }

Q_SIGNALS:
    // The new transcript; empty when cancelled or nothing was heard.
    void finished(const QString &path);

private:
    void done();

    QWidget *m_window;
    QString m_locale;
    QString m_refusal;
    std::atomic<bool> m_cancelled{false};
    QPointer<QProgressDialog> m_progress;
    QFutureWatcher<std::optional<QString>> m_watcher;
};

} // namespace tl::app
