#include "platform/cloud.h"

#include <gtest/gtest.h>

namespace tl::platform {
namespace {

TEST(Cloud, AbsentUnlessATestSaysOtherwise)
{
    EXPECT_FALSE(hasCloudIdentity());
    EXPECT_TRUE(cloudContainerFolder().isEmpty());

    setCloudIdentityForTesting(true);
    setCloudContainerFolderForTesting("/cloud/container");
    EXPECT_TRUE(hasCloudIdentity());
    EXPECT_EQ(cloudContainerFolder(), "/cloud/container");

    setCloudIdentityForTesting(false);
    EXPECT_FALSE(hasCloudIdentity());

    setCloudIdentityForTesting(std::nullopt);
    setCloudContainerFolderForTesting(QString());
    EXPECT_FALSE(hasCloudIdentity());
    EXPECT_TRUE(cloudContainerFolder().isEmpty());
}

} // namespace
} // namespace tl::platform
