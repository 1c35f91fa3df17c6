#include "WorkspaceTestSupport.h"
#include "fields/DataInstrumentController.h"
#include "workspace/EditHistory.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/SectionArrayController.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

namespace quorlin {
namespace {

using namespace test;

const QString everythingType = QStringLiteral("com.example.everything");
const QString certificateType = QStringLiteral("com.example.cert");

// A document opened from a file that holds payloads no domain knows, with
// its side-bar list and its history, as a window has them.
class UndoableEditsTest : public testing::Test {
protected:
    void SetUp() override {
        m_domains = fixtureDomains();
        m_domains.append(workspaceDomain(QStringLiteral("certificate")));
        const auto parsed = Profile::parseProfile(
            readFile(testDataPath(QStringLiteral("model/profiles/unknown-payloads-first.mobileconfig"))),
            m_domains, makeTestEnvironment());
        ASSERT_TRUE(parsed);
        m_profile = *parsed;
        ASSERT_EQ(m_profile->unfamiliarPayloads().size(), 2);
        m_collection = std::make_unique<PFMSectionCollection>(m_domains);
        m_sections.setContent(m_collection->sectionPointers());
        m_sections.addUnfamiliarSections(*m_profile);
        for (PFMSection* section : m_sections.content()) {
            section->setKeyValueWriter(m_history.keyValueWriter());
            section->bind(m_profile);
        }
        m_everything = sectionOf(everythingType);
        m_certificates = sectionOf(certificateType);
        ASSERT_TRUE(m_everything && m_certificates);
        ASSERT_TRUE(m_everything->sectionViewController());
    }

    PFMSection* sectionOf(const QString& type) const {
        for (PFMSection* section : m_sections.content()) {
            if (section->domains().contains(type))
                return section;
        }
        return nullptr;
    }
    QList<PFMSection*> unfamiliarSections() const {
        QList<PFMSection*> found;
        for (PFMSection* section : m_sections.content()) {
            if (section->sectionKind() == PFMSection::Kinds::unfamiliar)
                found.append(section);
        }
        return found;
    }
    QByteArray bytes() const { return profileBytes(*m_profile); }

    QString certificateFile(int number) {
        const QString path = m_folder.filePath(QStringLiteral("certificate-%1.cer").arg(number));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray("certificate ") + QByteArray::number(number));
        return path;
    }
    QString blobFile(int number) {
        const QString path = m_folder.filePath(QStringLiteral("blob-%1.bin").arg(number));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(64, char('a' + number % 26)));
        return path;
    }

    // The "Blob" data field of the section's first form.
    DataInstrumentController* blobInstrument() const {
        const auto* form = m_everything->sectionViewController();
        if (!form || form->payloadControllers().empty())
            return nullptr;
        for (const FormField& field : form->payloadControllers().front()->fieldViewControllers()) {
            if (field.key && field.key->name() == QStringLiteral("Blob") &&
                !field.controller->instruments().isEmpty())
                return dynamic_cast<DataInstrumentController*>(field.controller->instruments().first().get());
        }
        return nullptr;
    }
    PreferenceKey::Pointer everythingKey(const QString& path) const {
        return m_everything->sectionViewController()->payloadControllers().front()->payload()->keyAtPath(
            path);
    }

    QTemporaryDir m_folder;
    Profile::DomainList m_domains;
    Profile::Pointer m_profile;
    std::unique_ptr<PFMSectionCollection> m_collection;
    SectionArrayController m_sections;
    EditHistory m_history;
    PFMSection* m_everything = nullptr;
    PFMSection* m_certificates = nullptr;
};

TEST_F(UndoableEditsTest, RemovingAnUnfamiliarSectionIsOneStepThatUndoGivesBackInPlace) {
    const QByteArray before = bytes();
    const auto payloadsBefore = m_profile->unfamiliarPayloads();
    PFMSection* unfamiliar = unfamiliarSections().first();
    const QString type = unfamiliar->domains().firstKey();

    m_history.removeUnfamiliarPayloads(m_sections, *unfamiliar, m_profile);
    EXPECT_EQ(m_history.undoStack().count(), 1);
    EXPECT_FALSE(m_sections.content().contains(unfamiliar));
    for (const plist::Dictionary& payload : m_profile->unfamiliarPayloads())
        EXPECT_NE(payload.string(QStringLiteral("PayloadType")), type);
    EXPECT_EQ(m_profile->unfamiliarPayloads().size(), payloadsBefore.size() - 1);

    m_history.undoStack().undo();
    EXPECT_EQ(m_profile->unfamiliarPayloads(), payloadsBefore);
    EXPECT_TRUE(m_sections.content().contains(unfamiliar));
    EXPECT_EQ(bytes(), before);
    m_history.undoStack().redo();
    EXPECT_FALSE(m_sections.content().contains(unfamiliar));
}

TEST_F(UndoableEditsTest, AddingFromAFileKeepsThePayloadThroughUndoAndRedo) {
    const QByteArray before = bytes();
    EXPECT_EQ(m_history.addPayload(*m_certificates, m_profile, certificateFile(1)),
              PFMSection::AddPayloadResult::added);
    ASSERT_EQ(m_certificates->payloadsConfigured(), 1);
    const QByteArray added = bytes();
    EXPECT_TRUE(added.contains(QByteArray("certificate 1").toBase64()));
    m_history.undoStack().undo();
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(m_certificates->payloadsConfigured(), 0);
    m_history.undoStack().redo();
    EXPECT_EQ(bytes(), added);

    // A file the section refuses leaves no step behind.
    const int steps = m_history.undoStack().count();
    EXPECT_EQ(m_history.addPayload(*m_certificates, m_profile, blobFile(1)),
              PFMSection::AddPayloadResult::fileIncompatible);
    EXPECT_EQ(m_history.undoStack().count(), steps);
}

