#include "supply/BundledManifestRepository.h"

#include <QImage>

namespace quorlin {

namespace {

std::optional<DomainIcon> decodeIcon(const plist::Dictionary& manifest) {
    const auto data = manifest.data(QStringLiteral("pfm_quorlin_icon"));
    if (!data)
        return std::nullopt;
    DomainIcon icon;
    icon.image = QImage::fromData(*data);
    if (icon.image.isNull())
        return std::nullopt;
    // Any number counts, booleans included, as the manifests' writers vary.
    if (const auto flag = manifest.value(QStringLiteral("pfm_quorlin_icon_is_template")).numberAsReal())
        icon.isTemplate = *flag != 0;
    return icon;
}

} // namespace

BundledManifestRepository::BundledManifestRepository(const QString& directory)
    : ManifestRepository(directory) {
    // Mostly a fall-back: a command run with another repository in force
    // would read the whole set for nothing.
    readOnFirstUse();
}

void BundledManifestRepository::reloadManifests() {
    ManifestRepository::reloadManifests();
    forgetDerivedValues();
}

void BundledManifestRepository::reloadManifests(const QStringList& files) {
    ManifestRepository::reloadManifests(files);
    forgetDerivedValues();
}

std::optional<DomainIcon> BundledManifestRepository::icon(const QString& domain) {
    if (const auto cached = m_iconsPartial.constFind(domain); cached != m_iconsPartial.cend())
        return *cached;
    const auto found = manifest(domain);
    if (!found)
        return std::nullopt;
    auto icon = decodeIcon(*found);
    if (icon)
        m_iconsPartial.insert(domain, *icon);
    return icon;
}

std::optional<plist::Date> BundledManifestRepository::mostRecentModificationDate() {
    if (m_mostRecentModificationDateComputed)
        return m_mostRecentModificationDate;
    for (const plist::Dictionary& manifest : standardizedManifests()) {
        const auto date = manifest.date(QStringLiteral("pfm_quorlin_last_modification"));
        if (date &&
            (!m_mostRecentModificationDate ||
             date->secondsSinceReferenceDate > m_mostRecentModificationDate->secondsSinceReferenceDate))
            m_mostRecentModificationDate = date;
    }
    m_mostRecentModificationDateComputed = true;
    return m_mostRecentModificationDate;
}

void BundledManifestRepository::forgetDerivedValues() {
    m_iconsPartial.clear();
    m_mostRecentModificationDate.reset();
    m_mostRecentModificationDateComputed = false;
}

} // namespace quorlin
