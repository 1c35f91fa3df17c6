#include "ui/DocumentWindow.h"

#include "documents/ProfileDocumentBundled.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "ui/ApplicationActions.h"
#include "ui/CommandAvailability.h"
#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/IssuesPanel.h"
#include "ui/PayloadFormView.h"
#include "ui/PayloadSelectorDialog.h"
#include "ui/PlatformFilterButtons.h"
#include "ui/SectionFormView.h"
#include "ui/SectionListView.h"
#include "ui/SectionSearchField.h"
#include "ui/ValidationOptionsPanel.h"
#include "validation/ValidationSettings.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"
#include "workspace/SectionFilter.h"

#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QIcon>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMetaMethod>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QUndoStack>
#include <QUrl>
#include <QWidgetAction>

namespace quorlin {

namespace {

const QString profileSuffix = QStringLiteral("mobileconfig");
const QString payloadDisplayNameName = QStringLiteral("PayloadDisplayName");
const QString& compactDensityName = DefaultsValue::formDensityCompact;
const QString& comfortableDensityName = DefaultsValue::formDensityComfortable;

void applyState(QAction* action, const CommandAvailability::State& state, const QString& tip) {
    action->setEnabled(state.enabled);
    const QString shown = state.enabled ? tip : state.reason;
    action->setToolTip(shown);
    action->setStatusTip(shown);
}

} // namespace

// Validation settings hold their delegate weakly; the window's lifetime
// ends the link.
class DocumentWindow::ValidationFollower : public ValidationSettingsDelegate {
public:
    explicit ValidationFollower(DocumentWindow& window)
        : m_window(window) {}
    void validationSettingsDidChange(ValidationSettings&) override { m_window.revalidateForms(); }

private:
    DocumentWindow& m_window;
};

DocumentWindow::DocumentWindow(std::unique_ptr<ProfileDocument> document, const Profile::DomainList& domains,
                               UserDefaults& defaults, const ApplicationActions* actions, QWidget* parent)
    : QMainWindow(parent)
    , m_document(std::move(document))
    , m_defaults(defaults)
    , m_applicationActions(actions)
    , m_sectionCollection(domains)
    , m_validationSettings(std::make_shared<ValidationSettings>(defaults))
    , m_validationFollower(std::make_shared<ValidationFollower>(*this))
    , m_filter(std::make_unique<SectionFilter>(m_sections, defaults))
    , m_noticePresenter(*this)
    , m_savePresenter(*this) {
    setAttribute(Qt::WA_DeleteOnClose, false);
    setAcceptDrops(true);
    setMinimumSize(1024, 700);
    m_document->setNoticePresenter(&m_noticePresenter);
    m_document->setSavePanelPresenter(&m_savePresenter);
    m_document->setChangeCountSource([this] { return m_history.changeCount() + m_untrackedEdits; });
    m_document->setRemovalPasswordPayloadsHandler([this] { followRemovalPasswordPayloads(); });
    // An opened file starts with no targets, leaving the remembered choice to new windows.
    if (m_document->shouldBeValueValidatedOnLaunch() == true)
        m_validationSettings->resetWithoutSaving();
    m_validationSettings->setDelegate(m_validationFollower);
    m_displaySettings.showFieldName = defaults.boolean(DefaultsKey::lastChoiceViewPropertyNames) == true;
    m_displaySettings.showSupervisionTag =
        defaults.boolean(DefaultsKey::lastChoiceShowSupervisionTags) == true;
    m_displaySettings.showRequirementTag =
        defaults.boolean(DefaultsKey::lastChoiceShowRequirementTags) == true;
    m_displaySettings.showPlatformTag = defaults.boolean(DefaultsKey::lastChoiceShowPlatformTags) == true;
    m_displaySettings.showPlatformTagOnlyWhenDifferent =
        defaults.boolean(DefaultsKey::lastChoiceShowPlatformTagsWhenDifferent) == true;
    m_displaySettings.showPropertyDocumentationButton =
        defaults.boolean(DefaultsKey::lastChoiceShowPropertyDocumentationButtons) == true;
    m_displaySettings.showBooleanDescription =
        defaults.boolean(DefaultsKey::lastChoiceShowingBooleanDescriptions) == true;
    m_displaySettings.filteredForPlatforms = m_filter->filteredForPlatforms();
    m_displaySettings.compactDensity =
        defaults.string(DefaultsKey::lastChoiceFormDensity) == compactDensityName;

    buildActions();
    buildLayout();
    buildMenus();
    buildToolbar();
    connect(&m_history, &EditHistory::changeCountChanged, this, &DocumentWindow::updateTitle);
    connect(&m_history.undoStack(), &QUndoStack::indexChanged, this, &DocumentWindow::updateCommandStates);
    connect(&m_sections, &SectionArrayController::arrangedObjectsChanged, this,
            &DocumentWindow::updateCommandStates);
    connect(m_filter.get(), &SectionFilter::selectedSectionChanged, this,
            [this](PFMSection* now, PFMSection* left) { followSelection(now, left); });
    connect(m_filter.get(), &SectionFilter::filtersChanged, this, &DocumentWindow::followFilters);
    connect(m_filter.get(), &SectionFilter::highlightedTermChanged, this, &DocumentWindow::followFilters);
    setUpDocument();
    updateTitle();
    updateCommandStates();
    qApp->installEventFilter(this);
}

DocumentWindow::~DocumentWindow() {
    // The history and the sections outlive the views and still signal while
    // they go (clearing the undo stack moves its index): nothing of this
    // window may answer them then.
    disconnect(&m_history.undoStack(), nullptr, this, nullptr);
    disconnect(&m_sections, nullptr, this, nullptr);
    // The views reach into the sections and the history, which go before
    // QWidget's own destructor would delete them.
    qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
    m_issuesPanel = nullptr;
    // The document's hooks point into this window.
    m_document->setNoticePresenter(nullptr);
    m_document->setSavePanelPresenter(nullptr);
    m_document->setChangeCountSource({});
    m_document->setRemovalPasswordPayloadsHandler({});
}

// ---- Layout

void DocumentWindow::buildLayout() {
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("documentSplitter"));
    m_sectionList = new SectionListView(m_sections, splitter);
    m_sectionList->setAccessibleName(QStringLiteral("Sections"));
    m_content = new ContentView(splitter);
    m_content->setAccessibleName(QStringLiteral("Settings"));
    m_content->setFieldDisplaySettings(m_displaySettings);
    m_content->setProfile(m_document->profile());
    splitter->addWidget(m_sectionList);
    splitter->addWidget(m_content);
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setCollapsible(1, false);
    splitter->setSizes({280, 744});
    setCentralWidget(splitter);
    setTabOrder(m_sectionList, m_content);
    statusBar();

