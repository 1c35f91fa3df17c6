#include "ui/CommandAvailability.h"

#include "workspace/PFMSection.h"

namespace quorlin {

namespace {

using State = CommandAvailability::State;

State enabled() {
    return {};
}

State disabled(const QString& reason) {
    return {false, reason};
}

const QString noSection = QStringLiteral("No section is selected.");
const QString noPayloads = QStringLiteral("The section has no payloads in this profile.");

} // namespace

// With no section the command stays available: the window asks which one.
State CommandAvailability::addPayload(const PFMSection* section) {
    if (!section)
        return enabled();
    if (section->sectionKind() != PFMSection::Kinds::domain)
        return disabled(QStringLiteral("Payloads of this section can't be added here."));
    if (section->sectionProperties().singlePayload && section->payloadsConfigured() > 0)
        return disabled(QStringLiteral("A profile holds only one payload of this section."));
    return enabled();
}

State CommandAvailability::removePayload(const PFMSection* section) {
    if (!section)
        return disabled(noSection);
    if (section->sectionProperties().required)
        return disabled(QStringLiteral("Every profile needs this section."));
    if (section->payloadsConfigured() <= 0)
        return disabled(noPayloads);
    return enabled();
}

State CommandAvailability::populateOrExport(const PFMSection* section) {
    if (!section)
        return disabled(noSection);
    if (section->payloadsConfigured() <= 0)
        return disabled(noPayloads);
    if (section->sectionKind() == PFMSection::Kinds::unfamiliar)
        return disabled(QStringLiteral("No manifest describes the payloads of this section."));
    return enabled();
}

State CommandAvailability::openDocumentation(const PFMSection* section) {
    if (!section)
        return disabled(noSection);
    const auto& urls = section->sectionProperties().documentationURLs;
    if (!urls || urls->isEmpty())
        return disabled(QStringLiteral("The section has no documentation."));
    return enabled();
}

State CommandAvailability::showInFileManager(bool documentHasFile) {
    if (!documentHasFile)
        return disabled(QStringLiteral("The document has not been saved to a file yet."));
    return enabled();
}

} // namespace quorlin
