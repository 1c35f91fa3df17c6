#include "TestSupport.h"

#include <QApplication>

#include <gtest/gtest.h>

// The widget suites drive real windows; the offscreen platform needs no display.
int main(int argc, char** argv) {
    quorlin::test::prepareTestEnvironment();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
