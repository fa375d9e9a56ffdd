// Every test binary runs with HOME, the XDG folders and TMPDIR inside one
// temporary directory, a pinned en_US locale and a QCoreApplication so that
// queued deliveries to the main thread work.
#include "support/test_environment.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    tltest::isolateEnvironment();
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
