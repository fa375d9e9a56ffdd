#include "importers/location.h"

#include <QPainter>
#include <QPainterPath>

namespace tl::importers {

namespace {

constexpr int kSide = 500;
// The camera 1500 metres up sees about as much across.
constexpr double kMetresAcross = 1500;
constexpr double kScaleMetres = 500;

// A stroke font for the few characters the picture writes, so it draws with
// no font installed: each glyph is polylines ("|" between them) on a grid
// four wide and six high.
struct Glyph
{
    char character;
    const char *strokes;
};
constexpr Glyph kGlyphs[] = {
    {'0', "0 0 4 0 4 6 0 6 0 0"},
    {'1', "1 1 2 0 2 6|1 6 3 6"},
    {'2', "0 0 4 0 4 3 0 3 0 6 4 6"},
    {'3', "0 0 4 0 4 6 0 6|0 3 4 3"},
    {'4', "0 0 0 3 4 3|4 0 4 6"},
    {'5', "4 0 0 0 0 3 4 3 4 6 0 6"},
    {'6', "4 0 0 0 0 6 4 6 4 3 0 3"},
    {'7', "0 0 4 0 4 6"},
    {'8', "0 0 4 0 4 6 0 6 0 0|0 3 4 3"},
    {'9', "4 3 0 3 0 0 4 0 4 6 0 6"},
    {'.', "2 5.7 2 6"},
    {'-', "0 3 4 3"},
    {'N', "0 6 0 0 4 6 4 0"},
    {'S', "4 1 3 0 1 0 0 1 0 2 1 3 3 3 4 4 4 5 3 6 1 6 0 5"},
    {'E', "4 0 0 0 0 6 4 6|0 3 3 3"},
    {'W', "0 0 1 6 2 3 3 6 4 0"},
    {'m', "0 6 0 3 4 3 4 6|2 3 2 6"},
    {'k', "0 0 0 6|4 2.5 0 4.5|1.5 3.8 4 6"},
};
// The degree sign is not Latin-1's single byte in this table's strings.
constexpr char kDegree[] = "1 0 2 0 2 1 1 1 1 0";

const char *strokesFor(QChar c)
{
    if (c == QChar(0x00B0))
        return kDegree;
    for (const Glyph &glyph : kGlyphs)
        if (c == QLatin1Char(glyph.character))
            return glyph.strokes;
    return "";
}

// Draws the text with its top left at the origin; each grid unit `unit` wide.
// Answers the width drawn.
double drawText(QPainter &painter, const QString &text, QPointF origin, double unit)
{
    const double advance = 6 * unit;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QStringList lines =
            QString::fromLatin1(strokesFor(text[i])).split(u'|', Qt::SkipEmptyParts);
        for (const QString &line : lines) {
            const QStringList numbers = line.split(u' ', Qt::SkipEmptyParts);
            QPainterPath path;
            for (qsizetype n = 0; n + 1 < numbers.size(); n += 2) {
                const QPointF point =
                    origin + QPointF(double(i) * advance + numbers[n].toDouble() * unit,
                                     numbers[n + 1].toDouble() * unit);
                n == 0 ? path.moveTo(point) : path.lineTo(point);
            }
            painter.drawPath(path);
        }
    }
    return double(text.size()) * advance - 2 * unit;
}

void drawGround(QPainter &painter)
{
    painter.fillRect(QRect(0, 0, kSide, kSide), QColor(0xEE, 0xEF, 0xE6));
    // Blocks between streets, every hundred metres.
    const double block = kSide * 100 / kMetresAcross;
    painter.setPen(QPen(Qt::white, 4));
    for (double at = std::fmod(kSide / 2.0, block); at < kSide; at += block) {
        painter.drawLine(QPointF(at, 0), QPointF(at, kSide));
        painter.drawLine(QPointF(0, at), QPointF(kSide, at));
    }
}

// The standard pin: a round head on a needle whose point is the place.
void drawPin(QPainter &painter, QPointF point)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 60));
    painter.drawEllipse(point, 7, 3);
    painter.setPen(QPen(QColor(0x55, 0x55, 0x55), 3, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(point, point - QPointF(0, 28));
    const QPointF head = point - QPointF(0, 34);
    painter.setPen(QPen(QColor(0xA0, 0x1C, 0x1C), 2));
    painter.setBrush(QColor(0xE5, 0x39, 0x35));
    painter.drawEllipse(head, 12, 12);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 170));
    painter.drawEllipse(head - QPointF(4, 4), 4, 4);
}

// Text on a light plate with its top left at the origin.
void drawLabel(QPainter &painter, const QString &text, QPointF origin, double unit)
{
    const double width = double(text.size()) * 6 * unit - 2 * unit;
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 225));
    painter.drawRoundedRect(QRectF(origin - QPointF(8, 8), QSizeF(width + 16, 6 * unit + 16)), 6,
                            6);
    painter.setPen(QPen(QColor(0x33, 0x33, 0x33), 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    drawText(painter, text, origin, unit);
}

void drawScale(QPainter &painter)
{
    const double length = kSide * kScaleMetres / kMetresAcross;
    const QPointF start(24, kSide - 28);
    drawLabel(painter, QStringLiteral("500 m"), start - QPointF(0, 26), 2.2);
    painter.setPen(QPen(QColor(0x33, 0x33, 0x33), 3, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(start, start + QPointF(length, 0));
    for (double tick : {0.0, length / 2, length})
        painter.drawLine(start + QPointF(tick, -6), start + QPointF(tick, 6));
}

} // namespace

QImage tl_drawLocationPicture(double latitude, double longitude)
{
    QImage picture(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath clip;
    clip.addRoundedRect(QRectF(0, 0, kSide, kSide), 14, 14);
    painter.setClipPath(clip);
    drawGround(painter);
    drawPin(painter, QPointF(kSide / 2.0, kSide / 2.0));
    drawLabel(painter, latitudeInDegrees(latitude) + u' ' + longitudeInDegrees(longitude),
              QPointF(24, 24), 2.4);
    drawScale(painter);
    return picture;
}

} // namespace tl::importers
