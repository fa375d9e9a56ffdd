#pragma once

// Pictures and PDF pages of text drawn by the tests, for the recogniser to
// read back. Needs a GUI application.

#include <QFont>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QStringList>

namespace tltest {

// Black lines on white, 48 pixels high each, as a 300 dpi scan of 12 point
// type would have them.
inline QImage drawnText(const QStringList &lines, QSize size = {1400, 600})
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setPen(Qt::black);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(48);
    painter.setFont(font);
    for (qsizetype i = 0; i < lines.size(); ++i)
        painter.drawText(QPoint(80, 140 + int(i) * 90), lines[i]);
    return image;
}

// A PDF of A4 pages with the lines drawn on them; recognition reads the
// rendered pages, whatever text the file carries besides.
inline bool drawnPDF(const QString &path, const QList<QStringList> &pages)
{
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setResolution(300);
    QPainter painter(&writer);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(60);
    painter.setFont(font);
    for (qsizetype p = 0; p < pages.size(); ++p) {
        if (p > 0)
            writer.newPage();
        for (qsizetype i = 0; i < pages[p].size(); ++i)
            painter.drawText(QPoint(200, 300 + int(i) * 110), pages[p][i]);
    }
    return painter.end();
}

} // namespace tltest