    connect(m_sectionList, &SectionListView::contextMenuRequested, this, &DocumentWindow::showSectionMenu);
    connect(m_sectionList, &SectionListView::badgeClicked, this, [this](PFMSection* section) {
        const auto issues = DocumentIssueList::collect({section});
        if (!issues.isEmpty())
            goToIssue(issues.first().location);
    });
    buildIssuesPanel();
    connect(m_content, &ContentView::addPayloadRequested, this, [this](PFMSection* section) {
        if (section)
            addPayload(*section);
    });
    connect(m_content, &ContentView::removePayloadRequested, this, [this](PFMSection* section, int index) {
        if (section)
            removePayloads(*section, {index});
    });
    connect(m_content, &ContentView::unfamiliarPropertiesRemoveRequested, this,
            [this](PFMSection*, const Payload::Pointer& payload) {
                m_history.removeUnfamiliarPreferenceKeys(payload);
            });
    connect(&m_history, &EditHistory::unfamiliarPreferenceKeysChanged, this, [this] {
        if (SectionFormView* form = m_content->sectionFormView())
            form->refresh();
    });
    connect(m_content, &ContentView::unfamiliarPayloadEdited, this,
            [this](PFMSection*, const QString& type, int ordinal, const plist::Dictionary& after) {
                if (!m_history.replaceUnfamiliarPayload(m_document->profile(), type, ordinal, after))
                    statusBar()->showMessage(QStringLiteral("The payload's type can't change here."), 3000);
            });
    connect(
        m_content, &ContentView::payloadDictionaryEdited, this,
        [this](const Payload::Pointer& payload, const plist::Dictionary& after) {
            if (m_history.setPayloadDictionary(payload, after))
                return;
            statusBar()->showMessage(
                QStringLiteral("The manifest doesn't allow this: a value of another type than it describes."),
                5000);
            reloadRawEditor();
        });
    // The raw editor shows what the payload holds after an edit, an undo or a redo.
    connect(&m_history, &EditHistory::unfamiliarPayloadChanged, this, &DocumentWindow::reloadRawEditor);
    connect(&m_history.undoStack(), &QUndoStack::indexChanged, this, [this] {
        if (m_content->showsPropertyList())
            reloadRawEditor();
    });
    // The signing choice isn't a key of the profile; the history doesn't see it.
    connect(m_content, &ContentView::saveSignedWithCommonNameEdited, this,
            &DocumentWindow::countUntrackedEdit);
}

