#pragma once

#include <QWidget>

namespace quorlin {

class FieldViewController;
class InstrumentController;

// The control of a file-based instrument (data, image, custom plist, app
// selector): choose or drop a file, see what is there, clear it.
class FileInstrumentWidget : public QWidget {
    Q_OBJECT
public:
    FileInstrumentWidget(FieldViewController& field, InstrumentController& controller,
                         QWidget* parent = nullptr);
    ~FileInstrumentWidget() override;

private:
    FieldViewController& m_field;
    InstrumentController& m_controller;
};

} // namespace quorlin
