// Reading a document whose encoding is unknown: finding the encoding and
// decoding the text, against reading the file's bytes alone, measured in the
// same run. The target is at most three times the plain read.
#include "platform/file_ops.h"
#include "store/document_file.h"

#include <QDir>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <chrono>

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

template <typename F> double secondsOf(F &&f, int64_t times)
{
    const auto start = std::chrono::steady_clock::now();
    for (int64_t i = 0; i < times; ++i)
        f();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

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
    int64_t runs = 0;
    double ours = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        const auto read = tl::store::tl_stringWithContentsOfFile(path);
        ours += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (!read || read->encoding != encoding)
            state.SkipWithError("read in the wrong encoding");
        benchmark::DoNotOptimize(read);
        ++runs;
    }
    const double plain =
        secondsOf([&] { benchmark::DoNotOptimize(tl::platform::readFile(path)); }, runs);
    state.counters["ratio_to_reading_bytes"] = ours / plain;
    state.SetBytesProcessed(runs * bytes.size());
}

void BM_Utf8English(benchmark::State &state)
{
    readUnknownEncoding(state, tl::store::TextEncoding::UTF8, kEnglish, "\n");
}
BENCHMARK(BM_Utf8English)->Unit(benchmark::kMillisecond);

void BM_Utf8French(benchmark::State &state)
{
    readUnknownEncoding(state, tl::store::TextEncoding::UTF8, kFrench, "\n");
}
BENCHMARK(BM_Utf8French)->Unit(benchmark::kMillisecond);

// UTF-8 is tried first and fails at the first accented letter.
void BM_WindowsLatin1(benchmark::State &state)
{
    readUnknownEncoding(state, tl::store::TextEncoding::WindowsLatin1, kFrench, "\r\n");
}
BENCHMARK(BM_WindowsLatin1)->Unit(benchmark::kMillisecond);

void BM_MacRoman(benchmark::State &state)
{
    readUnknownEncoding(state, tl::store::TextEncoding::MacRoman, kFrench, "\n");
}
BENCHMARK(BM_MacRoman)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
