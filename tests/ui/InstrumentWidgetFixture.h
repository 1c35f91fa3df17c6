#pragma once

#include "fields/FieldViewController.h"
#include "model/ModelTestSupport.h"
#include "ui/InstrumentChooser.h"
#include "workspace/EditHistory.h"
#include "workspace/PFMSection.h"
#include "workspace/PFMSectionCollection.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"
#include "workspace/WorkspaceTestSupport.h"

#include <gtest/gtest.h>

namespace quorlin::test {

// Answers the widgets' questions as a user would have, without a dialog.
class ScriptedChooser : public InstrumentChooser {
public:
    std::optional<QString> fileToOpen;
    std::optional<QString> fileToSave;
    std::optional<QString> bundleId;
    QStringList offeredExtensions;

    std::optional<QString> chooseFileToOpen(QWidget*, const QStringList& extensions) override {
        offeredExtensions = extensions;
        return fileToOpen;
    }
    std::optional<QString> chooseFileToSave(QWidget*, const QString&) override { return fileToSave; }
    std::optional<QString> chooseBundleId(QWidget*) override { return bundleId; }
};

// A document's worth of state: a profile over bundled manifests (and any
// domains a test adds), its forms, and the undo history every edit goes to.
class InstrumentWidgetFixture : public testing::Test {
protected:
    static QString bundledManifest(const QString& domain) {
        return QStringLiteral(QUORLIN_BINARY_DIR "/share/quorlin-profile-editor/Manifests/") + domain +
               QStringLiteral(".plist");
    }

    void open(Profile::DomainList extraDomains = {}) {
        m_domains = {PFMDomain::make(readDictionary(bundledManifest(QStringLiteral("Configuration"))))};
        for (const char* domain : {"com.apple.domains", "com.apple.loginitems.managed", "com.apple.dock"})
            m_domains.append(PFMDomain::make(readDictionary(bundledManifest(QString::fromLatin1(domain)))));
        m_domains.append(extraDomains);
        for (const auto& domain : m_domains)
            ASSERT_TRUE(domain);
        m_profile = Profile::makeNewProfile(m_domains, makeTestEnvironment());
        m_collection = std::make_unique<PFMSectionCollection>(m_domains);
        for (PFMSection* section : m_collection->sectionPointers()) {
            section->setKeyValueWriter(m_history.keyValueWriter());
            section->bind(m_profile);
        }
    }

    // The field of a top-level key in the domain's payload, added to the
    // profile on first use; the history starts after that.
    FieldViewController* field(const QString& domain, const QString& keyName) {
        PFMSection* section = sectionOf(domain);
        if (!section)
            return nullptr;
        if (section->payloadsConfigured() == 0) {
            if (m_history.addPayload(*section, m_profile) != PFMSection::AddPayloadResult::added)
                return nullptr;
            m_history.undoStack().clear();
        }
        const auto& form = *section->sectionViewController()->payloadControllers().front();
        for (const FormField& candidate : form.fieldViewControllers()) {
            if (candidate.key && candidate.key->name() == keyName)
                return candidate.controller.get();
        }
        return nullptr;
    }

    // What the profile writes out for a top-level key; null when it writes nothing.
    plist::Value writtenValue(const QString& domain, const QString& keyName) const {
        for (const auto& payload : m_profile->configurationPayloads()) {
            if (payload->domainPrototype().domainString() == domain)
                return payload->writeOutDictionary().value(keyName);
        }
        return {};
    }

    QByteArray bytes() const { return profileBytes(*m_profile); }

    Profile::DomainList m_domains;
    Profile::Pointer m_profile;
    std::unique_ptr<PFMSectionCollection> m_collection;
    EditHistory m_history;

private:
    PFMSection* sectionOf(const QString& domain) const {
        for (PFMSection* section : m_collection->sectionPointers()) {
            if (section->sectionKind() == PFMSection::Kinds::domain && section->primaryDomain() &&
                section->primaryDomain()->domainString() == domain)
                return section;
        }
        return nullptr;
    }
};

} // namespace quorlin::test
