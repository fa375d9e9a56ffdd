#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>

// What the store reads from PDF files.
namespace tl::store {

// The text of every page, in page order; empty for an unreadable file.
QString pdfText(const QString &path);
// The texts of the first pages, at most `count`; none for an unreadable file.
QStringList pdfPageTexts(const QString &path, int count);
// Page 1 rendered as large as fits the bounds, keeping its proportions; a
// null image for an unreadable file.
QImage pdfFirstPageImage(const QString &path, QSize bounds);

} // namespace tl::store
