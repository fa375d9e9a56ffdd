#include "importers/text_recognition.h"

#include "platform/text_recognizer.h"
#include "store/extensions.h"
#include "store/keys.h"
#include "store/pdf_document.h"
#include "store/properties.h"

#include <QImageReader>

namespace tl::importers {

namespace {

// Pages are rendered as a scanner would give them: fine enough for the
// recogniser to tell letters apart at ordinary type sizes.
constexpr double kPageDotsPerInch = 300;

const QString kOCR = QString::fromLatin1(keys::property::OCR);

void show(RecognitionRun &run, const QString &text, double done)
{
    if (run.showStatus)
        run.showStatus(text, done);
}

// Each line behind two blanks and a line end, the whole trimmed.
QString appendingLines(QString text, const QStringList &lines)
{
    for (const QString &line : lines)
        text += QStringLiteral("  \n") + line;
    return text.trimmed();
}

// The picture's progress as the run's: `first` done before it, `share` of
// the whole for it.
platform::RecognitionControl controlFor(RecognitionRun &run, const QString &status, double first,
                                        double share)
{
    return {[&run, status, first, share](int percent) {
                show(run, status, first + share * percent / 100.0);
            },
            &run.cancelled};
}

} // namespace

bool tl_canRecognizeText(const QString &path)
{
    const QString extension = store::lowerCasedExtension(path);
    return store::imageExtensions().contains(extension) || extension == u"pdf";
}

QString tl_recognizeText(const QString &path, RecognitionRun &run)
{
    show(run, QString::fromUtf8(texts::RecognizingText), 0);
    const QString extension = store::lowerCasedExtension(path);
    if (store::imageExtensions().contains(extension))
        return tl_recognizeTextInImage(path, run);
    if (extension == u"pdf")
        return tl_recognizeTextInPDF(path, run);
    return {};
}

QString tl_recognizeTextInImage(const QString &path, RecognitionRun &run)
{
    QImageReader reader(path);
    // Photographs stand the way the camera held them.
    reader.setAutoTransform(true);
    const QStringList lines = platform::textRecognizer()->recognizeLines(
        reader.read(), controlFor(run, QString::fromUtf8(texts::RecognizingText), 0, 1));
    if (run.cancelled)
        return {};
    const QString text = appendingLines({}, lines);
    store::tl_setProperty(path, text, kOCR);
    return text;
}

QString tl_recognizeTextInPDF(const QString &path, RecognitionRun &run)
{
    store::tl_removePropertyForKey(path, kOCR);
    const store::PdfPages pages(path);
    const int count = pages.count();
    const std::shared_ptr<platform::TextRecognizer> recognizer = platform::textRecognizer();
    QString text;
    for (int page = 0; page < count; ++page) {
        const QString status =
            QString::asprintf(texts::RecognizingPage, page + 1, static_cast<unsigned long>(count));
        show(run, status, double(page) / count);
        const QStringList lines =
            recognizer->recognizeLines(pages.pageImage(page, kPageDotsPerInch),
                                       controlFor(run, status, double(page) / count, 1.0 / count));
        if (run.cancelled)
            return {};
        // The property grows page by page, so search finds the first pages
        // of a long file while the rest is still being read.
        if (!lines.isEmpty()) {
            text = appendingLines(text, lines);
            store::tl_setProperty(path, text, kOCR);
        }
    }
    return text;
}

} // namespace tl::importers
