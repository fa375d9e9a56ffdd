#include "store/colors.h"

#include "foundation/path_string.h"
#include "platform/settings.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/properties.h"

namespace tl::store {

namespace P = keys::property;
namespace S = keys::setting;

namespace {
const RGBA kBlack{0, 0, 0, 1};
const RGBA kWhite{1, 1, 1, 1};

QString imageName(const QString &image)
{
    return image.contains(QLatin1String(names::TLResources)) ? image : path::lastComponent(image);
}
} // namespace

std::optional<RGBA> colorFromString(const QString &text)
{
    const QStringList parts = text.simplified().split(u' ');
    if (parts.size() != 4)
        return std::nullopt;
    double values[4];
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        values[i] = parts[i].toDouble(&ok);
        if (!ok)
            return std::nullopt;
    }
    return RGBA{values[0], values[1], values[2], values[3]};
}

QString stringFromColor(const RGBA &c)
{
    return QString::asprintf("%.4f %.4f %.4f %.4f", c.red, c.green, c.blue, c.alpha);
}

DocumentColors tl_colorsAtPath(const QString &itemPath)
{
    DocumentColors colors{kBlack, {}, kWhite, kBlack, kWhite};
    const QString root = libraryRoot();
    if (root.isEmpty() || !itemPath.startsWith(root))
        return colors;
    platform::Settings &settings = platform::settings();

    QString text = tl_inheritedPropertyForKey(itemPath, P::TextColor).toString();
    if (text.isEmpty())
        text = settings.string(S::TextColor);
    colors.text = colorFromString(text).value_or(kBlack);

    // Colour and image are looked up as a pair, level by level.
    QString background;
    QString image;
    QString current = itemPath;
    while (true) {
        background = tl_propertyForKey(current, P::BackgroundColor).toString();
        image = tl_propertyForKey(current, P::BackgroundImage).toString();
        if (!background.isEmpty() || !image.isEmpty() || current.size() < 2 ||
            current.toLower() == root.toLower())
            break;
        current = path::deletingLastComponent(current);
    }
    if (background.isEmpty() && image.isEmpty()) {
        background = settings.string(S::BackgroundColor);
        image = settings.string(S::BackgroundImage);
    }
    colors.backgroundImage = image.isEmpty() ? QString() : imageName(image);
    colors.background = colorFromString(background).value_or(kWhite);
    colors.plainText = colors.text;
    colors.plainBackground = colors.background;

    if (settings.boolValue(S::UseSolarizedTheme)) {
        const bool dark = settings.boolValue(S::DarkTheme);
        colors.text = dark ? RGBA{0.5137, 0.5803, 0.5882, 1} : RGBA{0.396, 0.4824, 0.5137, 1};
        colors.background = dark ? RGBA{0.0, 0.1686, 0.2118, 1} : RGBA{0.9921, 0.9647, 0.8901, 1};
    }
    return colors;
}

} // namespace tl::store
