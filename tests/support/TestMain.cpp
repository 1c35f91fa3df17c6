#include <QCoreApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // Tests must never read or write the user's real settings or stores.
    QStandardPaths::setTestModeEnabled(true);
    // Nor the public network: an online repository made by a test, or by a
    // program a test starts, reads from a closed port unless the test serves.
    if (qEnvironmentVariableIsEmpty("QUORLIN_RAW_CONTENT_URL"))
        qputenv("QUORLIN_RAW_CONTENT_URL", "http://127.0.0.1:9/");
    QCoreApplication::setApplicationName(QStringLiteral("quorlin-profile-editor-tests"));
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