void DocumentWindow::buildActions() {
    const auto make = [this](const QString& title, QKeySequence shortcut, auto slot) {
        auto* action = new QAction(title, this);
        action->setShortcut(shortcut);
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    m_closeAction =
        make(QStringLiteral("&Close"), QKeySequence::Close, [this] { Q_EMIT closeRequested(this); });
    m_saveAction = make(QStringLiteral("&Save"), QKeySequence::Save,
                        [this] { save(ProfileDocument::SaveOperation::save); });
    m_saveAsAction = make(QStringLiteral("Save &As…"), QKeySequence::SaveAs,
                          [this] { save(ProfileDocument::SaveOperation::saveAs); });
    m_saveToLibraryAction =
        make(QStringLiteral("Save to Quorlin &Library"), QKeySequence(), [this] { saveToQuorlinLibrary(); });
    m_saveToLibraryAction->setObjectName(QStringLiteral("saveToQuorlinLibraryAction"));
    m_revertAction =
        make(QStringLiteral("Re&vert to Saved"), QKeySequence(), [this] { Q_EMIT revertRequested(this); });
    m_exportAction = make(QStringLiteral("&Export Payload…"), QKeySequence(), [this] {
        if (PFMSection* section = commandSection())
            exportPayload(*section);
    });
    m_showInFileManagerAction =
        make(QStringLiteral("Show in File &Manager"), QKeySequence(), [this] { showInFileManager(); });
    buildCompareActions();
    m_addAction =
        make(QStringLiteral("&Add Payload"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N), [this] {
            if (PFMSection* section = commandSection())
                addPayload(*section);
        });
    m_addAction->setIcon(QIcon::fromTheme(QStringLiteral("list-add")));
    m_removeAction = make(QStringLiteral("&Remove Payload"), QKeySequence(), [this] {
        if (PFMSection* section = commandSection())
            removePayloads(*section);
    });
    m_removeAction->setIcon(QIcon::fromTheme(QStringLiteral("list-remove")));
    m_populateAction = make(QStringLiteral("&Populate Default Values"), QKeySequence(), [this] {
        if (PFMSection* section = commandSection())
            populateDefaultValues(*section);
    });
    m_openDocumentationAction =
        make(QStringLiteral("Open &Documentation"), QKeySequence(), [this] { openDocumentation(); });
    m_findAction = make(QStringLiteral("&Find"), QKeySequence::Find,
                        [this] { m_searchField->setFocus(Qt::ShortcutFocusReason); });
    m_removeHeldValuesAction = make(QStringLiteral("Remove Values the Manifests Don't Allow…"),
                                    QKeySequence(), [this] { removeValuesTheManifestsDontAllow(); });
    m_undoAction = m_history.undoStack().createUndoAction(this, QStringLiteral("&Undo"));
    m_undoAction->setShortcut(QKeySequence::Undo);
    m_redoAction = m_history.undoStack().createRedoAction(this, QStringLiteral("&Redo"));
    m_redoAction->setShortcut(QKeySequence::Redo);
    m_configuredOnlyAction = new QAction(QStringLiteral("Show Configured Only"), this);
    m_configuredOnlyAction->setCheckable(true);
    m_configuredOnlyAction->setIcon(QIcon::fromTheme(QStringLiteral("view-filter")));
    connect(m_configuredOnlyAction, &QAction::toggled, this,
            [this](bool on) { m_filter->setPredicateConfiguredOnlyActive(on); });
    buildEncryptionActions();
    m_nextErrorAction = make(QStringLiteral("Next &Error"), QKeySequence(Qt::Key_F8),
                             [this] { goToAdjacentIssue(DocumentIssueList::Direction::next); });
    m_showAsPropertyListAction = new QAction(QStringLiteral("Show as Property &List"), this);
    m_showAsPropertyListAction->setCheckable(true);
    m_showAsPropertyListAction->setShortcut(QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_P));
    connect(m_showAsPropertyListAction, &QAction::toggled, this,
            [this](bool on) { m_content->setShowsPropertyList(on); });
    m_previousErrorAction = make(QStringLiteral("Pre&vious Error"), QKeySequence(Qt::SHIFT | Qt::Key_F8),
                                 [this] { goToAdjacentIssue(DocumentIssueList::Direction::previous); });
}

