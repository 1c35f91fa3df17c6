#pragma once

#include "cli/Command.h"
#include "schema/PFMDomain.h"
#include "schema/SupportedPlatforms.h"

#include <QJsonArray>

#include <optional>

namespace quorlin::cli {

// domains show DOMAIN [--manifests DIR] [--json]: the keys of one domain,
// nested, with their types and where and since when they exist.
class DomainShowCommand final : public Command {
public:
    QString name() const override { return QStringLiteral("domains show"); }
    QString summary() const override;
    QString help() const override;
    int run(const QStringList& arguments, CommandStreams& streams) const override;

private:
    using Availability = std::optional<SupportedPlatforms>;

    // A key's availability within its parent's, as the editor works it out for a field.
    static Availability availability(const PFMKeyPrototype& key, const Availability& parent);
    static QString availabilityText(const Availability& availability);
    static QJsonArray availabilityJson(const Availability& availability);

    static void printKeys(const PFMKeyPrototypeList& keys, const Availability& parent, int depth,
                          CommandStreams& streams);
    static QJsonArray keysJson(const PFMKeyPrototypeList& keys, const Availability& parent);
};

} // namespace quorlin::cli
