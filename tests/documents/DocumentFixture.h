#pragma once

#include "SigningFixture.h"

#include "documents/DocumentEventReporter.h"
#include "documents/DocumentNoticePresenter.h"
#include "documents/ProfileDocument.h"
#include "documents/ProfileSigningBridge.h"
#include "documents/SavePanelPresenter.h"
#include "model/ModelTestSupport.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "plist/XmlWriter.h"

#include <QFileInfo>

namespace quorlin::test {

// Stands for the document's window: remembers what went up, and answers later.
class RecordingNoticePresenter : public DocumentNoticePresenter {
public:
    struct Shown {
        DocumentNotice notice;
        ReplyHandler reply;
    };

    void present(const DocumentNotice& notice, ReplyHandler reply) override {
        shown.append({notice, std::move(reply)});
    }
    void presentError(const DocumentError& error) override { errors.append(error); }

    QList<DocumentNotice::Kind> kinds() const {
        QList<DocumentNotice::Kind> result;
        for (const Shown& each : shown)
            result.append(each.notice.kind);
        return result;
    }

    QList<Shown> shown;
    QList<DocumentError> errors;
};

// Stands for the save panel: records what it was shown, answers as told.
class ScriptedSavePanel : public SavePanelPresenter {
public:
    std::optional<SavePanelChoice> chooseSavePlace(const SavePanelRequest& request) override {
        requests.append(request);
        return answer;
    }

    std::optional<SavePanelChoice> answer;
    QList<SavePanelRequest> requests;
};

class RecordingEventReporter : public DocumentEventReporter {
public:
    void report(const QStringList& domains, const QString& eventName) override {
        events.append(eventName + QStringLiteral(": ") + domains.join(QLatin1Char(' ')));
    }
    QStringList events;
};

// Documents over the model's fixture domains, with the identity store and
// the user defaults of a temporary folder.
class DocumentFixture : public SigningFixture {
protected:
    DocumentFixture() {
        environment->signingServices = std::make_shared<ProfileSigningBridge>(
            SigningServices(&passphrases, folder.filePath(QStringLiteral("data"))));
        defaults.registerDefaults({{DefaultsKey::preferencesDefaultsAutomaticallyUpdate, true}});
    }

    std::unique_ptr<ProfileDocument> makeDocument() {
        auto document = std::make_unique<ProfileDocument>(fixtureDomains(), environment, defaults);
        document->setNoticePresenter(&notices);
        document->setSavePanelPresenter(&panel);
        document->setEventReporter(&events);
        return document;
    }

    // A document read from the bytes as if from the file `name`.
    std::unique_ptr<ProfileDocument>
    openDocument(const QByteArray& bytes, const QString& name = QStringLiteral("opened.mobileconfig")) {
        auto document = makeDocument();
        const auto read = document->readFromFile(writeFile(name, bytes));
        EXPECT_TRUE(read) << (read ? "" : read.error().words.toStdString());
        return document;
    }

    static plist::Dictionary payload(const QString& type, const QString& uuid, const QString& identifier) {
        return {{QStringLiteral("PayloadType"), type},
                {QStringLiteral("PayloadUUID"), uuid},
                {QStringLiteral("PayloadIdentifier"), identifier},
                {QStringLiteral("PayloadVersion"), 1}};
    }

    static plist::Dictionary profileTree(const plist::Array& content,
                                         const QString& type = QStringLiteral("Configuration")) {
        return {{QStringLiteral("PayloadType"), type},
                {QStringLiteral("PayloadUUID"), QStringLiteral("11111111-2222-4333-8444-555555555555")},
                {QStringLiteral("PayloadIdentifier"), QStringLiteral("org.example.root")},
                {QStringLiteral("PayloadVersion"), 1},
                {QStringLiteral("PayloadDisplayName"), QStringLiteral("Document Test")},
                {QStringLiteral("PayloadContent"), content}};
    }

    static QByteArray xml(const plist::Dictionary& root) {
        return *plist::XmlWriter::write(plist::Value(root));
    }

    static QByteArray simpleProfile() {
        return xml(profileTree({payload(QStringLiteral("com.example.everything"),
                                        QStringLiteral("AAAAAAAA-BBBB-4CCC-8DDD-EEEEEEEEEEEE"),
                                        QStringLiteral("org.example.everything.one"))}));
    }

    // Signed by the good leaf, whose identity then leaves the store unless kept.
    QByteArray signedBytes(const QByteArray& content, bool keepIdentity) {
        const auto identity = importIdentity(leaf);
        EXPECT_TRUE(identity);
        const auto signedContent = services.encodeSignedMessage(content, *identity);
        EXPECT_TRUE(signedContent);
        if (!keepIdentity)
            QDir(services.identitiesFolder()).removeRecursively();
        return signedContent.value_or(QByteArray());
    }

    static plist::Dictionary readPlain(const QByteArray& bytes) {
        const auto read = plist::PlistReader::read(bytes);
        return read && read->root.dictionary() ? *read->root.dictionary() : plist::Dictionary();
    }

    std::shared_ptr<ProfileEnvironment> environment = makeTestEnvironment();
    UserDefaults defaults{folder.filePath(QStringLiteral("defaults.plist"))};
    RecordingNoticePresenter notices;
    ScriptedSavePanel panel;
    RecordingEventReporter events;
};

} // namespace quorlin::test
