#pragma once

#include "fields/StringInstrumentController.h"

namespace quorlin {

// A text field with the manifest's suggestions in its list; any text may
// still be typed.
class ComboBoxInstrumentController : public StringInstrumentController {
public:
    static bool accepts(PFMKeyPrototype::Kind kind, const std::optional<QString>& typeAdapter);

    Types type() const override { return Types::comboBox; }

protected:
    void applyCellMode() override;
    void bindValue() override;
};

} // namespace quorlin
