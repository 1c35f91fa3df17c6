#pragma once

#include "apptools/ChosenApp.h"
#include "fields/InstrumentAlert.h"
#include "fields/InstrumentController.h"

#include <QString>

#include <optional>

namespace quorlin {

// A bundle identifier picked in the app sheet rather than typed. The widget
// shows the app's icon and name for the identifier it reads here.
class AppSelectorInstrumentController : public InstrumentController {
public:
    Types type() const override { return Types::appSelector; }

    bool showingButtons() const { return m_showingButtons; }
    void setShowingButtons(bool showing);

    std::optional<QString> bundleId() const;
    // Follows the key's disabling by an exclusion rule.
    bool isDisabled() const;
    // The sheet's confirmed choice; an empty one changes nothing.
    void choose(const QString& chosenBundleId);
    // The same with what else is known of the app: the keys beside the
    // field that describe it take its signature's answers, in the same
    // step, and the app's name and icon are shown for its identifier.
    void choose(const apptools::ChosenApp& app);
    // A chosen or dropped application or program file: its bundle
    // identifier becomes the value, or the refusal says why it can't; the
    // file's path is never stored.
    std::optional<InstrumentAlert> chooseFile(const QString& path);
    void remove();

protected:
    void bindValue() override;

private:
    bool m_showingButtons = true;
};

} // namespace quorlin
