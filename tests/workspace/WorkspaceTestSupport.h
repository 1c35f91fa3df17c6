#pragma once

#include "model/ModelTestSupport.h"
#include "model/Profile.h"
#include "plist/XmlWriter.h"
#include "workspace/PFMSection.h"
#include "workspace/PFMSectionCollection.h"

#include <QDir>
#include <QMap>
#include <QString>
#include <QUndoStack>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace quorlin::test {

// The domains of every manifest in a folder, in file-name order.
inline Profile::DomainList domainsInFolder(const QString& folder) {
    Profile::DomainList domains;
    for (const QString& file : QDir(folder).entryList({QStringLiteral("*.plist")}, QDir::Files, QDir::Name)) {
        if (auto domain = PFMDomain::make(readDictionary(folder + QLatin1Char('/') + file)))
            domains.append(domain);
    }
    return domains;
}

// A manifest of tests/data/workspace/manifests.
inline std::shared_ptr<const PFMDomain> workspaceDomain(const QString& name) {
    return PFMDomain::make(
        readDictionary(testDataPath(QStringLiteral("workspace/manifests/%1.plist").arg(name))));
}

// The domains given, behind the general domain of the model's fixtures
// unless one of them already is a general domain.
inline Profile::DomainList withGeneralDomain(Profile::DomainList domains) {
    const bool hasGeneral = std::any_of(domains.begin(), domains.end(),
                                        [](const auto& domain) { return domain->domainString().isEmpty(); });
    if (!hasGeneral)
        domains.prepend(fixtureDomain(QStringLiteral("root")));
    return domains;
}

// The bytes a save would write, without the repairs that saving makes.
inline QByteArray profileBytes(const Profile& profile) {
    const auto bytes = plist::XmlWriter::write(plist::Value(profile.profileDictionary()));
    return bytes ? *bytes : QByteArray();
}

inline PFMSection* sectionTitled(const PFMSectionCollection& collection, const QString& title) {
    for (const auto& section : collection.sections()) {
        if (section->sectionKind() == PFMSection::Kinds::domain &&
            section->sectionProperties().title == title)
            return section.get();
    }
    return nullptr;
}

// Remembers the bytes at each step of a history while random edits go on,
// then undoes every step, checking the bytes wherever it remembered them.
class StepRecorder {
public:
    StepRecorder(QUndoStack& stack, std::function<QByteArray()> bytes)
        : m_stack(stack)
        , m_bytes(std::move(bytes)) {
        m_at.insert(0, m_bytes());
    }

    void record() {
        m_at[m_stack.index()] = m_bytes();
        // A step undone is gone once another is pushed: forget what lies beyond.
        m_at.removeIf([this](auto entry) { return entry.key() > m_stack.index(); });
    }
    // From the top of the stack down to nothing; the bytes at the top.
    QByteArray undoAll(const std::function<void()>& afterEachUndo = {}) {
        m_stack.setIndex(m_stack.count());
        const QByteArray top = m_bytes();
        for (int index = m_stack.count() - 1; index >= 0; --index) {
            m_stack.undo();
            if (m_at.contains(index)) {
                EXPECT_EQ(m_bytes(), m_at.value(index)) << "after undoing to step " << index;
            }
            if (afterEachUndo)
                afterEachUndo();
        }
        EXPECT_EQ(m_bytes(), m_at.value(0));
        return top;
    }

private:
    QUndoStack& m_stack;
    std::function<QByteArray()> m_bytes;
    QMap<int, QByteArray> m_at;
};

} // namespace quorlin::test
