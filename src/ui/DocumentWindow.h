#pragma once

#include "documents/ProfileDocument.h"
#include "fields/FieldDisplaySettings.h"
#include "ui/SaveDialogPresenter.h"
#include "ui/WindowNoticePresenter.h"
#include "workspace/DocumentIssueList.h"
#include "workspace/EditHistory.h"
#include "workspace/PFMSectionCollection.h"
#include "workspace/SectionArrayController.h"

#include <QList>
#include <QMainWindow>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <memory>

class QAction;
class QMimeData;
class QMenu;
class QToolButton;

namespace quorlin {

class ContentView;
class IssuesPanel;
class PFMSection;
class SectionFilter;
class SectionListView;
class SectionSearchField;
class UserDefaults;
class ValidationSettings;
struct ApplicationActions;
struct ProfileDifference;

// The window of one profile document: the side-bar of sections, the form of
// the selected one, the toolbar and the commands. It owns the document and
// everything that edits it, the undo history included, whose distance from
// the saved state is the document's change count.
class DocumentWindow : public QMainWindow {
    Q_OBJECT

public:
    using Done = std::function<void(bool)>;

    // `document` has its profile (makeWindowControllers ran); `actions` may be null.
    DocumentWindow(std::unique_ptr<ProfileDocument> document, const Profile::DomainList& domains,
                   UserDefaults& defaults, const ApplicationActions* actions, QWidget* parent = nullptr);
    ~DocumentWindow() override;

    ProfileDocument& document() const { return *m_document; }
    EditHistory& history() { return m_history; }
    SectionArrayController& sections() { return m_sections; }
    SectionFilter& filter() const { return *m_filter; }
    PFMSection* selectedSection() const { return m_selectedSection; }
    ValidationSettings& validationSettings() const { return *m_validationSettings; }
    const FieldDisplaySettings& displaySettings() const { return m_displaySettings; }
    SectionListView* sectionListView() const { return m_sectionList; }
    ContentView* contentView() const { return m_content; }

    // The commands, by what they do; tests and menus reach the same.
    QAction* addPayloadAction() const { return m_addAction; }
    QAction* removePayloadAction() const { return m_removeAction; }
    QAction* populateAction() const { return m_populateAction; }
    QAction* exportAction() const { return m_exportAction; }
    QAction* showInFileManagerAction() const { return m_showInFileManagerAction; }
    QAction* openDocumentationAction() const { return m_openDocumentationAction; }
    QAction* undoAction() const { return m_undoAction; }
    QAction* redoAction() const { return m_redoAction; }
    QAction* saveAction() const { return m_saveAction; }
    QAction* saveToQuorlinLibraryAction() const { return m_saveToLibraryAction; }
    QAction* findAction() const { return m_findAction; }
    QAction* encryptForAction() const { return m_encryptForAction; }
    QAction* doNotEncryptAction() const { return m_doNotEncryptAction; }
    static inline const QString recipientsDialogObjectName = QStringLiteral("recipientsDialog");
    QAction* configuredOnlyAction() const { return m_configuredOnlyAction; }
    QAction* compareWithAction() const { return m_compareWithAction; }
    QAction* compareWithSavedAction() const { return m_compareWithSavedAction; }
    // Asks for the file that "Compare With…" compares with; empty for none.
    void setComparisonFileChooser(std::function<QString()> choose) {
        m_chooseComparisonFile = std::move(choose);
    }
    // Opens a comparison window of the file (the older) and the document.
    void compareWith(const QString& filePath);
    // Selects the section of the difference's payload and shows its field.
    void showDifference(const ProfileDifference& difference);
    QAction* nextErrorAction() const { return m_nextErrorAction; }
    QAction* showAsPropertyListAction() const { return m_showAsPropertyListAction; }
    QAction* previousErrorAction() const { return m_previousErrorAction; }
    IssuesPanel* issuesPanel() const { return m_issuesPanel; }

    void selectSection(PFMSection* section);
    void setSigningIdentityTrust(std::function<bool(const QString& identityName)> isTrusted);
    // Acting on `payloadIndexes` when given; with several payloads and none
    // given, the user is asked which.
    void removePayloads(PFMSection& section, const QList<int>& payloadIndexes = {});
    void populateDefaultValues(PFMSection& section, const QList<int>& payloadIndexes = {});
    void addPayload(PFMSection& section);
    // Lists what the profile keeps though the manifests don't allow it, all
    // ticked; removing is one step of the history.
    void removeValuesTheManifestsDontAllow();
    QAction* removeHeldValuesAction() const { return m_removeHeldValuesAction; }
    // The section the payload commands act on: the clicked row, else the selection.
    PFMSection* commandSection() const;
    void updateCommandStates();
    // Selects the field's section, scrolls to its row and focuses it.
    void goToIssue(const DocumentIssueList::Location& location);
    void goToAdjacentIssue(DocumentIssueList::Direction direction);

