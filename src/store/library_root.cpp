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

namespace {
QString &rootOverride()
{
    static QString path;
    return path;
}
} // namespace

void setLibraryRootOverride(const QString &path)
{
    rootOverride() = path;
}

QString libraryRoot()
{
    const QString &override = rootOverride();
    return resolvingSymlinks(
        override.isEmpty() ? platform::settings().string(keys::setting::TavelleFolder) : override);
}

} // namespace tl::store
