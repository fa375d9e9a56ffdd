#pragma once

#include <QString>
#include <atomic>
#include <functional>

// Text brought out of images and PDF files: kept as the file's "OCR"
// property, which search reads, and made a document that links to its
// source. Recognition is slow: it runs on a worker, and only the saving
// belongs on the main thread.
namespace tl::importers {

namespace texts {
inline constexpr char RecognizingText[] = "Recognizing text...";
// The one-based page number and the page count.
inline constexpr char RecognizingPage[] = "Recognizing page %d of %lu";
} // namespace texts

// One run of recognition as its caller sees it.
struct RecognitionRun
{
    // showStatusWithText:andProgress:, from the worker: the status text and
    // the part done, 0 to 1.
    std::function<void(const QString &text, double done)> showStatus;
    // Raised from any thread to stop the run soon; a stopped run answers no
    // text and makes no document.
    std::atomic<bool> cancelled{false};
};

// Whether the file is an image or a PDF, the kinds text is recognised in.
bool tl_canRecognizeText(const QString &path);

// Recognises the text of an image or PDF on the calling thread and keeps it
// as the file's "OCR" property: the lines, each behind two blanks and a line
// end, trimmed. Answers that text; empty for another kind, a file without
// text, a failure or a stopped run.
QString tl_recognizeText(const QString &path, RecognitionRun &run);
QString tl_recognizeTextInImage(const QString &path, RecognitionRun &run);
// The property is removed first and grows page by page.
QString tl_recognizeTextInPDF(const QString &path, RecognitionRun &run);

// The new document for recognised text, beside its source (a picture in an
// attachment folder gives a document in the book), in the default document
// type, titled by the first line, showing or naming the source; the source
// learns the backlink. Answers the document's path; empty for an empty text
// or a failed write.
QString tl_saveRecognizedText(const QString &source, const QString &text);

} // namespace tl::importers
