#pragma once

// The cloud identity and the cloud container. Linux has no such service, so
// both are absent unless a test sets them.

#include <QString>
#include <optional>

namespace tl::platform {

// Whether the user is signed in to the cloud service.
bool hasCloudIdentity();
// A value overrides the answer; nothing restores the platform's answer.
void setCloudIdentityForTesting(std::optional<bool> identity);

// The folder of the application's cloud container; empty when there is none.
QString cloudContainerFolder();
// A non-empty folder overrides the answer; an empty one restores it.
void setCloudContainerFolderForTesting(const QString &folder);

} // namespace tl::platform
