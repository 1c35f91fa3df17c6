#pragma once

#include "apptools/AppSearchResult.h"
#include "apptools/ChosenApp.h"

#include <QDialog>
#include <QHash>
#include <QIcon>
#include <QPointer>

#include <optional>

class QLabel;
class QLineEdit;
#include <QNetworkReply>
class QPushButton;
class QTreeWidget;

namespace quorlin {

namespace apptools {
class iTunesQueryHelper;
}

// The sheet in which the user picks an app for a field that takes a bundle
// identifier: a search among the operating system's apps and in the App
// Store, with the typed text itself as a last choice, or an app chosen on
// disk. Read the choice after it closes with Accepted.
class AppSelectorSheet : public QDialog {
    Q_OBJECT
public:
    AppSelectorSheet(apptools::iTunesQueryHelper& helper, QWidget* parent = nullptr);
    ~AppSelectorSheet() override;

    const std::optional<QString>& chosenBundleId() const { return m_chosenBundleId; }
    const std::optional<QString>& chosenAppName() const { return m_chosenAppName; }
    const QIcon& chosenIcon() const { return m_chosenIcon; }
    // All that is known of the choice: an app from disk adds its icon file
    // and its signature's answers.
    std::optional<apptools::ChosenApp> chosenApp() const;
    const QList<apptools::AppSearchResult>& results() const { return m_results; }
    bool isSearching() const { return m_searchTask != nullptr; }

    // The search field's action: the rows for its text.
    void search();
    // Takes the selected row.
    void choose();
    // Takes an application or program file on disk; false when it can't be read as one.
    bool chooseFile(const QString& path);

Q_SIGNALS:
    void searchFinished();

private:
    void showResults(const QList<apptools::AppSearchResult>& results);
    void setSearching(bool searching);
    void fetchIcon(int row, const QUrl& url);

    apptools::iTunesQueryHelper& m_helper;
    QLineEdit* m_searchField = nullptr;
    QTreeWidget* m_table = nullptr;
    QLabel* m_busy = nullptr;
    QLabel* m_refusal = nullptr;
    QPushButton* m_chooseButton = nullptr;
    QPointer<QNetworkReply> m_searchTask;
    QList<apptools::AppSearchResult> m_results;
    QHash<QUrl, QIcon> m_icons;
    std::optional<QString> m_chosenBundleId;
    std::optional<QString> m_chosenAppName;
    QIcon m_chosenIcon;
    std::optional<apptools::ChosenApp> m_chosenFile;
};

} // namespace quorlin