void DocumentWindow::buildMenus() {
    const ApplicationActions* app = m_applicationActions;
    const auto addIf = [](QMenu* menu, QAction* action) {
        if (action)
            menu->addAction(action);
    };
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    if (app) {
        addIf(file, app->newDocument);
        addIf(file, app->open);
        addIf(file, app->inspectApp);
        if (app->fillRecentMenu) {
            QMenu* recent = file->addMenu(QStringLiteral("Open &Recent"));
            connect(recent, &QMenu::aboutToShow, this, [recent, fill = app->fillRecentMenu] {
                recent->clear();
                fill(*recent);
            });
        }
        file->addSeparator();
    }
    file->addAction(m_closeAction);
    addIf(file, app ? app->closeAll : nullptr);
    file->addAction(m_saveAction);
    file->addAction(m_saveAsAction);
    file->addAction(m_saveToLibraryAction);
    connect(file, &QMenu::aboutToShow, this, &DocumentWindow::updateCommandStates);
    file->addAction(m_revertAction);
    file->addSeparator();
    file->addAction(m_encryptForAction);
    file->addAction(m_doNotEncryptAction);
    file->addSeparator();
    file->addAction(m_exportAction);
    file->addAction(m_showInFileManagerAction);
    file->addSeparator();
    file->addAction(m_compareWithAction);
    file->addAction(m_compareWithSavedAction);
    // Only a document with a file has a saved version.
    connect(file, &QMenu::aboutToShow, this,
            [this] { m_compareWithSavedAction->setEnabled(m_document->filePath().has_value()); });
    if (app && app->quit) {
        file->addSeparator();
        file->addAction(app->quit);
    }

    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Edit"));
    edit->addAction(m_undoAction);
    edit->addAction(m_redoAction);
    edit->addSeparator();
    // The standard editing commands act on the focused text field.
    const auto sendToFocus = [](const char* slot) {
        return [slot] {
            if (QWidget* focus = QApplication::focusWidget())
                QMetaObject::invokeMethod(focus, slot);
        };
    };
    const auto addStandard = [&](const QString& title, QKeySequence::StandardKey key, const char* slot) {
        QAction* action = edit->addAction(title);
        action->setShortcut(key);
        connect(action, &QAction::triggered, this, sendToFocus(slot));
    };
    addStandard(QStringLiteral("Cu&t"), QKeySequence::Cut, "cut");
    addStandard(QStringLiteral("&Copy"), QKeySequence::Copy, "copy");
    addStandard(QStringLiteral("&Paste"), QKeySequence::Paste, "paste");
    addStandard(QStringLiteral("Select &All"), QKeySequence::SelectAll, "selectAll");
    edit->addSeparator();
    edit->addAction(m_findAction);
    edit->addAction(m_removeHeldValuesAction);
    if (app && app->preferences) {
        edit->addSeparator();
        edit->addAction(app->preferences);
    }

    buildViewMenu();

    QMenu* payload = menuBar()->addMenu(QStringLiteral("&Payload"));
    payload->addAction(m_addAction);
    payload->addAction(m_removeAction);
    payload->addAction(m_populateAction);
    payload->addSeparator();
    payload->addAction(m_openDocumentationAction);

    QMenu* window = menuBar()->addMenu(QStringLiteral("&Window"));
    QAction* minimize = window->addAction(QStringLiteral("&Minimize"), this, &QWidget::showMinimized);
    minimize->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_M));
    if (app) {
        window->addSeparator();
        addIf(window, app->manifestUpdates);
        addIf(window, app->reloadAllProfiles);
    }
    if (app && app->fillWindowMenu) {
        QAction* windowsStart = window->addSeparator();
        connect(window, &QMenu::aboutToShow, this, [window, windowsStart, fill = app->fillWindowMenu] {
            const QList<QAction*> actions = window->actions();
            for (qsizetype index = actions.indexOf(windowsStart) + 1; index < actions.size(); ++index)
                delete actions[index];
            fill(*window);
        });
    }

    if (app && (app->help || app->about)) {
        QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
        addIf(help, app->help);
        addIf(help, app->about);
    }
}

