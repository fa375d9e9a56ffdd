// The importers' tests draw the pictures whose text they recognise, and
// drawing text takes a GUI application: on the offscreen platform, with the
// same isolated environment as every other test binary.
#include "support/test_environment.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    tltest::isolateEnvironment();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
