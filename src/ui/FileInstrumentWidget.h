#pragma once

#include "fields/InstrumentAlert.h"
#include "ui/InstrumentControlRelay.h"

#include <QByteArray>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <memory>
#include <optional>

class QLabel;
class QPushButton;

namespace quorlin {

namespace apptools {
class iTunesQueryHelperAppObject;
}

class FieldViewController;
class InstrumentChooser;
class InstrumentController;

// The control of a file-based instrument (data, image, custom plist, app
// selector): choose or drop a file, see what is there, clear it. Whether a
// file is taken is the instrument's call; a refusal shows on the row.
class FileInstrumentWidget : public QWidget {
    Q_OBJECT
public:
    FileInstrumentWidget(FieldViewController& field, InstrumentController& controller,
                         QWidget* parent = nullptr);
    ~FileInstrumentWidget() override;

    // Where "Choose…" and export ask for a file or an app.
    void setChooser(std::shared_ptr<InstrumentChooser> chooser);

    void choose();
    // A chosen or dropped file: it becomes the value, or its refusal shows.
    void useFile(const QString& path);
    void clear();
    void exportValue();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void refresh();
    void refreshPreview();
    void showRefusal(const std::optional<InstrumentAlert>& refusal);
    QString summaryText() const;
    QString chooseButtonTitle() const;
    QStringList allowedExtensions() const;
    bool showsButtons() const;
    bool hasValue() const;
    std::optional<QByteArray> storedData() const;
    // An app field watches the App Store's name and icon of its identifier.
    void watchApp(const std::optional<QString>& bundleId);
    void unwatchApp();

    FieldViewController& m_field;
    InstrumentController& m_controller;
    std::shared_ptr<InstrumentChooser> m_chooser;
    QLabel* m_summary = nullptr;
    QLabel* m_preview = nullptr;
    QLabel* m_refusal = nullptr;
    QPushButton* m_chooseButton = nullptr;
    QPushButton* m_clearButton = nullptr;
    QPushButton* m_exportButton = nullptr;
    // The file the value came from, while the value is still its bytes.
    QString m_fileName;
    QByteArray m_fileBytes;
    InstrumentControlRelay m_relay;
    QPointer<apptools::iTunesQueryHelperAppObject> m_appObject;
};

} // namespace quorlin
