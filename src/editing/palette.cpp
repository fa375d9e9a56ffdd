#include "palette.h"

#include <cmath>

namespace tl::editing {

namespace {

constexpr Rgba HeadingColor{0.1487279843444227, 0.5450980392156862, 0.8235294117647058};
constexpr Rgba LabelColor{0.4227005870841487, 0.44313725490196076, 0.7686274509803922};
constexpr Rgba AttributeColor{0.8258317025440313, 0.21176470588235294, 0.5098039215686274};
constexpr Rgba CodeColor{0.7084148727984344, 0.5372549019607843, 0.0};
constexpr Rgba ListPrefixColor{0.5205479452054794, 0.6, 0.0};
constexpr Rgba HtmlRedColor{0.8610567514677103, 0.19607843137254902, 0.1843137254901961};
constexpr Rgba SolarizedFaded{0.5764, 0.6313, 0.6313};
constexpr Rgba SolarizedDarkFaded{0.345, 0.4314, 0.4588};
// Critic markup: a red, green, orange, blue and purple that read on light and dark.
constexpr Rgba CriticRed{0.86, 0.2, 0.18};
constexpr Rgba CriticGreen{0.2, 0.62, 0.25};
constexpr Rgba CriticOrange{0.9, 0.5, 0.1};
constexpr Rgba CriticBlue{0.2, 0.45, 0.9};
constexpr Rgba CriticPurple{0.6, 0.3, 0.75};

struct Lab
{
    double l, a, b;
};

Lab toLab(const Rgba &c)
{
    const auto linear = [](double v) {
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    const double r = linear(c.red), g = linear(c.green), b = linear(c.blue);
    const double x = (0.4124 * r + 0.3576 * g + 0.1805 * b) / 0.95047;
    const double y = 0.2126 * r + 0.7152 * g + 0.0722 * b;
    const double z = (0.0193 * r + 0.1192 * g + 0.9505 * b) / 1.08883;
    const auto f = [](double t) {
        return t > 216.0 / 24389 ? std::cbrt(t) : (24389.0 / 27 * t + 16) / 116;
    };
    return {116 * f(y) - 16, 500 * (f(x) - f(y)), 200 * (f(y) - f(z))};
}

} // namespace

double cie76Difference(const Rgba &a, const Rgba &b)
{
    const Lab p = toLab(a), q = toLab(b);
    return std::sqrt((p.l - q.l) * (p.l - q.l) + (p.a - q.a) * (p.a - q.a) +
                     (p.b - q.b) * (p.b - q.b));
}

Palette::Palette(const PaletteOptions &options)
{
    const Rgba base = options.base;
    Rgba faded{base.red, base.green, base.blue, 0.5};
    if (options.solarized)
        faded = options.dark ? SolarizedDarkFaded : SolarizedFaded;
    const bool colors = options.highlightMarkdown && !options.monochrome;
    const auto named = [&](const Rgba &color) { return colors ? color : base; };
    m_colors[int(ColorRole::Base)] = base;
    m_colors[int(ColorRole::Faded)] = faded;
    m_colors[int(ColorRole::Heading)] = named(HeadingColor);
    m_colors[int(ColorRole::Label)] = named(LabelColor);
    m_colors[int(ColorRole::Link)] = named(HeadingColor);
    m_colors[int(ColorRole::Attribute)] = named(AttributeColor);
    m_colors[int(ColorRole::Code)] = named(CodeColor);
    m_colors[int(ColorRole::ListPrefix)] = named(ListPrefixColor);
    m_colors[int(ColorRole::HtmlTag)] = options.html ? faded : base;
    if (options.printing)
        for (ColorRole role :
             {ColorRole::ListPrefix, ColorRole::Link, ColorRole::Attribute, ColorRole::HtmlTag})
            m_colors[int(role)] = faded;
    // Fixed colours of HTML and critic markup.
    m_colors[int(ColorRole::HtmlRed)] = HtmlRedColor;
    m_colors[int(ColorRole::HtmlBlue)] = HeadingColor;
    m_colors[int(ColorRole::HtmlYellow)] = CodeColor;
    m_colors[int(ColorRole::CriticDeletion)] = CriticRed;
    m_colors[int(ColorRole::CriticAddition)] = CriticGreen;
    m_colors[int(ColorRole::CriticSubstitution)] = CriticOrange;
    m_colors[int(ColorRole::CriticComment)] = CriticBlue;
    m_colors[int(ColorRole::CriticHighlight)] = CriticPurple;
    const Rgba heading = color(ColorRole::Heading);
    m_insertionPoint = cie76Difference(options.background, heading) < 0.5 ? base : heading;
}

} // namespace tl::editing
