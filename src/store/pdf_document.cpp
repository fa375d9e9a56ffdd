#include "store/pdf_document.h"

#include <limits>
#include <poppler-qt6.h>

namespace tl::store {

namespace {

constexpr double kPointsPerInch = 72.0;
constexpr double kInchesPerMetre = 1 / 0.0254;
// The longest side of a rendered page, in pixels: a poster at a scanner's
// resolution would take gigabytes.
constexpr double kLongestRenderedSide = 12000;

std::unique_ptr<Poppler::Document> openDocument(const QString &path)
{
    std::unique_ptr<Poppler::Document> document = Poppler::Document::load(path);
    if (!document || document->isLocked())
        return nullptr;
    return document;
}

} // namespace

QString pdfText(const QString &path)
{
    return pdfPageTexts(path, std::numeric_limits<int>::max()).join(u'\n');
}

QStringList pdfPageTexts(const QString &path, int count)
{
    const std::unique_ptr<Poppler::Document> document = openDocument(path);
    if (!document)
        return {};
    QStringList pages;
    for (int i = 0; i < std::min(count, document->numPages()); ++i)
        if (const std::unique_ptr<Poppler::Page> page = document->page(i))
            pages << page->text(QRectF());
    return pages;
}

QImage pdfFirstPageImage(const QString &path, QSize bounds)
{
    const std::unique_ptr<Poppler::Document> document = openDocument(path);
    const std::unique_ptr<Poppler::Page> page = document ? document->page(0) : nullptr;
    if (!page)
        return {};
    const QSizeF size = page->pageSizeF();
    if (size.isEmpty())
        return {};
    const double scale = std::min(bounds.width() / size.width(), bounds.height() / size.height());
    return page->renderToImage(kPointsPerInch * scale, kPointsPerInch * scale);
}

PdfPages::PdfPages(const QString &path) : m_document(openDocument(path))
{
}

PdfPages::~PdfPages() = default;

int PdfPages::count() const
{
    return m_document ? m_document->numPages() : 0;
}

QImage PdfPages::pageImage(int index, double dotsPerInch) const
{
    const std::unique_ptr<Poppler::Page> page = m_document ? m_document->page(index) : nullptr;
    if (!page)
        return {};
    const QSizeF size = page->pageSizeF();
    const double longest = std::max(size.width(), size.height()) / kPointsPerInch;
    if (longest <= 0)
        return {};
    const double dpi = std::min(dotsPerInch, kLongestRenderedSide / longest);
    QImage image = page->renderToImage(dpi, dpi);
    image.setDotsPerMeterX(int(dpi * kInchesPerMetre + 0.5));
    image.setDotsPerMeterY(int(dpi * kInchesPerMetre + 0.5));
    return image;
}

} // namespace tl::store
