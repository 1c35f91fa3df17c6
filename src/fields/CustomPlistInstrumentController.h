#pragma once

#include "fields/InstrumentAlert.h"
#include "fields/InstrumentController.h"

#include <QString>

#include <optional>

namespace quorlin {

// A whole dictionary or array loaded from a property-list file, and saved
// back to one. Used for free-form dictionaries and for containers that a
// table cell can't nest.
class CustomPlistInstrumentController : public InstrumentController {
public:
    Types type() const override { return Types::customPlist; }

    bool showingButtons() const { return m_showingButtons; }
    void setShowingButtons(bool showing);

    // What the key holds, in a sentence.
    QString explanatoryText() const;
    static QString chooseButtonTitle();
    static QString importFailedTitle();
    static QString exportFailedTitle();

    // The file's root becomes the value, when it is of the key's kind and,
    // for a key with declared subkeys, fits them.
    std::optional<InstrumentAlert> importFile(const QString& filePath);
    // The root a file must have to be imported, or the alert that refuses it.
    std::optional<InstrumentAlert> checkImportedRoot(const plist::Value& root) const;
    std::optional<InstrumentAlert> exportToFile(const QString& filePath) const;
    void remove();

protected:
    void bindValue() override;

private:
    bool hasContent() const;

    bool m_showingButtons = true;
};

} // namespace quorlin
