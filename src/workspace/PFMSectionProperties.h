#pragma once

#include "schema/PFMDomain.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace quorlin {

// What one side-bar row shows. A category of `unknown` stands for "not yet
// set": the first domain added decides it.
struct PFMSectionProperties {
    QString title;
    std::optional<QString> descriptionLine;
    // The domain's own icon bytes, else the name of a bundled image.
    std::optional<QByteArray> icon;
    std::optional<QString> iconName;
    bool required = false;
    bool singlePayload = false;
    bool fileBasedPayload = false;
    PFMDomain::Category domainCategory = PFMDomain::Category::unknown;
    // A set kept in the order first met, so the documentation opens predictably.
    std::optional<QList<QUrl>> documentationURLs;
};

} // namespace quorlin
