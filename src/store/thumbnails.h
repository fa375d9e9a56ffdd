#pragma once

#include <QImage>
#include <QString>
#include <optional>

// Thumbnails of images and PDF files, cached as PNG files below the
// library's caches folder.
namespace tl::store {

// The item's thumbnail path plus "@2x" or "@3x" for the display scale, and
// ".png".
QString tl_thumbnailPath(const QString &path, int displayScale);

// The thumbnail of an image (32 by 32 points) or of a PDF's first page
// (512 by 512, with a border), made when missing or older than the file.
// Nothing for other kinds and unreadable files.
std::optional<QString> tl_thumbnailForPath(const QString &path, int displayScale = 1);

// The page on a grey frame of a 24th of its shorter side around white.
QImage tl_imageWithBorder(const QImage &page);

} // namespace tl::store
