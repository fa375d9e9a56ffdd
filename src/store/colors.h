#pragma once

#include <QString>
#include <optional>

// The colours a document is shown in, inherited from its books.
namespace tl::store {

struct RGBA
{
    double red = 0, green = 0, blue = 0, alpha = 1;
    bool operator==(const RGBA &) const = default;
};

// Parses "%.4f %.4f %.4f %.4f" (red, green, blue, alpha).
std::optional<RGBA> colorFromString(const QString &text);
QString stringFromColor(const RGBA &color);

// Text colour, background image name, background colour, and the same text
// and background colours before any theme was applied.
struct DocumentColors
{
    RGBA text;
    QString backgroundImage;
    RGBA background;
    RGBA plainText;
    RGBA plainBackground;
};

DocumentColors tl_colorsAtPath(const QString &path);

} // namespace tl::store
