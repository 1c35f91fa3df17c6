#pragma once

#include <QString>

namespace quorlin {

class PFMSection;

// Whether a payload command can act on a section, and if not, why: the
// menus, the toolbar and the side-bar's context menu all ask here, so they
// agree, and a disabled item can say why in its tip. No section means none
// is selected or clicked.
class CommandAvailability {
public:
    struct State {
        bool enabled = true;
        QString reason;
    };

    static State addPayload(const PFMSection* section);
    static State removePayload(const PFMSection* section);
    // Populating default values and exporting a payload need the same.
    static State populateOrExport(const PFMSection* section);
    static State openDocumentation(const PFMSection* section);
    static State showInFileManager(bool documentHasFile);
};

} // namespace quorlin
