#include "store/library_folders.h"

#include "foundation/digest.h"
#include "platform/folders.h"
#include "store/library_root.h"

namespace tl::store {

QString applicationSupportRootFolder()
{
    return platform::applicationSupportFolder() + u'/' + rootKey(libraryRoot());
}

QString cachesRootFolder()
{
    return platform::cachesFolder() + u'/' + rootKey(libraryRoot());
}

QString appStatePath()
{
    return applicationSupportRootFolder() + QStringLiteral("/AppState.txt");
}

} // namespace tl::store
