#include "platform/cloud.h"

#include <gtest/gtest.h>

namespace tl::platform {
namespace {

// Linux has no cloud account of the system's own; the overrides that the
// store's tests set are checked where they change behaviour.
TEST(Cloud, AbsentOnThisSystem)
{
    EXPECT_FALSE(hasCloudIdentity());
    EXPECT_TRUE(cloudContainerFolder().isEmpty());
}

} // namespace
} // namespace tl::platform