QMenu* DocumentWindow::buildViewMenu() {
    QMenu* view = menuBar()->addMenu(QStringLiteral("&View"));
    addDisplayToggle(*view, QStringLiteral("Show Property &Names"), DefaultsKey::lastChoiceViewPropertyNames,
                     &FieldDisplaySettings::showFieldName);
    addDisplayToggle(*view, QStringLiteral("Show &Supervision Tags"),
                     DefaultsKey::lastChoiceShowSupervisionTags, &FieldDisplaySettings::showSupervisionTag);
    addDisplayToggle(*view, QStringLiteral("Show &Requirement Tags"),
                     DefaultsKey::lastChoiceShowRequirementTags, &FieldDisplaySettings::showRequirementTag);
    addDisplayToggle(*view, QStringLiteral("Show &Platform Tags"), DefaultsKey::lastChoiceShowPlatformTags,
                     &FieldDisplaySettings::showPlatformTag);
    addDisplayToggle(*view, QStringLiteral("Show Platform Tags Only When &Different"),
                     DefaultsKey::lastChoiceShowPlatformTagsWhenDifferent,
                     &FieldDisplaySettings::showPlatformTagOnlyWhenDifferent);
    addDisplayToggle(*view, QStringLiteral("Show &Documentation Buttons"),
                     DefaultsKey::lastChoiceShowPropertyDocumentationButtons,
                     &FieldDisplaySettings::showPropertyDocumentationButton);
    addDisplayToggle(*view, QStringLiteral("Show &Boolean Descriptions"),
                     DefaultsKey::lastChoiceShowingBooleanDescriptions,
                     &FieldDisplaySettings::showBooleanDescription);
    addDensityMenu(*view);
    view->addSeparator();
    view->addAction(m_configuredOnlyAction);
    view->addSeparator();
    view->addAction(m_showAsPropertyListAction);
    view->addAction(m_issuesPanel->toggleViewAction());
    view->addAction(m_nextErrorAction);
    view->addAction(m_previousErrorAction);
    return view;
}

void DocumentWindow::addDisplayToggle(QMenu& menu, const QString& title, const QString& defaultsKey,
                                      bool FieldDisplaySettings::*field) {
    QAction* action = menu.addAction(title);
    action->setCheckable(true);
    action->setChecked(m_displaySettings.*field);
    action->setObjectName(defaultsKey);
    connect(action, &QAction::toggled, this, [this, defaultsKey, field](bool on) {
        m_defaults.set(defaultsKey, plist::Value(on));
        m_displaySettings.*field = on;
        applyDisplaySettings();
    });
}

void DocumentWindow::addDensityMenu(QMenu& view) {
    QMenu* density = view.addMenu(QStringLiteral("Form D&ensity"));
    density->setObjectName(DefaultsKey::lastChoiceFormDensity);
    auto* choices = new QActionGroup(density);
    for (const bool compact : {false, true}) {
        QAction* action =
            density->addAction(compact ? QStringLiteral("&Compact") : QStringLiteral("C&omfortable"));
        action->setObjectName(compact ? compactDensityName : comfortableDensityName);
        action->setCheckable(true);
        action->setChecked(m_displaySettings.compactDensity == compact);
        choices->addAction(action);
        connect(action, &QAction::triggered, this, [this, compact] {
            m_defaults.set(DefaultsKey::lastChoiceFormDensity,
                           plist::Value(compact ? compactDensityName : comfortableDensityName));
            m_displaySettings.compactDensity = compact;
            applyDisplaySettings();
        });
    }
}

void DocumentWindow::buildToolbar() {
    QToolBar* toolbar = addToolBar(QStringLiteral("Toolbar"));
    toolbar->setObjectName(QStringLiteral("documentToolbar"));
    toolbar->setMovable(false);
    toolbar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    auto* platforms = new PlatformFilterButtons(*m_filter, toolbar);
    platforms->setObjectName(QStringLiteral("filterPlatforms"));
    toolbar->addWidget(platforms);
    toolbar->addSeparator();
    toolbar->addAction(m_addAction);
    toolbar->addAction(m_removeAction);
    toolbar->addAction(m_exportAction);
    auto* spacer = new QWidget(toolbar);
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    toolbar->addWidget(spacer);
    if (m_applicationActions && m_applicationActions->makeUpdatesIndicator) {
        if (QWidget* indicator = m_applicationActions->makeUpdatesIndicator(toolbar))
            toolbar->addWidget(indicator);
    }
    toolbar->addAction(m_configuredOnlyAction);

    m_validationButton = new QToolButton(toolbar);
    m_validationButton->setObjectName(QStringLiteral("validationOptions"));
    m_validationButton->setText(QStringLiteral("Validation"));
    m_validationButton->setToolTip(QStringLiteral("Validation Options"));
    m_validationButton->setAccessibleName(QStringLiteral("Validation Options"));
    m_validationButton->setIcon(QIcon::fromTheme(QStringLiteral("dialog-ok-apply")));
    m_validationButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_validationButton->setCheckable(true);
    m_validationButton->setPopupMode(QToolButton::InstantPopup);
    auto* popup = new QMenu(m_validationButton);
    auto* panelAction = new QWidgetAction(popup);
    panelAction->setDefaultWidget(new ValidationOptionsPanel(*m_validationSettings, popup));
    popup->addAction(panelAction);
    m_validationButton->setMenu(popup);
    toolbar->addWidget(m_validationButton);

    m_searchField = new SectionSearchField(*m_filter, toolbar);
    m_searchField->setObjectName(QStringLiteral("search"));
    m_searchField->setAccessibleName(QStringLiteral("Search Preferences"));
    toolbar->addWidget(m_searchField);
    for (QAction* action : {m_addAction, m_removeAction, m_exportAction, m_configuredOnlyAction}) {
        if (QWidget* button = toolbar->widgetForAction(action))
            button->setAccessibleName(action->text().remove(u'&'));
    }
    revalidateForms();
}

