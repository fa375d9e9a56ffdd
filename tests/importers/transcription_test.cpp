#include "importers/transcription.h"
#include "platform/speech_recognizer.h"
#include "support/test_environment.h"

#include <QFile>
#include <gtest/gtest.h>

namespace tl::importers {
namespace {

// Hears the same words in every recording, or fails.
class ScriptedRecognizer : public platform::SpeechRecognizer
{
public:
    explicit ScriptedRecognizer(std::optional<QStringList> results) : m_results(std::move(results))
    {
    }
    bool isAvailable(const QString &locale) const override { return locale == u"en-US"; }
    std::optional<QStringList> transcribe(const platform::TranscriptionJob &) override
    {
        return m_results;
    }

private:
    std::optional<QStringList> m_results;
};

class Transcription : public ::testing::Test
{
protected:
    void TearDown() override { platform::setSpeechRecognizer(nullptr); }

    QString recording(const QString &name)
    {
        const QString path = m_book + u'/' + name;
        EXPECT_TRUE(tltest::writeFile(path, "sound"));
        return path;
    }
    void hear(std::optional<QStringList> results)
    {
        platform::setSpeechRecognizer(std::make_shared<ScriptedRecognizer>(std::move(results)));
    }

    QString m_book = tltest::makeTemporaryFolder(QStringLiteral("transcripts"));
};

TEST_F(Transcription, TranscriptIsAMarkdownDocumentBesideTheRecording)
{
    hear(QStringList{QStringLiteral("hello world"), QStringLiteral("second thought")});
    const QString memo = recording(QStringLiteral("voice memo.m4a"));
    const struct
    {
        const char *name;
        const char *title;
    } runs[] = {{"voice memo transcript.md", "voice memo transcript"},
                {"voice memo transcript 1.md", "voice memo transcript 1"}};
    for (const auto &run : runs) {
        const std::optional<QString> transcript =
            tl_transcribeAudioWithLocale(memo, QStringLiteral("en-US"));
        ASSERT_TRUE(transcript);
        EXPECT_EQ(*transcript, m_book + u'/' + QLatin1String(run.name));
        EXPECT_EQ(QString::fromUtf8(tltest::readFile(*transcript)),
                  QLatin1String(run.title) +
                      QStringLiteral("\n\n<audio src=\"voice%20memo.m4a\" controls></audio>\n\n"
                                     "\nhello world\nsecond thought"));
    }
}

TEST_F(Transcription, NoDocumentWithoutText)
{
    const QString memo = recording(QStringLiteral("memo.m4a"));
    hear(QStringList{QStringLiteral("words")});
    EXPECT_FALSE(tl_transcribeAudioWithLocale(memo, QStringLiteral("fr-FR")));
    hear(std::nullopt);
    EXPECT_FALSE(tl_transcribeAudioWithLocale(memo, QStringLiteral("en-US")));
    hear(QStringList{});
    EXPECT_FALSE(tl_transcribeAudioWithLocale(memo, QStringLiteral("en-US")));
    EXPECT_FALSE(QFile::exists(m_book + QStringLiteral("/memo transcript.md")));
}

TEST(TranscriptionStatus, NamesTheLanguage)
{
    const std::pair<const char *, const char *> cases[] = {
        {"en-US", "Transcription in progress (EN)"},
        {"de", "Transcription in progress (DE)"},
        {"zh-Hans-CN", "Transcription in progress (ZH.HANS)"},
    };
    for (const auto &[locale, text] : cases)
        EXPECT_EQ(transcriptionStatusText(QLatin1String(locale)), QLatin1String(text));
}

} // namespace
} // namespace tl::importers
