#pragma once

#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <optional>

// Recordings made into Markdown transcripts beside them.
namespace tl::importers {

// The locale transcription uses: the user's, as "en-US"; English where the
// system names none.
QString transcriptionLocale();

// Whether the recogniser can transcribe the locale's language, the answer
// of the authorisation request.
bool tl_speechIsAuthorized(const QString &locale);

// "Transcription in progress (EN)" for "en-US".
QString transcriptionStatusText(const QString &locale);

// Saves the recogniser's results as "<base> transcript.md" (a free name) in
// the recording's folder: the title, the recording as an audio element,
// then each result on its line. Its path; nothing when there is no text or
// the file cannot be written.
std::optional<QString> tl_saveTranscript(const QString &recording, const QStringList &results);

// tl_transcribeAudioWithLocale: recognises the recording and saves the
// transcript. Nothing, silently, when the locale is refused, and nothing
// when the recogniser fails or is cancelled. Runs on a worker.
std::optional<QString>
tl_transcribeAudioWithLocale(const QString &recording, const QString &locale,
                             const std::function<void(double)> &progress = {},
                             const std::atomic<bool> *cancelled = nullptr);

} // namespace tl::importers
