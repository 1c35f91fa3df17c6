#include "ui/DocumentController.h"

#include "documents/ProfileDocumentBundled.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "ui/DocumentWindow.h"
#include "ui/WindowNoticePresenter.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace quorlin {

namespace {

const QString untitledName = QStringLiteral("Untitled");
const QPoint cascadeStep(24, 24);

QString canonical(const QString& filePath) {
    const QString resolved = QFileInfo(filePath).canonicalFilePath();
    return resolved.isEmpty() ? QFileInfo(filePath).absoluteFilePath() : resolved;
}

// A window with a dialog up is in the middle of something; it isn't closed by the way.
bool hasDialogUp(const QWidget& window) {
    const QList<QDialog*> dialogs = window.findChildren<QDialog*>();
    return std::any_of(dialogs.begin(), dialogs.end(), [](QDialog* dialog) { return dialog->isVisible(); });
}

} // namespace

DocumentController::DocumentController(UserDefaults& defaults, Supply supply, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_supply(std::move(supply)) {}

DocumentController::~DocumentController() {
    for (DocumentWindow* window : std::exchange(m_windows, {}))
        delete window;
}

DocumentWindow* DocumentController::makeWindow(std::unique_ptr<ProfileDocument> document) {
    auto* window = new DocumentWindow(std::move(document), m_supply.domains(), m_defaults, m_actions);
    if (m_supply.isIdentityTrusted)
        window->setSigningIdentityTrust(m_supply.isIdentityTrusted);
    connect(window, &DocumentWindow::closeRequested, this,
            [this](DocumentWindow* closing) { closeDocument(closing); });
    connect(window, &DocumentWindow::revertRequested, this, &DocumentController::revertToSaved);
    connect(window, &DocumentWindow::openFilesRequested, this,
            [this, window](const QStringList& files) { openDocuments(files, window); });
    connect(window, &DocumentWindow::documentSaved, this, &DocumentController::noteRecentDocument);
    if (!m_windows.isEmpty())
        window->move(m_windows.last()->pos() + cascadeStep);
    m_windows.append(window);
    window->show();
    Q_EMIT windowsChanged();
    return window;
}

DocumentWindow* DocumentController::newDocument() {
    auto document = std::make_unique<ProfileDocumentBundled>(m_supply.domains(), m_supply.environment(),
                                                             m_defaults, m_supply.libraryFolder);
    document->setEventReporter(m_supply.eventReporter);
    int untitledCount = 0;
    for (DocumentWindow* window : m_windows)
        untitledCount += window->document().filePath() ? 0 : 1;
    if (untitledCount > 0)
        document->setDisplayName(QStringLiteral("%1 %2").arg(untitledName).arg(untitledCount + 1));
    if (!document->readFromData({}) || !document->makeWindowControllers())
        return nullptr;
    return makeWindow(std::move(document));
}

DocumentWindow* DocumentController::openUntitledAtLaunch() {
    const bool first = m_windows.isEmpty();
    DocumentWindow* window = newDocument();
    if (window && first)
        window->document().setTransient(true);
    return window;
}

DocumentWindow* DocumentController::windowForFile(const QString& filePath) const {
    const QString wanted = canonical(filePath);
    for (DocumentWindow* window : m_windows) {
        const auto& path = window->document().filePath();
        if (path && canonical(*path) == wanted)
            return window;
    }
    return nullptr;
}

Expected<DocumentWindow*, DocumentError> DocumentController::openDocument(const QString& filePath) {
    if (DocumentWindow* open = windowForFile(filePath)) {
        open->raise();
        open->activateWindow();
        return open;
    }
    auto document = std::make_unique<ProfileDocumentBundled>(m_supply.domains(), m_supply.environment(),
                                                             m_defaults, m_supply.libraryFolder);
    document->setEventReporter(m_supply.eventReporter);
    const auto read = document->readFromFile(filePath);
    if (!read)
        return fail(read.error());
    document->makeWindowControllers();
    DocumentWindow* window = makeWindow(std::move(document));
    closeTransientDocuments(window);
    noteRecentDocument(filePath);
    return window;
}

void DocumentController::closeTransientDocuments(DocumentWindow* except) {
    for (DocumentWindow* window : QList<DocumentWindow*>(m_windows)) {
        if (window != except && window->document().isTransient() && !hasDialogUp(*window))
            discardWindow(window);
    }
}

void DocumentController::openDocuments(const QStringList& filePaths, QWidget* reportOver) {
    QList<std::pair<QString, DocumentError>> failures;
    for (const QString& filePath : filePaths) {
        const auto opened = openDocument(filePath);
        if (!opened)
            failures.append({filePath, opened.error()});
    }
    if (failures.isEmpty())
        return;
    // The refusals need a window to stand on, and the program one to stay open for.
    if (m_windows.isEmpty())
        openUntitledAtLaunch();
    QWidget* over = reportOver ? reportOver : QApplication::activeWindow();
    if (!over && !m_windows.isEmpty())
        over = m_windows.last();
    for (const auto& [filePath, error] : failures)
        reportOpenFailure(filePath, error, over);
}

void DocumentController::reportOpenFailure(const QString& filePath, const DocumentError& error,
                                           QWidget* over) {
    // Refusals of other kinds of profile name the file in their words already.
    if (error.filePath) {
        WindowNoticePresenter::showError(over, error.words, error.words);
        return;
    }
    const QString title =
        QStringLiteral("The document “%1” could not be opened.").arg(QFileInfo(filePath).fileName());
    WindowNoticePresenter::showError(over, title, error.wordsWithReason(QStringLiteral("\n\n")));
}

void DocumentController::showOpenDialog(QWidget* parent) {
    auto* dialog = new QFileDialog(parent, QStringLiteral("Open"));
    dialog->setObjectName(QStringLiteral("openDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(parent ? Qt::WindowModal : Qt::ApplicationModal);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setNameFilters(
        {QStringLiteral("Configuration Profiles (*.mobileconfig)"), QStringLiteral("All Files (*)")});
    const QStringList recent = recentDocuments();
    if (!recent.isEmpty())
        dialog->setDirectory(QFileInfo(recent.first()).absolutePath());
    connect(dialog, &QFileDialog::filesSelected, this,
            [this, parent = QPointer<QWidget>(parent)](const QStringList& files) {
                openDocuments(files, parent);
            });
    dialog->open();
}

// ---- Closing

void DocumentController::closeDocument(DocumentWindow* window, std::function<void(bool closed)> done) {
    if (!m_windows.contains(window)) {
        if (done)
            done(true);
        return;
    }
    QPointer<DocumentWindow> closing(window);
    window->askToClose([this, closing, done](bool mayClose) {
        if (mayClose && closing)
            discardWindow(closing);
        if (done)
            done(mayClose);
    });
}

void DocumentController::discardWindow(DocumentWindow* window) {
    if (!m_windows.removeOne(window))
        return;
    if (m_pathsToReopen) {
        const auto& filePath = window->document().filePath();
        if (!filePath)
            ++m_untitledToReopen;
        else if (!m_pathsToReopen->contains(*filePath))
            m_pathsToReopen->append(*filePath);
    }
    window->closeApproved();
    window->deleteLater();
    Q_EMIT windowsChanged();
    if (m_windows.isEmpty() && !isReloading() && !m_reverting)
        Q_EMIT lastWindowClosed();
}

void DocumentController::closeAllDocuments(std::function<void(bool allClosed)> done) {
    QList<QPointer<DocumentWindow>> remaining;
    for (DocumentWindow* window : m_windows)
        remaining.append(window);
    closeNext(std::move(remaining), std::move(done));
}

// One at a time: each question waits for the answer before the next window asks.
void DocumentController::closeNext(QList<QPointer<DocumentWindow>> remaining,
                                   std::function<void(bool)> done) {
    while (!remaining.isEmpty() && !remaining.first())
        remaining.removeFirst();
    if (remaining.isEmpty()) {
        if (done)
            done(true);
        return;
    }
    DocumentWindow* next = remaining.takeFirst();
    closeDocument(next, [this, remaining, done](bool closed) {
        if (!closed) {
            if (done)
                done(false);
            return;
        }
        closeNext(remaining, done);
    });
}

void DocumentController::revertToSaved(DocumentWindow* window) {
    if (!window || !window->document().filePath())
        return;
    auto* box = new QMessageBox(window);
    box->setObjectName(QStringLiteral("revertQuestion"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    box->setIcon(QMessageBox::Warning);
    box->setText(
        QStringLiteral("Do you want to revert to the most recently saved version of the document “%1”?")
            .arg(window->document().displayName()));
    box->setInformativeText(QStringLiteral("Your current changes will be lost."));
    QPushButton* revertButton = box->addButton(QStringLiteral("Revert"), QMessageBox::DestructiveRole);
    box->addButton(QMessageBox::Cancel);
    QPointer<DocumentWindow> reverting(window);
    connect(box, &QMessageBox::finished, this, [this, box, revertButton, reverting] {
        if (box->clickedButton() != revertButton || !reverting)
            return;
        const QString filePath = *reverting->document().filePath();
        const QRect geometry = reverting->geometry();
        // The file is read afresh in a window of its own, where the old one stood.
        m_reverting = true;
        discardWindow(reverting);
        m_reverting = false;
        const auto opened = openDocument(filePath);
        if (opened) {
            (*opened)->setGeometry(geometry);
            return;
        }
        if (m_windows.isEmpty())
            openUntitledAtLaunch();
        reportOpenFailure(filePath, opened.error(), m_windows.value(0));
    });
    box->open();
}

// ---- Reloading

void DocumentController::reloadAllDocuments() {
    m_pathsToReopen = QStringList();
    m_untitledToReopen = 0;
    closeAllDocuments([this](bool allClosed) { reopenAfterCloseAll(allClosed); });
}

void DocumentController::reopenAfterCloseAll(bool allClosed) {
    if (!m_pathsToReopen) {
        m_untitledToReopen = 0;
        return;
    }
    // Cancelled: what was closed so far stays closed.
    if (!allClosed) {
        m_pathsToReopen.reset();
        m_untitledToReopen = 0;
        return;
    }
    if (m_pathsToReopen->isEmpty() && m_untitledToReopen == 0) {
        m_pathsToReopen.reset();
        Q_EMIT lastWindowClosed();
        return;
    }
    // After this pass, so the last question has gone before windows open.
    QTimer::singleShot(0, this, &DocumentController::reopenDocuments);
}

void DocumentController::reopenDocuments() {
    const QStringList paths = m_pathsToReopen.value_or(QStringList());
    // New documents stand in for untitled ones: what they held wasn't saved anywhere.
    for (; m_untitledToReopen > 0; --m_untitledToReopen)
        newDocument();
    QList<std::pair<QString, DocumentError>> failures;
    for (const QString& filePath : paths) {
        const auto opened = openDocument(filePath);
        if (!opened)
            failures.append({filePath, opened.error()});
    }
    m_pathsToReopen.reset();
    if (m_windows.isEmpty()) {
        Q_EMIT lastWindowClosed();
        return;
    }
    for (const auto& [filePath, error] : failures)
        reportOpenFailure(filePath, error, m_windows.last());
}

// ---- Menus

QStringList DocumentController::recentDocuments() const {
    QStringList paths;
    for (const plist::Value& item : m_defaults.array(recentDocumentsKey).value_or(plist::Array())) {
        if (const auto path = item.toString())
            paths.append(*path);
    }
    return paths;
}

void DocumentController::noteRecentDocument(const QString& filePath) {
    QStringList paths = recentDocuments();
    const QString absolute = QFileInfo(filePath).absoluteFilePath();
    paths.removeAll(absolute);
    paths.prepend(absolute);
    plist::Array items;
    for (const QString& path : paths.mid(0, recentDocumentsLimit))
        items.append(plist::Value(path));
    m_defaults.set(recentDocumentsKey, plist::Value(items));
}

void DocumentController::removeRecentDocument(const QString& filePath) {
    QStringList paths = recentDocuments();
    paths.removeAll(filePath);
    plist::Array items;
    for (const QString& path : paths)
        items.append(plist::Value(path));
    m_defaults.set(recentDocumentsKey, plist::Value(items));
}

void DocumentController::clearRecentDocuments() {
    m_defaults.remove(recentDocumentsKey);
}

void DocumentController::fillRecentMenu(QMenu& menu) {
    const QStringList paths = recentDocuments();
    for (const QString& path : paths) {
        QAction* action = menu.addAction(QFileInfo(path).fileName());
        action->setToolTip(path);
        action->setStatusTip(path);
        connect(action, &QAction::triggered, this, [this, path] {
            if (!QFileInfo::exists(path))
                removeRecentDocument(path);
            openDocuments({path});
        });
    }
    menu.addSeparator();
    QAction* clear =
        menu.addAction(QStringLiteral("Clear Menu"), this, &DocumentController::clearRecentDocuments);
    clear->setEnabled(!paths.isEmpty());
}

void DocumentController::fillWindowMenu(QMenu& menu) {
    for (DocumentWindow* window : m_windows) {
        QAction* action = menu.addAction(window->document().displayName());
        action->setCheckable(true);
        action->setChecked(window->isActiveWindow());
        connect(action, &QAction::triggered, window, [window] {
            window->showNormal();
            window->raise();
            window->activateWindow();
        });
    }
}

void DocumentController::updatePreferencesDefault(const QString& defaultsKey) {
    if (m_defaults.boolean(DefaultsKey::preferencesDefaultsAutomaticallyUpdate) != true)
        return;
    const QString name = defaultsKey == DefaultsKey::preferencesDefaultsOrganizationName
                             ? QStringLiteral(".PayloadOrganization")
                         : defaultsKey == DefaultsKey::preferencesDefaultsConsentText
                             ? QStringLiteral(".ConsentText")
                             : QString();
    if (name.isEmpty())
        return;
    const QString text = m_defaults.string(defaultsKey).value_or(QString());
    for (DocumentWindow* window : std::as_const(m_windows)) {
        const auto& profile = window->document().profile();
        const auto key = profile ? profile->preferencesDefault(name) : nullptr;
        if (key)
            window->history().setValue(key, plist::Value(text));
    }
}

} // namespace quorlin
