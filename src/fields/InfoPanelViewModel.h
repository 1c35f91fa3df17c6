#pragma once

#include "fields/AvailabilityItem.h"
#include "fields/TextRange.h"
#include "model/PreferenceKey.h"
#include "schema/PFMDomain.h"
#include "schema/PFMXSupportedOSes.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace quorlin {

// Everything the manifest says of a key or a domain, in the words of the
// information panel. Built anew for each opening; an absent field takes its
// row out of the panel.
struct InfoPanelViewModel {
    using Model = PFMSupportedPlatforms::Model;

    std::optional<QString> title;
    std::optional<QString> name;
    std::optional<QString> type;
    std::optional<QString> descriptionText;
    std::optional<QString> defaultValue;
    std::optional<QString> allowedValues;
    // The part of `allowedValues` set in a fixed-pitch font: a format's expression.
    std::optional<TextRange> allowedValuesFixedPitchRange;
    std::optional<QString> presence;
    std::optional<QList<AvailabilityItem>> availabilityTable;
    // The platform columns of the table, in order, less those never introduced.
    QList<Model> availabilityColumns;
    std::optional<QUrl> documentationURL;
    std::optional<QString> note;
    std::optional<QString> sharedIPadBehavior;

    static InfoPanelViewModel make(const PreferenceKey& key);
    static InfoPanelViewModel make(const PFMDomain& domain);

    // "os-column-" and the model's word.
    static QString columnIdentifier(Model model);
    // Labels of the panel's rows.
    static QString presenceLabel();
    static QString defaultLabel();
    static QString allowedValuesLabel();
    static QString sharedIPadBehaviorLabel();
    static QString documentationButtonTitle();

    friend bool operator==(const InfoPanelViewModel&, const InfoPanelViewModel&) = default;
};

} // namespace quorlin
