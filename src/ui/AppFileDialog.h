#pragma once

#include <QFileDialog>

namespace quorlin {

// An open panel for applications: program files, several at once, and
// application folders ("*.app"), which it chooses rather than enters.
class AppFileDialog : public QFileDialog {
    Q_OBJECT
public:
    explicit AppFileDialog(QWidget* parent = nullptr);

    // The chosen files and folders; empty when cancelled.
    static QStringList choose(QWidget* parent);

public Q_SLOTS:
    void accept() override;

private:
    QStringList m_chosenFolders;
};

} // namespace quorlin
