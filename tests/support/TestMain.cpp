#include "support/environment.h"

#include <QApplication>

#include <gtest/gtest.h>

/// All tests run on Qt's offscreen platform unless they ask for another one.
int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    pavonel::test::completeEnvironment();
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
