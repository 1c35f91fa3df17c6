#pragma once

#include "apptools/AppInformationViewModel.h"

#include <QString>
#include <QWidget>

#include <optional>

class QVBoxLayout;

namespace quorlin {

class NoticePresenter;

// A small window that shows what can be told about an application or a
// program file. It opens on a loading view, inspects the file on a worker
// thread, then shows a column of rows; a file that can't be inspected closes
// the window and raises an alert instead. Files and folders dropped on it
// open inspectors of their own.
class AppInspectorWindow : public QWidget {
    Q_OBJECT
public:
    static constexpr int inspectorWidth = 440;
    static constexpr int standardMargin = 20;

    AppInspectorWindow(QString path, NoticePresenter& notices, QWidget* parent = nullptr);

    const QString& path() const { return m_path; }
    // The loading view's label for a file name: "Loading Name.app...".
    static QString loadingText(const QString& fileName);

    // Opens an inspector for each path: the first centred, the others
    // cascaded from it.
    static void inspect(const QStringList& paths, NoticePresenter& notices);

Q_SIGNALS:
    // The rows are shown, or the window closed on a failure.
    void inspectionFinished(bool succeeded);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void start();
    void showModel(const apptools::AppInformationViewModel& model);
    void fail();
    void replaceContent(QWidget* content);

    QString m_path;
    NoticePresenter& m_notices;
    QVBoxLayout* m_layout = nullptr;
    QWidget* m_content = nullptr;
};

} // namespace quorlin