// The forms narrow their rows to what the side-bar filters on, and mark what it searches.
void DocumentWindow::followFilters() {
    m_displaySettings.filteredForPlatforms = m_filter->filteredForPlatforms();
    // "Show Configured Only" narrows the forms too, to the rows that write out.
    m_displaySettings.filteredForConfigured = m_filter->predicateConfiguredOnlyActive();
    m_displaySettings.highlightedTerm = m_filter->highlightedTerm();
    applyDisplaySettings();
}

void DocumentWindow::applyDisplaySettings() {
    m_content->setFieldDisplaySettings(m_displaySettings);
    for (PFMSection* section : m_sections.content())
        section->setFieldDisplaySettings(m_displaySettings);
}

// ---- Set-up with the document

void DocumentWindow::bindSections() {
    const Profile::Pointer& profile = m_document->profile();
    m_sections.setContent(m_sectionCollection.sectionPointers());
    m_sections.addUnfamiliarSections(*profile);
    const std::weak_ptr<const ValidationSettings> settings = m_validationSettings;
    for (PFMSection* section : m_sections.content()) {
        section->setKeyValueWriter(m_history.keyValueWriter());
        section->setValidationSettings(settings);
        section->setFieldDisplaySettings(m_displaySettings);
        section->bind(profile);
        connect(section, &PFMSection::payloadsConfiguredChanged, this, &DocumentWindow::updateCommandStates);
    }
}

void DocumentWindow::setUpDocument() {
    if (!m_document->profile())
        return;
    const bool isNewProfile = applyProfileProperties() || !m_document->filePath();
    m_document->setPayloadsDecryptedHandler([this] { showDecryptedPayloads(); });
    m_document->presentOpeningNotices();
    bindSections();
    // The filter selects the first section that isn't a title as the rows arrive.
    if (m_document->shouldBeValueValidatedOnLaunch() == true)
        validateAllSections();
    if (isNewProfile)
        QTimer::singleShot(0, this, &DocumentWindow::focusPayloadDisplayName);
}

// A profile may carry the filters it was made with; a template opens on its
// own payload. True for a template.
bool DocumentWindow::applyProfileProperties() {
    const auto& properties = m_document->profile()->znthProfileProperties();
    if (!properties)
        return false;
    const plist::Value& filters = properties->value(QStringLiteral("PlatformFilters"));
    if (const plist::Array* platforms = filters.array()) {
        const auto holds = [platforms](const char* name) {
            return platforms->contains(plist::Value(QString::fromLatin1(name)));
        };
        // The profile's filters are its own, not the user's next choice.
        m_filter->setSuspendFilteringSaveToDefaults(true);
        m_filter->setFilteringForMacOS(holds("macos"));
        m_filter->setFilteringForIOS(holds("ios"));
        m_filter->setFilteringForTvOS(holds("tvos"));
        m_filter->setFilteringForWatchOS(holds("watchos"));
        m_filter->setSuspendFilteringSaveToDefaults(false);
    }
    const auto isNew = properties->number(QStringLiteral("IsNewProfile"));
    if (!isNew || *isNew == 0)
        return false;
    const auto payloadType = properties->string(QStringLiteral("PayloadType"));
    if (payloadType && !payloadType->isEmpty())
        m_configuredOnlyAction->setChecked(true);
    return true;
}

// A new profile wants a name first.
void DocumentWindow::focusPayloadDisplayName() {
    for (PFMSection* section : m_sections.arrangedObjects()) {
        const auto general = section->domains().constFind(QString());
        if (section->sectionKind() != PFMSection::Kinds::domain || general == section->domains().constEnd())
            continue;
        selectSection(section);
        SectionFormView* form = m_content->sectionFormView();
        if (!form || form->payloadViews().isEmpty())
            return;
        FieldRowView* row = form->payloadViews().first()->rowForKey(payloadDisplayNameName);
        if (row && !row->instrumentWidgets().isEmpty())
            row->instrumentWidgets().first()->setFocus(Qt::OtherFocusReason);
        return;
    }
}

