#include "store/library_root.h"

#include "platform/settings.h"
#include "store/keys.h"

#include <QDir>
#include <QFileInfo>
#include <mutex>

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
    const QString chosen =
        override.isEmpty() ? platform::settings().string(keys::setting::TavelleFolder) : override;
    // The root is asked for all the time, and resolving it asks the disk
    // about each folder on its path: a root that exists is resolved once.
    static std::mutex mutex;
    static QString lastChosen;
    static QString lastResolved;
    {
        const std::lock_guard lock(mutex);
        if (chosen == lastChosen)
            return lastResolved;
    }
    const QString resolved = resolvingSymlinks(chosen);
    // A root not made yet may resolve otherwise once it is.
    if (QFileInfo::exists(resolved)) {
        const std::lock_guard lock(mutex);
        lastChosen = chosen;
        lastResolved = resolved;
    }
    return resolved;
}

} // namespace tl::store
