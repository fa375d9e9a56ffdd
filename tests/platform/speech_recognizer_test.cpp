#include "platform/speech_recognizer.h"
#include "support/test_environment.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <gtest/gtest.h>

namespace tl::platform {
namespace {

// Debian's test recordings of read speech, with what is said in each.
const QString kRecordings = QStringLiteral("/usr/share/pocketsphinx/test/data/librivox");

QStringList words(const QString &text)
{
    return text.toLower().split(u' ', Qt::SkipEmptyParts);
}

// Word error rate: the edits that turn the heard words into the said ones,
// over the number said.
double wordErrorRate(const QStringList &said, const QStringList &heard)
{
    std::vector<qsizetype> row(size_t(heard.size()) + 1);
    for (qsizetype j = 0; j <= heard.size(); ++j)
        row[size_t(j)] = j;
    for (qsizetype i = 1; i <= said.size(); ++i) {
        qsizetype diagonal = row[0];
        row[0] = i;
        for (qsizetype j = 1; j <= heard.size(); ++j) {
            const qsizetype above = row[size_t(j)];
            row[size_t(j)] = std::min({above + 1, row[size_t(j - 1)] + 1,
                                       diagonal + (said[i - 1] == heard[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return double(row.back()) / double(said.size());
}

TEST(PocketSphinx, TranscribesReadSpeech)
{
    const QString recording =
        kRecordings + QStringLiteral("/sense_and_sensibility_01_austen_64kb-0870.wav");
    PocketSphinxRecognizer recognizer;
    if (!QFile::exists(recording) || !recognizer.isAvailable(QStringLiteral("en-US")))
        GTEST_SKIP() << "pocketsphinx-testdata or pocketsphinx-en-us is not installed";
    const QStringList said = words(QStringLiteral(
        "and mister john dashwood had then leisure to consider how much there might be "
        "prudently in his power to do for them"));

    double lastShare = 0;
    QElapsedTimer clock;
    clock.start();
    const std::optional<QStringList> results =
        recognizer.transcribe({recording, QStringLiteral("en-US"),
                               [&lastShare](double share) { lastShare = share; }, nullptr});
    const qint64 elapsed = clock.elapsed();
    ASSERT_TRUE(results.has_value());
    const QStringList heard = words(results->join(u' '));
    const double rate = wordErrorRate(said, heard);
    std::printf("transcribed in %lld ms, word error rate %.0f%%: %s\n", elapsed, rate * 100,
                qPrintable(heard.join(u' ')));
    RecordProperty("word_error_rate_percent", int(rate * 100));
    for (const char *word : {"john", "leisure", "consider", "power"})
        EXPECT_TRUE(heard.contains(QLatin1String(word))) << word;
    EXPECT_DOUBLE_EQ(lastShare, 1.0);
}

TEST(PocketSphinx, RefusesWhatItCannotDo)
{
    PocketSphinxRecognizer recognizer;
    EXPECT_FALSE(recognizer.isAvailable(QStringLiteral("xx-YY")));
    EXPECT_FALSE(recognizer.transcribe(
        {QStringLiteral("/nonexistent.m4a"), QStringLiteral("en-US"), {}, nullptr}));
    const QString notSound =
        tltest::makeTemporaryFolder(QStringLiteral("speech")) + QStringLiteral("/memo.m4a");
    ASSERT_TRUE(tltest::writeFile(notSound, "not a recording"));
    EXPECT_FALSE(recognizer.transcribe({notSound, QStringLiteral("en-US"), {}, nullptr}));
}

TEST(PocketSphinx, StopsWhenCancelled)
{
    const QString recording =
        kRecordings + QStringLiteral("/sense_and_sensibility_01_austen_64kb-0880.wav");
    PocketSphinxRecognizer recognizer;
    if (!QFile::exists(recording) || !recognizer.isAvailable(QStringLiteral("en-US")))
        GTEST_SKIP() << "pocketsphinx-testdata or pocketsphinx-en-us is not installed";
    // Cancelled as soon as the first piece is done.
    std::atomic<bool> cancelled{false};
    EXPECT_FALSE(recognizer.transcribe({recording, QStringLiteral("en-US"),
                                        [&cancelled](double) { cancelled = true; }, &cancelled}));
}

} // namespace
} // namespace tl::platform