void DocumentWindow::validateAllSections() {
    for (PFMSection* section : m_sections.arrangedObjects()) {
        if (PFMSectionViewController* form = section->sectionViewController())
            form->recountErrors();
    }
}

void DocumentWindow::revalidateForms() {
    if (m_validationButton) {
        m_validationButton->setChecked(m_validationSettings->targetingAnyPlatform() ||
                                       m_validationSettings->supervisionInvalidates());
    }
    const std::weak_ptr<const ValidationSettings> settings = m_validationSettings;
    for (PFMSection* section : m_sections.content()) {
        if (PFMSectionViewController* form = section->sectionViewController()) {
            form->setValidationSettings(settings);
            form->recountErrors();
        }
    }
    refreshIssues();
}

void DocumentWindow::followSelection(PFMSection* now, PFMSection* left) {
    // The badge of the section left shows what its fields hold now.
    if (left && left->sectionViewController())
        left->sectionViewController()->recountErrors();
    m_selectedSection = now;
    m_content->setSection(now);
    updateCommandStates();
}

void DocumentWindow::setSigningIdentityTrust(std::function<bool(const QString& identityName)> isTrusted) {
    m_content->setSigningIdentityTrust(std::move(isTrusted));
    // The form shown was built without it.
    m_content->setSection(nullptr);
    m_content->setSection(m_selectedSection);
}

void DocumentWindow::selectSection(PFMSection* section) {
    m_filter->selectSection(section);
}

// ---- Commands

PFMSection* DocumentWindow::commandSection() const {
    return m_sections.selectedOrClickedObject();
}

void DocumentWindow::updateCommandStates() {
    PFMSection* section = commandSection();
    applyState(m_addAction, CommandAvailability::addPayload(section),
               QStringLiteral("Add a payload of the section"));
    applyState(m_removeAction, CommandAvailability::removePayload(section),
               QStringLiteral("Remove a payload of the section"));
    const auto populateOrExport = CommandAvailability::populateOrExport(section);
    applyState(m_populateAction, populateOrExport, QStringLiteral("Fill every field with its default value"));
    applyState(m_exportAction, populateOrExport, QStringLiteral("Save a payload as a property list"));
    applyState(m_openDocumentationAction, CommandAvailability::openDocumentation(section),
               QStringLiteral("Open the section's documentation"));
    applyState(m_showInFileManagerAction,
               CommandAvailability::showInFileManager(m_document->filePath().has_value()),
               QStringLiteral("Show the document's file in the file manager"));
    m_revertAction->setEnabled(m_document->filePath().has_value() && m_document->isDocumentEdited());
    // Absent, not disabled, without the sibling product's library.
    const auto* bundled = dynamic_cast<const ProfileDocumentBundled*>(m_document.get());
    m_saveToLibraryAction->setVisible(bundled && bundled->hasQuorlinLibrary());
    updateEncryptionStates();
}

void DocumentWindow::showSectionMenu(PFMSection* clicked, const QPoint& globalPosition) {
    updateCommandStates();
    QMenu menu(this);
    menu.addAction(m_addAction);
    menu.addAction(m_removeAction);
    menu.addAction(m_populateAction);
    menu.addAction(m_exportAction);
    menu.addSeparator();
    menu.addAction(m_openDocumentationAction);
    if (clicked)
        menu.exec(globalPosition);
    m_sections.setClickedRow(std::nullopt);
    updateCommandStates();
}

void DocumentWindow::countUntrackedEdit() {
    ++m_untrackedEdits;
    updateTitle();
}

// ---- Saving and closing

int DocumentWindow::invalidValueCount() {
    int total = 0;
    for (PFMSection* section : m_sections.content()) {
        if (PFMSectionViewController* form = section->sectionViewController()) {
            form->recountErrors();
            total += form->errorCount();
        }
    }
    return total;
}

void DocumentWindow::save(ProfileDocument::SaveOperation operation, Done done) {
    auto completion = saveCompletion(std::move(done));
    // The repair the save would make by itself becomes a step of the history.
    m_history.repairBeforeSave(m_document->profile());
    if (operation == ProfileDocument::SaveOperation::saveAs)
        m_document->saveDocumentAs(invalidValueCount(), completion);
    else
        m_document->saveDocument(invalidValueCount(), completion);
}

void DocumentWindow::saveToQuorlinLibrary() {
    auto* bundled = dynamic_cast<ProfileDocumentBundled*>(m_document.get());
    if (!bundled)
        return;
    m_history.repairBeforeSave(m_document->profile());
    bundled->saveToQuorlinLibrary(saveCompletion({}));
}

