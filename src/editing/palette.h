#pragma once

#include <QtGlobal>

// The named colours of the plain-text editor, by the theme and settings.
namespace tl::editing {

struct Rgba
{
    double red = 0, green = 0, blue = 0, alpha = 1;
    bool operator==(const Rgba &) const = default;
};

enum class ColorRole : quint8 {
    Base,
    Faded,
    Heading,
    Label,
    Link,
    Attribute,
    Code,
    ListPrefix,
    HtmlTag,
    HtmlRed,    // image tags in HTML documents
    HtmlBlue,   // their sources and targets
    HtmlYellow, // anchor tags
    CriticDeletion,
    CriticAddition,
    CriticSubstitution,
    CriticComment,
    CriticHighlight,
};
inline constexpr int ColorRoleCount = int(ColorRole::CriticHighlight) + 1;

struct PaletteOptions
{
    Rgba base;                     // the document's text colour
    Rgba background{1, 1, 1, 1};   // for the insertion point's contrast
    bool highlightMarkdown = true; // Markdown colouring for this document
    bool monochrome = false;       // HighlightMarkdownMonochrome
    bool solarized = false;        // useSolarizedTheme
    bool dark = false;             // darkTheme
    bool printing = false;         // usePrintCompatibleColors
    bool html = false;             // an "html" document
};

class Palette
{
public:
    explicit Palette(const PaletteOptions &options);
    Rgba color(ColorRole role) const { return m_colors[int(role)]; }
    Rgba insertionPoint() const { return m_insertionPoint; }

private:
    Rgba m_colors[ColorRoleCount];
    Rgba m_insertionPoint;
};

// The CIE76 difference of two colours, in Lab units.
double cie76Difference(const Rgba &a, const Rgba &b);

} // namespace tl::editing
