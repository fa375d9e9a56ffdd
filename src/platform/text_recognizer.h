#pragma once

// Text recognition in pictures. The desktop and the command use the
// Tesseract engine with the languages installed for it; tests install a
// recogniser of their own.

#include <QImage>
#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <memory>

namespace tl::platform {

// What a caller hears of one picture's recognition and how it stops it.
struct RecognitionControl
{
    // Percent done of this picture, from the recogniser's thread.
    std::function<void(int percent)> progress;
    // Raised by another thread; the recogniser then answers nothing soon.
    const std::atomic<bool> *cancelled = nullptr;

    bool isCancelled() const { return cancelled && cancelled->load(); }
};

class TextRecognizer
{
public:
    virtual ~TextRecognizer();
    // The lines of text in the picture in reading order, each trimmed; none
    // for a picture without text, a failure or a cancel. Safe to call from
    // several threads at once.
    virtual QStringList recognizeLines(const QImage &image,
                                       const RecognitionControl &control = {}) = 0;
};

// Tesseract at its most accurate, dictionaries on, in the user's preferred
// languages that are installed for it and English.
class TesseractTextRecognizer : public TextRecognizer
{
public:
    TesseractTextRecognizer();
    ~TesseractTextRecognizer() override;
    QStringList recognizeLines(const QImage &image, const RecognitionControl &control) override;

private:
    struct Engines;
    std::unique_ptr<Engines> m_engines;
};

// The languages to recognise, as the engine names them ("deu", "chi_sim"),
// joined by "+": each preferred locale's language where its data is
// installed, in order of preference, then English where installed.
QString recognitionLanguages(const QStringList &preferredLocales, const QStringList &installed);

// The process-wide recogniser: a TesseractTextRecognizer until one is set.
std::shared_ptr<TextRecognizer> textRecognizer();
// Nothing restores Tesseract.
void setTextRecognizer(std::shared_ptr<TextRecognizer> recognizer);

} // namespace tl::platform
