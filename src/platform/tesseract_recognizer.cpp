#include "platform/text_recognizer.h"

#include <QDir>
#include <QLocale>
#include <QPainter>
#include <mutex>
#include <omp.h>
#include <spdlog/spdlog.h>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <tesseract/resultiterator.h>
#include <vector>

namespace tl::platform {

namespace {

using Engine = tesseract::TessBaseAPI;

constexpr double kMetresPerInch = 0.0254;
// What Qt assumes for a picture that names no resolution: left to the
// engine's own estimate instead.
constexpr int kUnstatedDotsPerMetre = 3780;

std::unique_ptr<Engine> startEngine(const QString &languages)
{
    auto engine = std::make_unique<Engine>();
    // The engine's chatter (resolution estimates, warnings) stays out of
    // the program's standard error.
    engine->SetVariable("debug_file", "/dev/null");
    const QByteArray names = languages.toUtf8();
    if (engine->Init(nullptr, names.constData(), tesseract::OEM_LSTM_ONLY) != 0) {
        spdlog::warn("text recognition: cannot load the languages {}", names.toStdString());
        return nullptr;
    }
    engine->SetPageSegMode(tesseract::PSM_AUTO);
    return engine;
}

QStringList installedLanguages()
{
    const std::unique_ptr<Engine> probe = startEngine(QStringLiteral("eng"));
    if (!probe)
        return {};
    std::vector<std::string> names;
    probe->GetAvailableLanguagesAsVector(&names);
    QStringList installed;
    for (const std::string &name : names)
        installed << QString::fromStdString(name);
    return installed;
}

// Grey levels on white: transparent parts of a picture would otherwise turn
// black and hide dark text.
QImage greyOnWhite(const QImage &image)
{
    if (!image.hasAlphaChannel())
        return image.convertToFormat(QImage::Format_Grayscale8);
    QImage flat(image.size(), QImage::Format_RGB32);
    flat.fill(Qt::white);
    QPainter painter(&flat);
    painter.drawImage(0, 0, image);
    painter.end();
    return flat.convertToFormat(QImage::Format_Grayscale8);
}

bool cancelRequested(void *control, int)
{
    return static_cast<const RecognitionControl *>(control)->isCancelled();
}

bool reportProgress(tesseract::ETEXT_DESC *monitor, int, int, int, int)
{
    const auto *control = static_cast<const RecognitionControl *>(monitor->cancel_this);
    if (control->progress)
        control->progress(monitor->progress);
    return true;
}

} // namespace

// Engines are slow to start and not shared between threads: each call
// borrows an idle one, or starts one, and gives it back.
struct TesseractTextRecognizer::Engines
{
    std::mutex mutex;
    bool languagesKnown = false;
    QString languages;
    std::vector<std::unique_ptr<Engine>> idle;

    std::unique_ptr<Engine> borrow()
    {
        std::unique_lock lock(mutex);
        if (!languagesKnown) {
            languages = recognitionLanguages(QLocale::system().uiLanguages(), installedLanguages());
            languagesKnown = true;
        }
        if (!idle.empty()) {
            std::unique_ptr<Engine> engine = std::move(idle.back());
            idle.pop_back();
            return engine;
        }
        const QString names = languages;
        lock.unlock();
        return names.isEmpty() ? nullptr : startEngine(names);
    }

    void giveBack(std::unique_ptr<Engine> engine)
    {
        engine->Clear();
        std::lock_guard lock(mutex);
        idle.push_back(std::move(engine));
    }
};

TesseractTextRecognizer::TesseractTextRecognizer() : m_engines(std::make_unique<Engines>())
{
}

TesseractTextRecognizer::~TesseractTextRecognizer() = default;

QStringList TesseractTextRecognizer::recognizeLines(const QImage &image,
                                                    const RecognitionControl &control)
{
    if (image.isNull() || control.isCancelled())
        return {};
    std::unique_ptr<Engine> engine = m_engines->borrow();
    if (!engine)
        return {};
    const QImage grey = greyOnWhite(image);
    engine->SetImage(grey.constBits(), grey.width(), grey.height(), 1, int(grey.bytesPerLine()));
    if (image.dotsPerMeterX() != kUnstatedDotsPerMetre)
        engine->SetSourceResolution(int(image.dotsPerMeterX() * kMetresPerInch + 0.5));

    // The engine asks for several threads at once; on a busy machine they
    // spin against each other and a page takes many times as long. With
    // dynamic adjustment the runtime gives only the cores that are idle.
    omp_set_dynamic(1);
    tesseract::ETEXT_DESC monitor;
    monitor.cancel = cancelRequested;
    monitor.progress_callback2 = reportProgress;
    monitor.cancel_this = const_cast<RecognitionControl *>(&control);
    QStringList lines;
    if (engine->Recognize(&monitor) == 0 && !control.isCancelled()) {
        const std::unique_ptr<tesseract::ResultIterator> it(engine->GetIterator());
        if (it && !it->Empty(tesseract::RIL_TEXTLINE)) {
            do {
                const std::unique_ptr<char[]> text(it->GetUTF8Text(tesseract::RIL_TEXTLINE));
                const QString line = text ? QString::fromUtf8(text.get()).trimmed() : QString();
                if (!line.isEmpty())
                    lines << line;
            } while (it->Next(tesseract::RIL_TEXTLINE));
        }
    }
    m_engines->giveBack(std::move(engine));
    return control.isCancelled() ? QStringList() : lines;
}

} // namespace tl::platform
