#include "workspace/EditHistory.h"
#include "WorkspaceTestSupport.h"
#include "fields/ControlSide.h"
#include "fields/InstrumentController.h"
#include "fields/ValueBinding.h"
#include "workspace/PFMSectionViewController.h"

#include <gtest/gtest.h>

#include <random>

namespace quorlin {
namespace {

using namespace test;
using Kind = PFMKeyPrototype::Kind;

// A window's worth of state over the fixtures' "Everything" domain.
class EditHistoryTest : public testing::Test {
protected:
    void SetUp() override {
        m_domains = fixtureDomains();
        m_profile = Profile::makeNewProfile(m_domains, makeTestEnvironment());
        m_collection = std::make_unique<PFMSectionCollection>(m_domains);
        m_section = sectionTitled(*m_collection, QStringLiteral("Everything"));
        for (PFMSection* section : m_collection->sectionPointers()) {
            section->setKeyValueWriter(m_history.keyValueWriter());
            section->bind(m_profile);
        }
        ASSERT_EQ(m_history.addPayload(*m_section, m_profile), PFMSection::AddPayloadResult::added);
        // The tests start from a document just opened with that payload.
        m_history.undoStack().clear();
    }

    const std::vector<std::unique_ptr<PayloadViewController>>& forms() const {
        return m_section->sectionViewController()->payloadControllers();
    }
    PreferenceKey::Pointer key(const QString& path, size_t form = 0) const {
        return forms()[form]->payload()->keyAtPath(path);
    }
    QByteArray bytes() const { return profileBytes(*m_profile); }

    // The section's forms and the profile's payloads of its domain agree.
    void expectFormsMatchProfile() const {
        const auto& payloads = m_profile->configurationPayloads();
        QList<Payload::Pointer> ofSection;
        for (const auto& payload : payloads) {
            if (payload->domainPrototype().title() == QStringLiteral("Everything"))
                ofSection.append(payload);
        }
        ASSERT_EQ(m_section->payloadsConfigured(), ofSection.size());
        for (qsizetype index = 0; index < ofSection.size(); ++index)
            EXPECT_EQ(forms()[size_t(index)]->payload(), ofSection[index]);
    }

