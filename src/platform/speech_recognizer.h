#pragma once

// Speech in a recording as text. The desktop and the command use the
// pocketsphinx recogniser with the language models installed on the system;
// tests install one of their own.

#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace tl::platform {

struct TranscriptionJob
{
    QString path;
    // A locale identifier such as "en-US".
    QString locale;
    // The share of the recording done, 0 to 1; called on the worker.
    std::function<void(double)> progress;
    // Raised from any thread to stop early.
    const std::atomic<bool> *cancelled = nullptr;
};

class SpeechRecognizer
{
public:
    virtual ~SpeechRecognizer();
    // Whether speech of the locale's language can be recognised at all: the
    // recogniser's answer to a request for authorisation.
    virtual bool isAvailable(const QString &locale) const = 0;
    // Each stretch of speech between pauses as one result, in order;
    // nothing when the recording cannot be read, the locale is not
    // available or the job was cancelled.
    virtual std::optional<QStringList> transcribe(const TranscriptionJob &job) = 0;
};

// Recognition by pocketsphinx with the models of its model folder: one
// folder per language and region ("en-us"), holding the acoustic model, a
// language model and a pronunciation dictionary.
class PocketSphinxRecognizer : public SpeechRecognizer
{
public:
    // The system's model folder unless another is given.
    explicit PocketSphinxRecognizer(QString modelFolder = QString());
    bool isAvailable(const QString &locale) const override;
    std::optional<QStringList> transcribe(const TranscriptionJob &job) override;

private:
    QString m_models;
};

// The process-wide recogniser: a PocketSphinxRecognizer until one is set.
SpeechRecognizer &speechRecognizer();
// Nothing restores the system's recogniser.
void setSpeechRecognizer(std::shared_ptr<SpeechRecognizer> recognizer);

} // namespace tl::platform
