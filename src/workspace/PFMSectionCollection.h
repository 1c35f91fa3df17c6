#pragma once

#include "schema/PFMDomain.h"
#include "workspace/PFMSection.h"

#include <QList>

#include <memory>
#include <vector>

namespace quorlin {

class PFMDomainManager;

// The side-bar rows of one window, in the order they were made: one row per
// title and category of the domains in force, then the group titles. The
// list that shows them does the sorting.
class PFMSectionCollection {
public:
    using DomainList = QList<std::shared_ptr<const PFMDomain>>;

    explicit PFMSectionCollection(const DomainList& domains);
    explicit PFMSectionCollection(const PFMDomainManager& manager);

    const std::vector<std::unique_ptr<PFMSection>>& sections() const { return m_sections; }
    QList<PFMSection*> sectionPointers() const;

private:
    void addGroupTitles(const DomainList& domains);

    std::vector<std::unique_ptr<PFMSection>> m_sections;
};

} // namespace quorlin
