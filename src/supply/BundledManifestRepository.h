#pragma once

#include "plist/Value.h"
#include "supply/DomainIcon.h"
#include "supply/ManifestRepository.h"

#include <QHash>
#include <QString>

#include <optional>

namespace quorlin {

// The manifests that ship with the program: already in the standard form,
// read in full when first needed, never written. It is the fall-back of every
// other repository, and the source of domain icons that a manifest of
// another repository lacks.
class BundledManifestRepository final : public ManifestRepository {
public:
    explicit BundledManifestRepository(const QString& directory);

    void reloadManifests() override;
    void reloadManifests(const QStringList& files) override;

    // The decoded "pfm_quorlin_icon" of the domain's manifest, with its
    // "pfm_quorlin_icon_is_template" flag; nothing when there is no such
    // manifest or its icon doesn't decode. Decoded once per domain.
    std::optional<DomainIcon> icon(const QString& domain);
    // The newest "pfm_quorlin_last_modification" of the set; nothing when no
    // manifest carries one. Worked out once, also when there is none.
    std::optional<plist::Date> mostRecentModificationDate();

private:
    // A reload must not serve what was worked out from the manifests it replaced.
    void forgetDerivedValues();

    QHash<QString, DomainIcon> m_iconsPartial;
    std::optional<plist::Date> m_mostRecentModificationDate;
    bool m_mostRecentModificationDateComputed = false;
};

} // namespace quorlin
