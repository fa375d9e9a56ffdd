#include "store/library_root.h"

#include "platform/settings.h"
#include "store/keys.h"

#include <QDir>
#include <QFileInfo>

namespace tl::store {

QString resolvingSymlinks(const QString &path)
{
    if (path.isEmpty())
        return {};
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(path) : canonical;
}

QString libraryRoot()
{
    return resolvingSymlinks(platform::settings().string(keys::setting::TavelleFolder));
}

} // namespace tl::store
