#include "EditorTestSupport.h"

#include "documents/EnvelopeServices.h"
#include "ui/WindowNoticePresenter.h"

#include <QAction>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

// A Dock profile whose payloads are sealed for a device the user holds the identity of.
class EncryptedWindowTest : public EditorFixture {
protected:
    TestCertificate device =
        TestPki::issue(QStringLiteral("Quorlin Window Device"), &intermediate, false, {}, KeyType::rsa);
    std::shared_ptr<EnvelopeServices> envelopes =
        std::make_shared<EnvelopeServices>(SigningServices(&passphraseDialog, path(QStringLiteral("data"))));

    QString sealedDockProfile() {
        plist::Dictionary root =
            *plist::PlistReader::read(readFile(testDataPath(QStringLiteral("ui/dock.mobileconfig"))))
                 ->root.dictionary();
        const auto content = plist::XmlWriter::write(root.value(QStringLiteral("PayloadContent")));
        root.remove(QStringLiteral("PayloadContent"));
        root.insert(QStringLiteral("EncryptedPayloadContent"),
                    plist::Value(*envelopes->encrypt(*content, {derOf(device)})));
        return writeFile(QStringLiteral("sealed.mobileconfig"), *plist::XmlWriter::write(plist::Value(root)));
    }

    static QByteArray derOf(const TestCertificate& certificate) {
        openssl::Bio out(BIO_new(BIO_s_mem()));
        i2d_X509_bio(out.get(), certificate.certificate.get());
        return openssl::memoryContents(out.get());
    }

    std::unique_ptr<DocumentWindow> openWindow(const QString& filePath) {
        auto environment = std::make_shared<ProfileEnvironment>(*ProfileEnvironment::makeSystem());
        environment->signingServices = std::make_shared<ProfileSigningBridge>(
            SigningServices(&passphraseDialog, path(QStringLiteral("data"))));
        environment->encryptionServices = envelopes;
        auto document = std::make_unique<ProfileDocument>(bundledDomains(), environment, defaults);
        EXPECT_TRUE(document->readFromFile(filePath));
        document->makeWindowControllers();
        return std::make_unique<DocumentWindow>(std::move(document), bundledDomains(), defaults, nullptr);
    }
};

TEST_F(EncryptedWindowTest, DecryptsOnTheNoticeAndChoosesRecipientsFromFiles) {
    ASSERT_TRUE(importIdentity(device));
    auto window = openWindow(sealedDockProfile());
    PFMSection* dock = sectionTitled(*window, QStringLiteral("Dock"));
    ASSERT_TRUE(dock);
    EXPECT_FALSE(dock->sectionViewController()) << "sealed payloads have no form";
    EXPECT_FALSE(window->encryptForAction()->isEnabled());

    window->show();
    auto* box = waitForWidget<QMessageBox>(WindowNoticePresenter::noticeObjectName);
    ASSERT_TRUE(box);
    EXPECT_EQ(box->text(), QStringLiteral("Encrypted Payloads"));
    EXPECT_TRUE(box->informativeText().contains(QStringLiteral("Quorlin Window Device")));
    QPushButton* decrypt = nullptr;
    for (QAbstractButton* button : box->buttons()) {
        if (button->text() == QStringLiteral("Decrypt…"))
            decrypt = qobject_cast<QPushButton*>(button);
    }
    ASSERT_TRUE(decrypt);
    answerWhenShown<QInputDialog>(PassphraseDialog::dialogObjectName, [&](QInputDialog& dialog) {
        dialog.setTextValue(storePassphrase);
        dialog.accept();
    });
    decrypt->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return dock->sectionViewController() != nullptr; }, 5000));
    EXPECT_EQ(window->document().profile()->encryptForCertificates(), QList<QByteArray>{derOf(device)});
    EXPECT_TRUE(window->doNotEncryptAction()->isEnabled());
    EXPECT_FALSE(window->isWindowModified()) << "decrypting is no edit";

    const QString other = writeFile(QStringLiteral("other.pem"), TestPki::pem(leaf.certificate.get()));
    answerWhenShown<QFileDialog>(DocumentWindow::recipientsDialogObjectName, [&](QFileDialog& dialog) {
        // Qt's own dialog lists its folder in the background; what it reports
        // on accepting is all the window sees.
        Q_EMIT dialog.filesSelected({other});
        dialog.close();
    });
    window->encryptForAction()->trigger();
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            return window->document().profile()->encryptForCertificates() == QList<QByteArray>{derOf(leaf)};
        },
        5000));
    EXPECT_TRUE(window->isWindowModified());
    window->doNotEncryptAction()->trigger();
    EXPECT_TRUE(window->document().profile()->encryptForCertificates().isEmpty());
    EXPECT_FALSE(window->doNotEncryptAction()->isEnabled());
}

} // namespace
} // namespace quorlin
