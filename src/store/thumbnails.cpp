#include "store/thumbnails.h"

#include "platform/file_ops.h"
#include "store/extensions.h"
#include "store/pdf_document.h"
#include "store/properties.h"

#include <QBuffer>
#include <QPainter>

namespace tl::store {

namespace {

constexpr int kImageThumbnailPoints = 32;
constexpr int kPdfThumbnailPixels = 512;
constexpr int kBorderFraction = 24;
constexpr double kBorderAlpha = 0.4;

bool isFresh(const QString &thumbnail, const QString &path)
{
    const std::optional<QDateTime> made = platform::modificationDate(thumbnail);
    const std::optional<QDateTime> changed = platform::modificationDate(path);
    return made && changed && *made > *changed;
}

QImage renderThumbnail(const QString &path, int displayScale)
{
    const QString extension = lowerCasedExtension(path);
    if (extension == u"pdf")
        return tl_imageWithBorder(
            pdfFirstPageImage(path, QSize(kPdfThumbnailPixels, kPdfThumbnailPixels)));
    if (!imageExtensions().contains(extension))
        return {};
    const QImage image(path);
    if (image.isNull())
        return {};
    const int side = kImageThumbnailPoints * displayScale;
    return image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace

QString tl_thumbnailPath(const QString &path, int displayScale)
{
    const QString suffix = displayScale >= 2 && displayScale <= 3
                               ? QStringLiteral("@%1x").arg(displayScale)
                               : QString();
    return tl_sideCarPath(path) + suffix + QStringLiteral(".png");
}

std::optional<QString> tl_thumbnailForPath(const QString &path, int displayScale)
{
    const QString thumbnail = tl_thumbnailPath(path, displayScale);
    if (isFresh(thumbnail, path))
        return thumbnail;
    const QImage image = renderThumbnail(path, displayScale);
    if (image.isNull())
        return std::nullopt;
    QByteArray png;
    QBuffer buffer(&png);
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG") ||
        !platform::writeFileAtomically(thumbnail, png))
        return std::nullopt;
    return thumbnail;
}

QImage tl_imageWithBorder(const QImage &page)
{
    if (page.isNull())
        return {};
    const int border = std::min(page.width(), page.height()) / kBorderFraction;
    QImage framed(page.size(), QImage::Format_ARGB32_Premultiplied);
    framed.fill(Qt::transparent);
    QPainter painter(&framed);
    painter.fillRect(framed.rect(), QColor::fromRgbF(0.5f, 0.5f, 0.5f, float(kBorderAlpha)));
    const QRect inner = framed.rect().adjusted(border, border, -border, -border);
    painter.fillRect(inner, Qt::white);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(inner, page);
    painter.end();
    return framed;
}

} // namespace tl::store
