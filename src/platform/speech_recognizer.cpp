#include "platform/speech_recognizer.h"

#include <mutex>

namespace tl::platform {

namespace {

std::mutex recognizerMutex;
std::shared_ptr<SpeechRecognizer> installedRecognizer;

} // namespace

SpeechRecognizer::~SpeechRecognizer() = default;

SpeechRecognizer &speechRecognizer()
{
    std::lock_guard lock(recognizerMutex);
    if (!installedRecognizer)
        installedRecognizer = std::make_shared<PocketSphinxRecognizer>();
    return *installedRecognizer;
}

void setSpeechRecognizer(std::shared_ptr<SpeechRecognizer> recognizer)
{
    std::lock_guard lock(recognizerMutex);
    installedRecognizer = std::move(recognizer);
}

} // namespace tl::platform
