#pragma once

#include "ToolProcess.h"

#include "documents/TestPki.h"

#include "plist/PlistReader.h"
#include "plist/Value.h"
#include "plist/XmlWriter.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

namespace quorlin::test {

// Imports an identity and its chain into the tool's store, its password
// "p12 secret" and its new passphrase "store passphrase" read from files.
inline ToolRun importIdentity(const ToolProcess& tool, const TestCertificate& identity,
                              const QList<X509*>& chain) {
    for (const auto& [name, bytes] :
         {std::pair{"password.txt", QByteArray("p12 secret\n")},
          std::pair{"passphrase.txt", QByteArray("store passphrase\n")},
          std::pair{"identity.p12", TestPki::pkcs12(identity, chain, "p12 secret")}}) {
        QFile file(tool.path(QString::fromLatin1(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }
    return tool.run({"identity", "import", "identity.p12", "--password-file", "password.txt",
                     "--passphrase-file", "passphrase.txt"});
}

// Runs the tool on profiles made at test time from the manifests of the
// command-line tests, in a folder of the test's own.
class ProfileToolTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_tool.isValid()); }

    static QString manifests() { return testDataPath(QStringLiteral("cli/manifests")); }

    // The tool with the test manifests in force.
    ToolRun run(QStringList arguments) const {
        arguments << QStringLiteral("--manifests") << manifests();
        return m_tool.run(arguments);
    }
    // `new` into a file of the working folder; the path.
    QString newProfile(const QString& name, const QStringList& domains) const {
        const ToolRun made = run(QStringList{QStringLiteral("new")} + domains + QStringList{"-o", name});
        EXPECT_EQ(made.exitCode, 0) << made.error.toStdString();
        return m_tool.path(name);
    }

    static plist::Dictionary readDictionary(const QString& path) {
        const auto read = plist::PlistReader::read(readFile(path));
        EXPECT_TRUE(read.hasValue()) << path.toStdString();
        if (!read || !read->root.dictionary())
            return {};
        return *read->root.dictionary();
    }
    static void writeDictionary(const QString& path, const plist::Dictionary& dictionary) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(*plist::XmlWriter::write(plist::Value(dictionary)));
    }
    void writeFile(const QString& name, const QByteArray& bytes) const {
        QFile file(m_tool.path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }

    static plist::Array payloads(const plist::Dictionary& profile) {
        const plist::Array* content = profile.array(QStringLiteral("PayloadContent"));
        return content ? *content : plist::Array{};
    }
    // Changes the configuration payload at `index` of a profile file.
    template <typename Change>
    static void editPayload(const QString& path, qsizetype index, Change change) {
        plist::Dictionary profile = readDictionary(path);
        plist::Array content = payloads(profile);
        ASSERT_LT(index, content.size());
        plist::Dictionary payload = *content[index].dictionary();
        change(payload);
        content[index] = plist::Value(payload);
        profile.insert(QStringLiteral("PayloadContent"), plist::Value(content));
        writeDictionary(path, profile);
    }

    ToolProcess m_tool;
};

} // namespace quorlin::test
