#pragma once

#include "fields/InstrumentAlert.h"
#include "fields/InstrumentController.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// A key whose value is a file's bytes: shows how much data it holds, takes
// a chosen file when the file is of the kind the key wants, and removes.
class DataInstrumentController : public InstrumentController {
public:
    Types type() const override { return Types::data; }

    // In a table of single values the buttons are left out.
    bool showingButtons() const { return m_showingButtons; }
    void setShowingButtons(bool showing);

    QString chooseButtonTitle() const;
    int buttonVisibilityPriority() const;
    // "Contains 12 KB of data"; nothing while the key has no data.
    std::optional<QString> sizeText() const;
    QStringList allowedFileExtensions() const;

    // The file's bytes become the value; a refused file leaves the value as
    // it was and gives the alert to show.
    std::optional<InstrumentAlert> chooseFile(const QString& filePath);
    void remove();

protected:
    void bindValue() override;

private:
    std::optional<QByteArray> storedData() const;

    bool m_showingButtons = true;
};

} // namespace quorlin
