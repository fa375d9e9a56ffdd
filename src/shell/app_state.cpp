#include "shell/app_state.h"

#include "store/library_folders.h"
#include "store/plist_file.h"

namespace tl::shell {

QVariantMap readAppState()
{
    return store::readPlistDictionary(store::appStatePath());
}

bool writeAppState(const QVariantMap &state)
{
    return store::writePlistFile(store::appStatePath(), state, true);
}

} // namespace tl::shell
