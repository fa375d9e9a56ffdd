#include "links/library_info.h"

#include "links/path_lock.h"
#include "store/library_folders.h"
#include "store/plist_file.h"

#include <QDir>

namespace tl::links {

namespace {
QString infoPath()
{
    return store::applicationSupportRootFolder() + QStringLiteral("/Info.plist");
}
} // namespace

QVariant libraryInfoValue(const QString &key)
{
    return store::readPlistDictionary(infoPath()).value(key);
}

void setLibraryInfoValue(const QString &key, const QVariant &value)
{
    const QString path = infoPath();
    const auto lock = lockPath(path);
    QDir().mkpath(store::applicationSupportRootFolder());
    QVariantMap info = store::readPlistDictionary(path);
    info.insert(key, value);
    store::writePlistFile(path, info, true);
}

} // namespace tl::links
