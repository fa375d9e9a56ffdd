// Text recognition of a one-page scan at 300 dpi: a letter page of 40 lines
// of 11 point prose, drawn as a PDF and rendered as a scanner would give it,
// read through the whole path (decoding, the engine, the OCR property). The
// share of the drawn words that come back is reported beside the time.
#include "importers/text_recognition.h"
#include "isolated_home.h"
#include "ratio_reporter.h"
#include "store/library_root.h"
#include "store/pdf_document.h"
#include "support/pdf_fixture.h"

#include <QFile>
#include <QHash>
#include <QTemporaryDir>

namespace {

constexpr int kLines = 40;
constexpr int kWordsPerLine = 11;
const char *const kWords[] = {"the",    "library", "keeps",   "every",  "note",   "beside",
                              "its",    "book",    "and",     "finds",  "again",  "what",
                              "was",    "written", "about",   "travel", "plans",  "for",
                              "spring", "with",    "letters", "from",   "home",   "market",
                              "prices", "garden",  "tools",   "simple", "steady", "morning"};

QStringList drawnLines()
{
    QStringList lines;
    int next = 0;
    for (int line = 0; line < kLines; ++line) {
        QStringList words;
        for (int w = 0; w < kWordsPerLine; ++w, next += 7)
            words << QString::fromLatin1(kWords[next % std::size(kWords)]);
        lines << words.join(u' ');
    }
    return lines;
}

// A letter page of the lines in Helvetica, as a PDF.
QByteArray pageOf(const QStringList &lines)
{
    QByteArray stream = "BT /F1 11 Tf 14 TL 72 740 Td";
    for (const QString &line : lines)
        stream += " (" + line.toLatin1() + ") '";
    stream += " ET";
    const QList<QByteArray> objects{
        "<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Resources << /Font << /F1 5 0 R "
        ">> >> /Contents 4 0 R >>",
        "<< /Length " + QByteArray::number(stream.size()) + " >>\nstream\n" + stream +
            "\nendstream",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"};
    return tltest::pdfOfObjects(objects);
}

// The scan in a library of its own: the page rendered at 300 dpi, in grey.
QString scan()
{
    static QTemporaryDir library;
    static const QString path = [] {
        tl::store::setLibraryRootOverride(library.path());
        QFile pdf(library.path() + QStringLiteral("/page.pdf"));
        if (!pdf.open(QIODevice::WriteOnly) || pdf.write(pageOf(drawnLines())) < 0)
            return QString();
        pdf.close();
        const QString png = library.path() + QStringLiteral("/scan.png");
        tl::store::PdfPages(pdf.fileName())
            .pageImage(0, 300)
            .convertToFormat(QImage::Format_Grayscale8)
            .save(png);
        return png;
    }();
    return path;
}

// The share of drawn words found again, each counted as often as drawn.
double wordsFoundAgain(const QString &text)
{
    QHash<QString, int> found;
    for (const QString &word : text.simplified().split(u' ', Qt::SkipEmptyParts))
        ++found[word];
    int right = 0, drawn = 0;
    for (const QString &line : drawnLines())
        for (const QString &word : line.split(u' ')) {
            ++drawn;
            if (found.value(word) > 0) {
                --found[word];
                ++right;
            }
        }
    return 100.0 * right / drawn;
}

void BM_RecognizeScan(benchmark::State &state)
{
    const QString path = scan();
    QString text;
    for (auto _ : state) {
        tl::importers::RecognitionRun run;
        text = tl::importers::tl_recognizeText(path, run);
        benchmark::DoNotOptimize(text);
    }
    state.counters["words_found_%"] = wordsFoundAgain(text);
}

BENCHMARK(BM_RecognizeScan)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char **argv)
{
    const IsolatedHome home;
    return runBenchmarksWithRatios(
        argc, argv, {},
        {{"BM_RecognizeScan/iterations:3", "recognition of a one-page 300 dpi scan", 8000}});
}
