#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>
#include <memory>

namespace Poppler {
class Document;
}

// What the store reads from PDF files.
namespace tl::store {

// The text of every page, in page order; empty for an unreadable file.
QString pdfText(const QString &path);
// The texts of the first pages, at most `count`; none for an unreadable file.
QStringList pdfPageTexts(const QString &path, int count);
// Page 1 rendered as large as fits the bounds, keeping its proportions; a
// null image for an unreadable file.
QImage pdfFirstPageImage(const QString &path, QSize bounds);

// A PDF file opened once, to be read page after page on one thread.
class PdfPages
{
public:
    explicit PdfPages(const QString &path);
    ~PdfPages();
    PdfPages(const PdfPages &) = delete;
    PdfPages &operator=(const PdfPages &) = delete;

    // 0 for an unreadable or locked file.
    int count() const;
    // The page (from 0) at the resolution, which is lowered for a page too
    // large to hold in memory; its resolution is set on the image. A null
    // image for a page that can't be rendered.
    QImage pageImage(int index, double dotsPerInch) const;

private:
    std::unique_ptr<Poppler::Document> m_document;
};

} // namespace tl::store
