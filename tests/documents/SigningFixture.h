#pragma once

#include "TestPki.h"

#include "documents/PassphraseProvider.h"
#include "documents/SigningServices.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace quorlin::test {

class RecordingPassphrases : public PassphraseProvider {
public:
    std::optional<QString> answer;
    QStringList askedFor;

    std::optional<QString> passphraseFor(const QString& identityName) override {
        askedFor.append(identityName);
        return answer;
    }
};

struct ProcessResult {
    int exitCode = -1;
    QByteArray output;
};

// A data folder of its own, and a PKI: root, intermediate, and leaves issued
// by the intermediate (a good one, an expired one, one with no common name).
class SigningFixture : public ::testing::Test {
protected:
    static inline const QString signerName = QStringLiteral("Quorlin Test Signer");
    static inline const QString p12Password = QStringLiteral("p12 secret");
    static inline const QString storePassphrase = QStringLiteral("store passphrase");

    QTemporaryDir folder;
    RecordingPassphrases passphrases;
    SigningServices services{&passphrases, folder.filePath(QStringLiteral("data"))};
    TestCertificate root = TestPki::issue(QStringLiteral("Quorlin Test Root"), nullptr, true);
    TestCertificate intermediate = TestPki::issue(QStringLiteral("Quorlin Test Intermediate"), &root, true);
    TestCertificate leaf = TestPki::issue(signerName, &intermediate, false);
    TestCertificate expiredLeaf =
        TestPki::issue(QStringLiteral("Expired Signer"), &intermediate, false, {-30, -1});
    TestCertificate namelessLeaf = TestPki::issue(std::nullopt, &intermediate, false);

    QString path(const QString& name) const { return folder.filePath(name); }

    QString writeFile(const QString& name, const QByteArray& contents) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
        return file.fileName();
    }

    static QByteArray der(X509* certificate) {
        openssl::Bio out(BIO_new(BIO_s_mem()));
        i2d_X509_bio(out.get(), certificate);
        return openssl::memoryContents(out.get());
    }

    QByteArray chainPem() const {
        return TestPki::pem(intermediate.certificate.get()) + TestPki::pem(root.certificate.get());
    }

    void trustRoot() const {
        QDir().mkpath(services.anchorsFolder());
        QFile anchor(QDir(services.anchorsFolder()).filePath(QStringLiteral("root.pem")));
        ASSERT_TRUE(anchor.open(QIODevice::WriteOnly));
        anchor.write(TestPki::pem(root.certificate.get()));
    }

    std::optional<SigningIdentity> importIdentity(const TestCertificate& identity) {
        const QString p12 = writeFile(
            QStringLiteral("identity.p12"),
            TestPki::pkcs12(identity, {intermediate.certificate.get(), root.certificate.get()}, p12Password));
        passphrases.answer = storePassphrase;
        return services.importPKCS12(p12, p12Password, storePassphrase);
    }

    static ProcessResult runOpenSsl(const QStringList& arguments) {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral("openssl"), arguments);
        if (!process.waitForFinished(60000))
            return {};
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAll()};
    }
};

} // namespace quorlin::test
