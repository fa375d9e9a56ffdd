#include "platform/audio_decoder.h"
#include "platform/speech_recognizer.h"

#include <QDir>
#include <QFileInfo>
#include <pocketsphinx.h>
#include <spdlog/spdlog.h>

namespace tl::platform {

namespace {

// The models' only sample rate.
constexpr int kSampleRate = 16000;
// Pieces of a tenth of a second, so pauses are seen where they fall.
constexpr size_t kPiece = kSampleRate / 10;

struct Model
{
    QString acoustic;
    QString language;
    QString dictionary;
};

QString firstFile(const QDir &folder, const QStringList &patterns, const QString &unless)
{
    for (const QFileInfo &file : folder.entryInfoList(patterns, QDir::Files, QDir::Name))
        if (unless.isEmpty() || !file.fileName().contains(unless))
            return file.filePath();
    return {};
}

// A model folder is complete with an acoustic model (the folder holding
// "mdef"), a word language model (not the phone model) and a dictionary.
std::optional<Model> modelIn(const QString &folder)
{
    const QDir dir(folder);
    Model model;
    for (const QFileInfo &sub : dir.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        if (QFileInfo::exists(sub.filePath() + QStringLiteral("/mdef")))
            model.acoustic = sub.filePath();
    model.language = firstFile(
        dir, {QStringLiteral("*.lm.bin"), QStringLiteral("*.lm"), QStringLiteral("*.lm.dmp")},
        QStringLiteral("-phone"));
    model.dictionary = firstFile(dir, {QStringLiteral("*.dict"), QStringLiteral("*.dic")}, {});
    if (model.acoustic.isEmpty() || model.language.isEmpty() || model.dictionary.isEmpty())
        return std::nullopt;
    return model;
}

// The model of the locale's language and region, else any of its language.
std::optional<Model> modelFor(const QString &models, const QString &locale)
{
    const QString wanted = QString(locale).replace(u'_', u'-').toLower();
    const QString language = wanted.section(u'-', 0, 0);
    if (language.isEmpty())
        return std::nullopt;
    if (std::optional<Model> exact = modelIn(QDir(models).filePath(wanted)))
        return exact;
    for (const QString &name :
         QDir(models).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        if (name == language || name.startsWith(language + u'-'))
            if (std::optional<Model> model = modelIn(QDir(models).filePath(name)))
                return model;
    return std::nullopt;
}

// One decoder over one model, freed with it.
class Decoder
{
public:
    explicit Decoder(const Model &model)
    {
        const QByteArray hmm = model.acoustic.toUtf8(), lm = model.language.toUtf8(),
                         dict = model.dictionary.toUtf8();
        m_config =
            cmd_ln_init(nullptr, ps_args(), TRUE, "-hmm", hmm.constData(), "-lm", lm.constData(),
                        "-dict", dict.constData(), "-logfn", "/dev/null", nullptr);
        if (m_config)
            m_decoder = ps_init(m_config);
    }
    ~Decoder()
    {
        if (m_decoder)
            ps_free(m_decoder);
        if (m_config)
            cmd_ln_free_r(m_config);
    }
    Decoder(const Decoder &) = delete;
    Decoder &operator=(const Decoder &) = delete;

    ps_decoder_t *get() const { return m_decoder; }

    // Ends the stretch of speech under way and keeps its words.
    void endStretch(QStringList &results)
    {
        ps_end_utt(m_decoder);
        if (const char *words = ps_get_hyp(m_decoder, nullptr); words && *words)
            results << QString::fromUtf8(words);
    }

private:
    cmd_ln_t *m_config = nullptr;
    ps_decoder_t *m_decoder = nullptr;
};

} // namespace

PocketSphinxRecognizer::PocketSphinxRecognizer(QString modelFolder)
    : m_models(modelFolder.isEmpty() ? QStringLiteral(TAVELLE_SPEECH_MODELS) : modelFolder)
{
}

bool PocketSphinxRecognizer::isAvailable(const QString &locale) const
{
    return modelFor(m_models, locale).has_value();
}

std::optional<QStringList> PocketSphinxRecognizer::transcribe(const TranscriptionJob &job)
{
    const std::optional<Model> model = modelFor(m_models, job.locale);
    if (!model)
        return std::nullopt;
    AudioDecoder audio(job.path, kSampleRate);
    if (!audio.isOpen())
        return std::nullopt;
    Decoder decoder(*model);
    if (!decoder.get()) {
        spdlog::warn("transcription: the model in {} does not load", model->acoustic.toStdString());
        return std::nullopt;
    }
    const double total = audio.duration() * kSampleRate;
    double done = 0;
    QStringList results;
    bool inSpeech = false;
    ps_start_utt(decoder.get());
    for (std::vector<int16_t> samples = audio.read(); !samples.empty(); samples = audio.read()) {
        for (size_t at = 0; at < samples.size(); at += kPiece) {
            if (job.cancelled && job.cancelled->load())
                return std::nullopt;
            const size_t count = std::min(kPiece, samples.size() - at);
            ps_process_raw(decoder.get(), samples.data() + at, count, FALSE, FALSE);
            const bool speaking = ps_get_in_speech(decoder.get());
            if (inSpeech && !speaking) {
                decoder.endStretch(results);
                ps_start_utt(decoder.get());
            }
            inSpeech = speaking;
        }
        done += double(samples.size());
        if (job.progress && total > 0)
            job.progress(std::min(1.0, done / total));
    }
    decoder.endStretch(results);
    return results;
}

} // namespace tl::platform