// What follows a save, which may end after a notice was answered.
ProfileDocument::SaveCompletion DocumentWindow::saveCompletion(Done done) {
    QPointer<DocumentWindow> alive(this);
    return [this, alive, done](const Expected<ProfileDocument::SaveResult, DocumentError>& result) {
        if (!alive)
            return;
        if (!result)
            m_noticePresenter.presentError(result.error());
        if (!result || !result->saved) {
            m_history.dropRepairOfFailedSave();
        } else {
            m_history.markSaved();
            m_untrackedEdits = 0;
            updateTitle();
            Q_EMIT documentSaved(result->filePath);
        }
        updateCommandStates();
        if (done)
            done(result && result->saved);
    };
}

void DocumentWindow::askToClose(Done done) {
    if (!m_document->isDocumentEdited()) {
        done(true);
        return;
    }
    raise();
    activateWindow();
    auto* box = new QMessageBox(this);
    box->setObjectName(closeQuestionObjectName);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    box->setIcon(QMessageBox::Warning);
    box->setText(QStringLiteral("Do you want to save the changes made to the document “%1”?")
                     .arg(m_document->displayName()));
    box->setInformativeText(QStringLiteral("Your changes will be lost if you don't save them."));
    QPushButton* saveButton = box->addButton(QMessageBox::Save);
    QPushButton* discardButton = box->addButton(dontSaveTitle, QMessageBox::DestructiveRole);
    box->addButton(QMessageBox::Cancel);
    box->setDefaultButton(saveButton);
    QPointer<DocumentWindow> alive(this);
    connect(box, &QMessageBox::finished, this, [this, alive, box, saveButton, discardButton, done] {
        QAbstractButton* clicked = box->clickedButton();
        if (!alive)
            return;
        if (clicked == saveButton)
            save(ProfileDocument::SaveOperation::save, done);
        else
            done(clicked == discardButton);
    });
    box->open();
}

void DocumentWindow::closeApproved() {
    m_closeApproved = true;
    close();
}

void DocumentWindow::updateTitle() {
    setWindowTitle(m_document->displayName() + QStringLiteral("[*]"));
    setWindowModified(m_document->isDocumentEdited());
    if (m_document->filePath())
        setWindowFilePath(*m_document->filePath());
    if (m_revertAction)
        m_revertAction->setEnabled(m_document->filePath().has_value() && m_document->isDocumentEdited());
}

// ---- Events

void DocumentWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    // After this pass, so a notice finds its window mapped.
    QPointer<DocumentWindow> alive(this);
    QTimer::singleShot(0, this, [this, alive] {
        if (alive && isVisible())
            m_document->windowDidShow();
    });
}

void DocumentWindow::hideEvent(QHideEvent* event) {
    QMainWindow::hideEvent(event);
    m_document->windowDidHide();
}

// Every keystroke of a form is already a step of the history; a text field's
// own undo would only write its old text back as one more. So the form's
// fields leave Undo and Redo to the window.
bool DocumentWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::ShortcutOverride || !watched->isWidgetType())
        return QMainWindow::eventFilter(watched, event);
    auto* widget = static_cast<QWidget*>(watched);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (m_content && m_content->isAncestorOf(widget) &&
        (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo))) {
        event->ignore();
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

void DocumentWindow::closeEvent(QCloseEvent* event) {
    if (m_closeApproved) {
        event->accept();
        return;
    }
    // The document controller decides: it asks, and closes through closeApproved.
    event->ignore();
    if (isSignalConnected(QMetaMethod::fromSignal(&DocumentWindow::closeRequested))) {
        Q_EMIT closeRequested(this);
        return;
    }
    QPointer<DocumentWindow> alive(this);
    askToClose([alive](bool mayClose) {
        if (alive && mayClose)
            alive->closeApproved();
    });
}

QStringList DocumentWindow::profileFilesIn(const QMimeData* data) {
    QStringList files;
    if (!data)
        return files;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile() &&
            QFileInfo(url.toLocalFile()).suffix().compare(profileSuffix, Qt::CaseInsensitive) == 0)
            files.append(url.toLocalFile());
    }
    return files;
}

void DocumentWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!profileFilesIn(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void DocumentWindow::dropEvent(QDropEvent* event) {
    const QStringList files = profileFilesIn(event->mimeData());
    if (files.isEmpty())
        return;
    event->acceptProposedAction();
    Q_EMIT openFilesRequested(files);
}

} // namespace quorlin