TEST_F(UndoableEditsTest, AFileLoadedIntoAFieldNeverMergesWithWhatFollows) {
    DataInstrumentController* blob = blobInstrument();
    ASSERT_TRUE(blob);
    const auto key = everythingKey(QStringLiteral("Blob"));
    const QByteArray before = bytes();
    EXPECT_FALSE(blob->chooseFile(blobFile(1)));
    const QByteArray loaded = bytes();
    ASSERT_NE(loaded, before);
    blob->remove();
    EXPECT_TRUE(key->value().isAbsent());
    m_history.undoStack().undo();
    EXPECT_EQ(bytes(), loaded);
    ASSERT_TRUE(key->value().plistValue());

    // Two files in a row are two steps as well.
    m_history.undoStack().redo();
    EXPECT_FALSE(blob->chooseFile(blobFile(2)));
    EXPECT_FALSE(blob->chooseFile(blobFile(3)));
    m_history.undoStack().undo();
    m_history.undoStack().undo();
    EXPECT_TRUE(key->value().isAbsent());
    m_history.undoStack().setIndex(0);
    EXPECT_EQ(bytes(), before);
}

// Two payloads with one identifier: the save repairs, as a step of its own.
TEST_F(UndoableEditsTest, ASaveThatRepairsLeavesNoChangesAndUndoGoesBackPastIt) {
    const auto identifier = everythingKey(QStringLiteral("PayloadIdentifier"));
    const auto rootIdentifier = m_profile->rootPayload()->keyAtPath(QStringLiteral("PayloadIdentifier"));
    ASSERT_TRUE(identifier && rootIdentifier && rootIdentifier->value().plistValue());
    m_history.setValue(identifier, *rootIdentifier->value().plistValue());
    const QByteArray broken = bytes();
    ASSERT_FALSE(m_profile->validationErrors().isEmpty());

    m_history.repairBeforeSave(m_profile);
    EXPECT_TRUE(m_profile->validationErrors().isEmpty());
    const QByteArray repaired = bytes();
    EXPECT_NE(repaired, broken);
    // The save's own repair finds nothing left to change.
    ASSERT_TRUE(m_profile->profileData());
    EXPECT_EQ(bytes(), repaired);
    m_history.markSaved();
    EXPECT_EQ(m_history.changeCount(), 0);
    m_history.undoStack().undo();
    EXPECT_EQ(bytes(), broken);
    EXPECT_EQ(m_history.changeCount(), 1);

    // A save that didn't happen takes its repair back and leaves no step.
    m_history.undoStack().redo();
    m_history.setValue(identifier, *rootIdentifier->value().plistValue());
    const int steps = m_history.undoStack().count();
    m_history.repairBeforeSave(m_profile);
    m_history.dropRepairOfFailedSave();
    EXPECT_EQ(bytes(), broken);
    EXPECT_EQ(m_history.undoStack().count(), steps);
    EXPECT_FALSE(m_history.undoStack().canRedo());
    // Nothing to repair: no step at all.
    m_history.undoStack().undo();
    m_history.repairBeforeSave(m_profile);
    EXPECT_EQ(m_history.undoStack().index(), steps - 1);
}

TEST_F(UndoableEditsTest, AnySequenceOfEditsUndoesToTheStartAndRedoesToTheEnd) {
    std::mt19937 random(1122);
    StepRecorder steps(m_history.undoStack(), [this] { return bytes(); });
    int files = 0;
    for (int step = 0; step < 160; ++step) {
        const int choice = int(random() % 100);
        const auto* form = m_everything->sectionViewController();
        if (!form) {
            m_history.addPayload(*m_everything, m_profile);
        } else if (choice < 25) {
            const auto name = everythingKey(QStringLiteral("Name"));
            m_history.setValue(name, plist::Value(QStringLiteral("name %1").arg(random() % 50)));
        } else if (choice < 40) {
            if (DataInstrumentController* blob = blobInstrument()) {
                if (random() % 3 == 0)
                    blob->remove();
                else
                    blob->chooseFile(blobFile(++files));
            }
        } else if (choice < 52) {
            m_history.addPayload(*m_certificates, m_profile, certificateFile(++files));
        } else if (choice < 62) {
            m_history.addPayload(*m_everything, m_profile);
        } else if (choice < 74) {
            PFMSection* section = random() % 2 ? m_everything : m_certificates;
            if (const auto* sectionForm = section->sectionViewController())
                m_history.removePayloads(*section, m_profile,
                                         {int(random() % sectionForm->payloadControllers().size())});
        } else if (choice < 82) {
            const auto unfamiliar = unfamiliarSections();
            if (!unfamiliar.isEmpty())
                m_history.removeUnfamiliarPayloads(
                    m_sections, *unfamiliar[qsizetype(random() % unfamiliar.size())], m_profile);
        } else if (choice < 90) {
            m_history.repairBeforeSave(m_profile);
            m_history.markSaved();
        }
        if (random() % 6 == 0)
            m_history.undoStack().undo();
        steps.record();
    }
    ASSERT_GT(m_history.undoStack().count(), 60);
    const QByteArray last = steps.undoAll();
    EXPECT_EQ(unfamiliarSections().size(), 2);
    m_history.undoStack().setIndex(m_history.undoStack().count());
    EXPECT_EQ(bytes(), last);
}

} // namespace
} // namespace quorlin
