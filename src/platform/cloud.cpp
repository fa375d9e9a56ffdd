#include "platform/cloud.h"

#include <mutex>

namespace tl::platform {

namespace {

struct CloudOverrides
{
    std::mutex mutex;
    std::optional<bool> identity;
    QString containerFolder;
};

CloudOverrides &overrides()
{
    static CloudOverrides instance;
    return instance;
}

} // namespace

bool hasCloudIdentity()
{
    std::lock_guard lock(overrides().mutex);
    // No cloud service on this platform.
    return overrides().identity.value_or(false);
}

void setCloudIdentityForTesting(std::optional<bool> identity)
{
    std::lock_guard lock(overrides().mutex);
    overrides().identity = identity;
}

QString cloudContainerFolder()
{
    std::lock_guard lock(overrides().mutex);
    return overrides().containerFolder;
}

void setCloudContainerFolderForTesting(const QString &folder)
{
    std::lock_guard lock(overrides().mutex);
    overrides().containerFolder = folder;
}

} // namespace tl::platform
