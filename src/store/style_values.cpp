#include "store/style_values.h"

#include "platform/settings.h"
#include "store/keys.h"
#include "store/properties.h"

namespace tl::store {

namespace {
constexpr int kDefaultFontSize = 14;
}

int tl_fontSizeAtPath(const QString &path)
{
    const int inherited =
        tl_inheritedPropertyForKey(path, QLatin1String(keys::property::NoteFontSize)).toInt();
    if (inherited != 0)
        return inherited;
    const qint64 setting = platform::settings().integer(keys::setting::NoteFontSize);
    return setting != 0 ? int(setting) : kDefaultFontSize;
}

} // namespace tl::store