    Profile::DomainList m_domains;
    Profile::Pointer m_profile;
    std::unique_ptr<PFMSectionCollection> m_collection;
    PFMSection* m_section = nullptr;
    EditHistory m_history;
};

TEST_F(EditHistoryTest, TypingInOneFieldIsOneStep) {
    const QByteArray before = bytes();
    const auto name = key(QStringLiteral("Name"));
    for (const char* text : {"h", "he", "hel", "hello"})
        m_history.setValue(name, plist::Value(text));
    EXPECT_EQ(m_history.undoStack().count(), 1);
    // Another field starts a step of its own, and so does a return to the first.
    m_history.setValue(key(QStringLiteral("PayloadDescription")), plist::Value("d"));
    m_history.setValue(name, plist::Value("hello!"));
    EXPECT_EQ(m_history.undoStack().count(), 3);
    m_history.undoStack().setIndex(0);
    EXPECT_EQ(bytes(), before);
}

// A control that shows nothing; the test types into it through its binding.
class SilentControl : public ControlSide {
public:
    void showValue(const plist::Value&) override {}
};

const FormField* fieldNamed(const PayloadViewController& form, const QString& name) {
    for (const FormField& field : form.fieldViewControllers()) {
        if (field.key && field.key->name() == name)
            return &field;
    }
    return nullptr;
}

TEST_F(EditHistoryTest, InstrumentsWriteThroughTheHistory) {
    const QByteArray before = bytes();
    const FormField* name = fieldNamed(*forms()[0], QStringLiteral("Name"));
    ASSERT_TRUE(name && !name->controller->instruments().isEmpty());
    SilentControl control;
    InstrumentController& instrument = *name->controller->instruments().first();
    instrument.attachControl(&control);
    ASSERT_TRUE(instrument.valueBinding());
    for (const char* text : {"w", "wo", "wor", "word"})
        instrument.valueBinding()->controlValueDidChange(plist::Value(text));
    EXPECT_EQ(m_history.undoStack().count(), 1);
    EXPECT_EQ(forms()[0]->payload()->stringValue(QStringLiteral("Name")), QStringLiteral("word"));

    // The field's menu goes through the history too, as a step of its own.
    name->controller->perform(FieldViewController::MenuAction::unsetOnPayload);
    EXPECT_EQ(m_history.undoStack().count(), 2);
    m_history.undoStack().undo();
    EXPECT_EQ(forms()[0]->payload()->stringValue(QStringLiteral("Name")), QStringLiteral("word"));
    m_history.undoStack().undo();
    EXPECT_EQ(bytes(), before);
    instrument.attachControl(nullptr);
}

TEST_F(EditHistoryTest, TypingDoesNotMergeAcrossASave) {
    const auto name = key(QStringLiteral("Name"));
    m_history.setValue(name, plist::Value("a"));
    m_history.markSaved();
    const QByteArray saved = bytes();
    m_history.setValue(name, plist::Value("ab"));
    EXPECT_EQ(m_history.undoStack().count(), 2);
    m_history.undoStack().undo();
    EXPECT_EQ(bytes(), saved);
}

TEST_F(EditHistoryTest, ChangeCountFollowsTheSavedState) {
    int counts = 0;
    QObject::connect(&m_history, &EditHistory::changeCountChanged, [&counts] { ++counts; });
    EXPECT_EQ(m_history.changeCount(), 0);
    m_history.setValue(key(QStringLiteral("Name")), plist::Value("a"));
    m_history.setValue(key(QStringLiteral("Count")), plist::Value(2));
    EXPECT_EQ(m_history.changeCount(), 2);
    m_history.undoStack().undo();
    m_history.undoStack().undo();
    EXPECT_EQ(m_history.changeCount(), 0);
    // Saved one step back: the state ahead of it counts as changed too.
    m_history.undoStack().redo();
    m_history.markSaved();
    m_history.undoStack().undo();
    EXPECT_EQ(m_history.changeCount(), 1);
    EXPECT_EQ(counts, 7);
}

TEST_F(EditHistoryTest, RemovingAndUndoingGivesBackTheSamePayloadInPlace) {
    m_history.addPayload(*m_section, m_profile);
    m_history.addPayload(*m_section, m_profile);
    const auto middle = forms()[1]->payload();
    const QByteArray before = bytes();
    m_history.removePayloads(*m_section, m_profile, {1});
    EXPECT_EQ(m_section->payloadsConfigured(), 2);
    m_history.undoStack().undo();
    EXPECT_EQ(forms()[1]->payload(), middle);
    EXPECT_EQ(bytes(), before);
    expectFormsMatchProfile();

    // Taking out every payload drops the form; undo makes it anew.
    m_history.removePayloads(*m_section, m_profile, {0, 1, 2});
    EXPECT_EQ(m_section->sectionViewController(), nullptr);
    m_history.undoStack().undo();
    ASSERT_NE(m_section->sectionViewController(), nullptr);
    EXPECT_EQ(bytes(), before);
}

TEST_F(EditHistoryTest, SecondPayloadIsNumberedAndKeepsItsNameThroughRedo) {
    m_history.addPayload(*m_section, m_profile);
    const auto name = forms()[1]->payload()->displayName();
    EXPECT_EQ(name, QStringLiteral("com.example.everything #2"));
    const QByteArray added = bytes();
    m_history.undoStack().undo();
    m_history.undoStack().redo();
    EXPECT_EQ(bytes(), added);
    // The counter never goes down: the next one is #3.
    m_history.addPayload(*m_section, m_profile);
    EXPECT_EQ(forms()[2]->payload()->displayName(), QStringLiteral("com.example.everything #3"));
}

// Every scalar key of the section's payloads, nested ones included.
PreferenceKey::KeyList scalarKeys(const std::vector<std::unique_ptr<PayloadViewController>>& forms) {
    PreferenceKey::KeyList keys;
    std::function<void(const PreferenceKey::Pointer&)> collect = [&](const PreferenceKey::Pointer& key) {
        const Kind kind = key->prototype().kind();
        if (kind == Kind::boolean || kind == Kind::integer || kind == Kind::real || kind == Kind::string)
            keys.append(key);
        if (const auto children = key->children()) {
            for (const auto& child : *children)
                collect(child);
        }
    };
    for (const auto& form : forms) {
        for (const auto& key : form->payload()->preferenceKeys())
            collect(key);
    }
    return keys;
}

PreferenceKey::KeyList tableKeys(const std::vector<std::unique_ptr<PayloadViewController>>& forms) {
    PreferenceKey::KeyList keys;
    for (const auto& form : forms) {
        for (const auto& key : form->payload()->preferenceKeys()) {
            if (key->prototype().kind() == Kind::array && !key->prototype().subkeys().isEmpty())
                keys.append(key);
        }
    }
    return keys;
}

plist::Value randomValue(Kind kind, std::mt19937& random) {
    const int number = int(random() % 1000);
    switch (kind) {
    case Kind::boolean:
        return plist::Value(number % 2 == 0);
    case Kind::integer:
        return plist::Value(number);
    case Kind::real:
        return plist::Value(number / 8.0);
    default:
        return plist::Value(QStringLiteral("text %1").arg(number));
    }
}

// Table rows: an item added at the end, or the last one taken away.
PreferenceKeyValue withRowChanged(const PreferenceKey::Pointer& table, std::mt19937& random) {
    PreferenceKey::KeyList rows;
    if (const auto* current = table->value().keyList())
        rows = *current;
    if (!rows.isEmpty() && random() % 3 == 0) {
        rows.removeLast();
        return rows;
    }
    const auto& itemPrototypes = table->prototype().subkeys();
    const auto& prototype = itemPrototypes[qsizetype(random() % itemPrototypes.size())];
    const auto row = PreferenceKey::makeNew(prototype, table);
    if (prototype->kind() != Kind::dictionary)
        row->setValue(randomValue(prototype->kind(), random));
    rows.append(row);
    return rows;
}

TEST_F(EditHistoryTest, UndoingAnySequenceRestoresTheBytesAndRedoReplaysThem) {
    std::mt19937 random(20261122);
    StepRecorder steps(m_history.undoStack(), [this] { return bytes(); });
    for (int step = 0; step < 300; ++step) {
        const int choice = int(random() % 100);
        if (choice < 45 || !m_section->sectionViewController()) {
            if (!m_section->sectionViewController()) {
                m_history.addPayload(*m_section, m_profile);
            } else {
                const auto keys = scalarKeys(forms());
                const auto& key = keys[qsizetype(random() % keys.size())];
                if (random() % 10 == 0)
                    m_history.setValue(key, PreferenceKeyValue());
                else
                    m_history.setValue(key, randomValue(key->prototype().kind(), random));
            }
        } else if (choice < 65) {
            const auto tables = tableKeys(forms());
            const auto& table = tables[qsizetype(random() % tables.size())];
            m_history.setValue(table, withRowChanged(table, random));
        } else if (choice < 78) {
            m_history.addPayload(*m_section, m_profile);
        } else if (choice < 88) {
            m_history.removePayloads(*m_section, m_profile, {int(random() % forms().size())});
        } else {
            m_history.populateDefaults(*forms()[random() % forms().size()]);
        }
        if (random() % 7 == 0)
            m_history.undoStack().undo();
        steps.record();
    }
    ASSERT_GT(m_history.undoStack().count(), 100);
    const QByteArray last = steps.undoAll([this] {
        if (m_section->sectionViewController())
            expectFormsMatchProfile();
    });
    EXPECT_EQ(m_history.changeCount(), 0);
    m_history.undoStack().setIndex(m_history.undoStack().count());
    EXPECT_EQ(bytes(), last);
}

// A profile read with values the keys can't bind: setting a key and removing
// held values are steps that undo gives back with what each key held, and
// the form counts what no row shows.
TEST(HeldValuesEditsTest, SettingAndRemovingAreUndoneWithWhatTheKeysHeld) {
    using namespace test;
    const auto domains = fixtureDomains();
    const auto parsed = Profile::parseProfile(
        readFile(testDataPath("model/profiles/held-values.mobileconfig")), domains, makeTestEnvironment());
    ASSERT_TRUE(parsed);
    const Profile::Pointer profile = *parsed;
    PFMSectionCollection collection(domains);
    EditHistory history;
    for (PFMSection* section : collection.sectionPointers()) {
        section->setKeyValueWriter(history.keyValueWriter());
        section->bind(profile);
    }
    PFMSection* section = sectionTitled(collection, QStringLiteral("Everything"));
    ASSERT_TRUE(section && section->sectionViewController());
    PayloadViewController& form = *section->sectionViewController()->payloadControllers().front();
    form.recountErrors();
    const QByteArray opened = profileBytes(*profile);
    const int openedErrors = form.errorCount();
    EXPECT_EQ(
        form.unshownHeldValues(),
        QStringList({"Settings: “Vendor” is not described by the manifest; it is kept as it is until you "
                     "remove it.",
                     "Settings.Inner: “Deeper” is not described by the manifest; it is kept as it is until "
                     "you remove it."}));

    history.setValue(form.payload()->keyAtPath("Count"), plist::Value(12));
    EXPECT_FALSE(profileBytes(*profile).contains("twelve"));
    history.undoStack().undo();
    EXPECT_EQ(profileBytes(*profile), opened);

    history.removeAllHeldValues(*profile);
    EXPECT_EQ(profile->heldValueCount(), 0);
    EXPECT_EQ(history.undoStack().count(), 1) << "one step";
    form.recountErrors();
    EXPECT_LT(form.errorCount(), openedErrors);
    EXPECT_TRUE(form.unshownHeldValues().isEmpty());
    history.undoStack().undo();
    EXPECT_EQ(profileBytes(*profile), opened);
    form.recountErrors();
    EXPECT_EQ(form.errorCount(), openedErrors);
}

} // namespace
} // namespace quorlin
