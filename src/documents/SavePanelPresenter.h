#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// What the save panel starts with.
struct SavePanelRequest {
    // The file name proposed; empty keeps the panel's own.
    QString suggestedName;
    // The document's file, when it has one.
    std::optional<QString> currentFilePath;
    // The identity selected in the panel's signing choice; nothing selects
    // "Do not sign".
    std::optional<QString> signingCommonName;
    // The identities the user can pick, by common name.
    QStringList availableIdentities;
};

// The user's answer.
struct SavePanelChoice {
    QString filePath;
    // The empty string is "Do not sign"; nothing leaves the profile's choice.
    std::optional<QString> signingCommonName;
};

// The save panel with its choice of signing identity. The front end
// implements it; nothing is a cancelled panel.
class SavePanelPresenter {
public:
    virtual ~SavePanelPresenter() = default;
    virtual std::optional<SavePanelChoice> chooseSavePlace(const SavePanelRequest& request) = 0;
};

} // namespace quorlin
