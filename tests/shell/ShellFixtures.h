#pragma once

#include "IsolatedHome.h"
#include "RecordingAnalyticsSink.h"

#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "shell/AnalyticsIntegration.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace quorlin::test {

// A small file at `path`, its folders made as needed.
inline void createFile(const QString& path, const QByteArray& bytes = "<plist/>") {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
}

// A home of the test's own (and with it the stores), a defaults file in a
// fresh folder, and analytics that only record.
class ShellTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_home.isValid() && m_folder.isValid()); }

    IsolatedHome m_home;
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("config/defaults.plist"));
    UserDefaults m_defaults{m_path};
    std::shared_ptr<RecordingAnalyticsSink> m_sink = std::make_shared<RecordingAnalyticsSink>();
    AnalyticsIntegration m_analytics{m_sink};
};

} // namespace quorlin::test