    // Asks about invalid values, then for a place when needed; `done` learns
    // whether the file was written.
    void save(ProfileDocument::SaveOperation operation, Done done = {});
    void saveToQuorlinLibrary();
    // Asks about unsaved changes (Save, Don't Save, Cancel); `done` learns
    // whether the window may close. Closing then is the caller's.
    void askToClose(Done done);
    // Closes without asking again.
    void closeApproved();
    // The sum of the errors of every form that was built, counted afresh.
    int invalidValueCount();

    static inline const QString closeQuestionObjectName = QStringLiteral("closeQuestion");
    static inline const QString dontSaveTitle = QStringLiteral("Don't Save");

Q_SIGNALS:
    void closeRequested(DocumentWindow* window);
    void revertRequested(DocumentWindow* window);
    void openFilesRequested(const QStringList& filePaths);
    void documentSaved(const QString& filePath);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    class ValidationFollower;

    void buildLayout();
    void buildActions();
    void buildMenus();
    void buildToolbar();
    QMenu* buildViewMenu();
    void addDisplayToggle(QMenu& menu, const QString& title, const QString& defaultsKey,
                          bool FieldDisplaySettings::*field);
    void applyDisplaySettings();
    void addDensityMenu(QMenu& view);
    void bindSections();
    void setUpDocument();
    bool applyProfileProperties();
    void focusPayloadDisplayName();
    void validateAllSections();
    void followSelection(PFMSection* now, PFMSection* left);
    void followFilters();
    void showSectionMenu(PFMSection* clicked, const QPoint& globalPosition);
    void exportPayload(PFMSection& section);
    void exportPayloadAt(PFMSection& section, int index);
    void showInFileManager();
    void openDocumentation();
    void followRemovalPasswordPayloads();
    void addPayloadFromFile(PFMSection& section);
    void countUntrackedEdit();
    void revalidateForms();
    void buildIssuesPanel();
    void reloadRawEditor();
    void refreshIssues();
    std::optional<DocumentIssueList::Location> focusedFieldLocation() const;
    void updateTitle();
    QStringList payloadTitles(const PFMSection& section) const;
    ProfileDocument::SaveCompletion saveCompletion(Done done);
    static QStringList profileFilesIn(const QMimeData* data);
    void buildEncryptionActions();
    void chooseRecipients();
    void encryptFor(const QStringList& certificateFiles);
    void showDecryptedPayloads();
    void updateEncryptionStates();

    std::unique_ptr<ProfileDocument> m_document;
    UserDefaults& m_defaults;
    const ApplicationActions* m_applicationActions;
    PFMSectionCollection m_sectionCollection;
    SectionArrayController m_sections;
    EditHistory m_history;
    // Edits that the history can't undo (a payload made of a file, a
    // removed unknown payload); they count until the next save.
    int m_untrackedEdits = 0;
    std::shared_ptr<ValidationSettings> m_validationSettings;
    std::shared_ptr<ValidationFollower> m_validationFollower;
    FieldDisplaySettings m_displaySettings;
    std::unique_ptr<SectionFilter> m_filter;
    WindowNoticePresenter m_noticePresenter;
    SaveDialogPresenter m_savePresenter;
    QPointer<PFMSection> m_selectedSection;
    bool m_closeApproved = false;

    SectionListView* m_sectionList = nullptr;
    ContentView* m_content = nullptr;
    SectionSearchField* m_searchField = nullptr;
    QToolButton* m_validationButton = nullptr;
    QAction* m_addAction = nullptr;
    QAction* m_removeAction = nullptr;
    QAction* m_populateAction = nullptr;
    QAction* m_exportAction = nullptr;
    QAction* m_showInFileManagerAction = nullptr;
    QAction* m_openDocumentationAction = nullptr;
    QAction* m_undoAction = nullptr;
    QAction* m_redoAction = nullptr;
    QAction* m_saveAction = nullptr;
    QAction* m_saveToLibraryAction = nullptr;
    QAction* m_saveAsAction = nullptr;
    QAction* m_revertAction = nullptr;
    QAction* m_closeAction = nullptr;
    QAction* m_findAction = nullptr;
    QAction* m_removeHeldValuesAction = nullptr;
    QAction* m_configuredOnlyAction = nullptr;
    QAction* m_compareWithAction = nullptr;
    QAction* m_compareWithSavedAction = nullptr;
    std::function<QString()> m_chooseComparisonFile;

    void buildCompareActions();
    void bringIntoView(const ProfileDifference& difference);
    QAction* m_encryptForAction = nullptr;
    QAction* m_doNotEncryptAction = nullptr;
    QAction* m_nextErrorAction = nullptr;
    QAction* m_showAsPropertyListAction = nullptr;
    QAction* m_previousErrorAction = nullptr;
    IssuesPanel* m_issuesPanel = nullptr;
    bool m_issuesRefreshPending = false;
};

} // namespace quorlin
