#include "workspace/PFMSectionCollection.h"

#include "supply/PFMDomainManager.h"

#include <algorithm>

namespace quorlin {

PFMSectionCollection::PFMSectionCollection(const DomainList& domains) {
    for (const auto& domain : domains) {
        const auto same = std::find_if(m_sections.begin(), m_sections.end(), [&](const auto& section) {
            const PFMSectionProperties& properties = section->sectionProperties();
            return properties.title == domain->title() &&
                   properties.domainCategory == domain->domainCategory();
        });
        if (same != m_sections.end())
            (*same)->addDomain(domain);
        else
            m_sections.push_back(std::make_unique<PFMSection>(domain));
    }
    addGroupTitles(domains);
}

PFMSectionCollection::PFMSectionCollection(const PFMDomainManager& manager)
    : PFMSectionCollection(manager.domains()) {}

void PFMSectionCollection::addGroupTitles(const DomainList& domains) {
    using Category = PFMDomain::Category;
    m_sections.push_back(std::make_unique<PFMSection>(QStringLiteral("Configured Domains"), Category::root));
    m_sections.push_back(
        std::make_unique<PFMSection>(QStringLiteral("Available System Domains"), Category::system));
    m_sections.push_back(
        std::make_unique<PFMSection>(QStringLiteral("Available Application Domains"), Category::application));
    const bool hasUserDomains = std::any_of(domains.begin(), domains.end(), [](const auto& domain) {
        return domain->domainCategory() == Category::user;
    });
    if (hasUserDomains)
        m_sections.push_back(
            std::make_unique<PFMSection>(QStringLiteral("Available User Domains"), Category::user));
}

QList<PFMSection*> PFMSectionCollection::sectionPointers() const {
    QList<PFMSection*> pointers;
    for (const auto& section : m_sections)
        pointers.append(section.get());
    return pointers;
}

} // namespace quorlin
