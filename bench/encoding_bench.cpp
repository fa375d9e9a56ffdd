// Reading a document whose encoding is unknown: finding the encoding and
// decoding the text, against reading the file's bytes alone, measured in the
// same run. The target is at most three times the plain read.
#include "platform/file_ops.h"
#include "store/document_file.h"

#include <QDir>
#include <QTemporaryDir>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <limits>

namespace {

constexpr qsizetype kFileSize = 10 * 1024 * 1024;

// French prose has an accented letter in every 30 or so; English next to none.
const QString kFrench = QStringLiteral("Le café de la gare, où l’on mange à midi: ") +
                        QStringLiteral("plain words that need no more than ASCII.");
const QString kEnglish = QStringLiteral("The station café, where one has lunch at noon: ") +
                         QStringLiteral("plain words that need no more than ASCII, and more.");

QByteArray sampleBytes(tl::store::TextEncoding encoding, const QString &prose, const char *lineEnd)
{
    const QString line = prose + QLatin1String(lineEnd);
    QString text;
    while (text.size() < kFileSize)
        text += line;
    return tl::store::encodedText(text.left(kFileSize).replace(QChar(0x2019), u'\''), encoding)
        .value_or(QByteArray());
}

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Each run reads the bytes alone and then reads the text, so that both meet
// the same load on the machine; the ratio is that of the fastest of each.
void readUnknownEncoding(benchmark::State &state, tl::store::TextEncoding encoding,
                         const QString &prose, const char *lineEnd)
{
    QTemporaryDir folder;
    const QString path = QDir(folder.path()).filePath(QStringLiteral("sample.txt"));
    const QByteArray bytes = sampleBytes(encoding, prose, lineEnd);
    if (bytes.isEmpty() || !tl::platform::writeFileAtomically(path, bytes)) {
        state.SkipWithError("cannot write the sample");
        return;
    }
    double plain = std::numeric_limits<double>::max();
    double ours = plain;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(tl::platform::readFile(path));
        plain = std::min(plain, secondsSince(start));
        start = std::chrono::steady_clock::now();
        const auto read = tl::store::tl_stringWithContentsOfFile(path);
        const double seconds = secondsSince(start);
        ours = std::min(ours, seconds);
        state.SetIterationTime(seconds);
        if (!read || read->encoding != encoding)
            state.SkipWithError("read in the wrong encoding");
        benchmark::DoNotOptimize(read);
    }
    state.counters["ratio_to_reading_bytes"] = ours / plain;
    state.SetBytesProcessed(state.iterations() * bytes.size());
}

void BM_Utf8English(benchmark::State &state)
{
    readUnknownEncoding(state, tl::store::TextEncoding::UTF8, kEnglish, "\n");
}
BENCHMARK(BM_Utf8English)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_Utf8French(benchmark::State &state)
{
    readUnknownEncoding(state, tl::store::TextEncoding::UTF8, kFrench, "\n");
}
BENCHMARK(BM_Utf8French)->UseManualTime()->Unit(benchmark::kMillisecond);

// UTF-8 is tried first and fails at the first accented letter.
void BM_WindowsLatin1(benchmark::State &state)
{
    readUnknownEncoding(state, tl::store::TextEncoding::WindowsLatin1, kFrench, "\r\n");
}
BENCHMARK(BM_WindowsLatin1)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_MacRoman(benchmark::State &state)
{
    readUnknownEncoding(state, tl::store::TextEncoding::MacRoman, kFrench, "\n");
}
BENCHMARK(BM_MacRoman)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
