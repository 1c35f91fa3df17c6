#pragma once

#include "fields/InstrumentAlert.h"
#include "fields/InstrumentController.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorlin {

// A key whose value is an image file's bytes. A dropped or chosen image is
// stored exactly as the file has it, never re-encoded; it must be an image
// the platform can read.
class ImageInstrumentController : public InstrumentController {
public:
    Types type() const override { return Types::image; }

    QString chooseButtonTitle() const;
    int buttonVisibilityPriority() const;
    // On while the instrument writes, so the well isn't reloaded with what
    // it just gave.
    bool suspendValueObservation() const { return m_suspendValueObservation; }

    std::optional<InstrumentAlert> chooseFile(const QString& filePath);
    // The bytes of a file dropped on the well.
    std::optional<InstrumentAlert> dropImageData(const QByteArray& bytes);
    void remove();

    static bool isReadableImage(const QByteArray& bytes);

protected:
    void bindValue() override;

private:
    void storeImage(const QByteArray& bytes);

    bool m_suspendValueObservation = false;
};

} // namespace quorlin
