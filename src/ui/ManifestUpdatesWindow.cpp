#include "ui/ManifestUpdatesWindow.h"

#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "supply/GitHubManifestRepository.h"
#include "supply/GitHubRepositoryErrorWords.h"
#include "supply/UpdatingRepositoryStatus.h"

#include <QComboBox>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace quorlin {

namespace {

enum Page { checkingPage = 0, resultsPage = 1 };

QString dateString(const std::optional<plist::Date>& date) {
    if (!date)
        return {};
    return QLocale().toString(date->toDateTime().toLocalTime(), QLocale::ShortFormat);
}

} // namespace

ManifestUpdatesWindow::ManifestUpdatesWindow(UserDefaults& defaults, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_defaults(defaults) {
    setObjectName(QStringLiteral("manifestUpdatesWindow"));
    setWindowTitle(tr("Manifest Updates"));
    buildLayout();
    setState(State::reportingNoUpdates);
}

ManifestUpdatesWindow::~ManifestUpdatesWindow() = default;

void ManifestUpdatesWindow::buildLayout() {
    auto* layout = new QVBoxLayout(this);
    m_pages = new QStackedWidget(this);
    m_pages->addWidget(buildCheckingPage());
    m_pages->addWidget(buildResultsPage());
    layout->addWidget(m_pages);

    auto* buttons = new QHBoxLayout;
    m_commitLogButton = new QPushButton(tr("View Commit Log"), this);
    m_commitLogButton->setObjectName(QStringLiteral("commitLogButton"));
    connect(m_commitLogButton, &QPushButton::clicked, this, &ManifestUpdatesWindow::openCommitLog);
    m_reloadButton = new QPushButton(tr("Reload All Profiles"), this);
    m_reloadButton->setObjectName(QStringLiteral("reloadAllProfilesButton"));
    connect(m_reloadButton, &QPushButton::clicked, this, &ManifestUpdatesWindow::reloadAllProfilesRequested);
    auto* close = new QPushButton(tr("Close"), this);
    close->setObjectName(QStringLiteral("closeButton"));
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    buttons->addWidget(m_commitLogButton);
    buttons->addStretch();
    buttons->addWidget(m_reloadButton);
    buttons->addWidget(close);
    layout->addLayout(buttons);
    resize(560, 420);
}

QWidget* ManifestUpdatesWindow::buildCheckingPage() {
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->addStretch();
    layout->addWidget(new QLabel(tr("Checking for manifest updates…"), page));
    m_progress = new QProgressBar(page);
    m_progress->setObjectName(QStringLiteral("checkProgress"));
    m_progress->setRange(0, 0);
    layout->addWidget(m_progress);
    auto* cancel = new QPushButton(tr("Cancel"), page);
    cancel->setObjectName(QStringLiteral("cancelCheckButton"));
    connect(cancel, &QPushButton::clicked, this, &ManifestUpdatesWindow::cancelCheck);
    layout->addWidget(cancel, 0, Qt::AlignRight);
    layout->addStretch();
    return page;
}

QWidget* ManifestUpdatesWindow::buildResultsPage() {
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    m_message = new QLabel(page);
    m_message->setObjectName(QStringLiteral("updatesMessage"));
    m_message->setWordWrap(true);
    layout->addWidget(m_message);
    m_list = new QTreeWidget(page);
    m_list->setObjectName(QStringLiteral("updatedDomains"));
    m_list->setRootIsDecorated(false);
    m_list->setHeaderLabels({tr("Domain"), tr("Status"), tr("Date")});
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    layout->addWidget(m_list);
    m_dateOption = new QComboBox(page);
    m_dateOption->setObjectName(QStringLiteral("dateDisplayOption"));
    m_dateOption->addItem(tr("File Change Date"));
    m_dateOption->addItem(tr("Manifest Modification Date"));
    connect(m_dateOption, &QComboBox::currentIndexChanged, this, [this](int index) {
        setDateDisplayOption(index == 1 ? DateDisplayOption::manifestModification
                                        : DateDisplayOption::fileChange);
    });
    layout->addWidget(m_dateOption, 0, Qt::AlignRight);
    return page;
}

void ManifestUpdatesWindow::setRepository(UpdatingManifestRepository* repository, bool isMainRepository) {
    for (const auto& observation : std::exchange(m_observations, {}))
        disconnect(observation);
    m_status = repository ? &repository->status() : nullptr;
    m_gitHubRepository = dynamic_cast<GitHubManifestRepository*>(repository);
    m_isMainRepository = isMainRepository;
    m_commitLogButton->setVisible(m_gitHubRepository != nullptr);
    observeStatus();
    if (m_status)
        statusChanged();
}

void ManifestUpdatesWindow::observeStatus() {
    if (!m_status)
        return;
    m_observations << connect(m_status, &UpdatingRepositoryStatus::isCheckingForUpdatesChanged, this,
                              &ManifestUpdatesWindow::statusChanged);
    if (m_gitHubRepository) {
        m_observations << connect(m_gitHubRepository, &GitHubManifestRepository::downloadProgress, this,
                                  [this](int done, int total) {
                                      m_progress->setRange(0, total);
                                      m_progress->setValue(done);
                                  });
    }
}

void ManifestUpdatesWindow::statusChanged() {
    if (!m_status)
        return;
    if (m_status->isCheckingForUpdates()) {
        m_progress->setRange(0, 0);
        setState(State::checking);
        return;
    }
    if (!m_status->errors().isEmpty()) {
        m_errors = GitHubRepositoryErrorWords::reportMessage(m_status->errors(), m_isMainRepository);
        setState(State::reportingErrors);
        return;
    }
    showResults(m_status->lastResults().values());
    if (m_state == State::reportingNoUpdates && m_closeAfterUpdatesCheck)
        close();
}

void ManifestUpdatesWindow::showStoredResults(const QList<UpdateResultsItem>& items) {
    showResults(items);
}

void ManifestUpdatesWindow::showResults(const QList<UpdateResultsItem>& items) {
    m_errors.clear();
    m_items = items;
    fillList();
    if (m_items.isEmpty()) {
        setState(State::reportingNoUpdates);
        return;
    }
    setState(State::reportingUpdates);
    rememberNewestDate();
}

void ManifestUpdatesWindow::setShowingLastResults(bool showingLastResults) {
    m_showingLastResults = showingLastResults;
    // Taken now: listing the results moves the stored date past them.
    m_seenDate = m_defaults.date(DefaultsKey::lastShownOnlineManifestsUpdateModificationDate);
    fillList();
}

void ManifestUpdatesWindow::setDateDisplayOption(DateDisplayOption option) {
    m_dateDisplayOption = option;
    const int index = option == DateDisplayOption::manifestModification ? 1 : 0;
    if (m_dateOption->currentIndex() != index)
        m_dateOption->setCurrentIndex(index);
    fillList();
}

bool ManifestUpdatesWindow::isUnseen(const UpdateResultsItem& item) const {
    if (!m_showingLastResults || !item.manifestModificationDate)
        return true;
    return !m_seenDate ||
           item.manifestModificationDate->secondsSinceReferenceDate > m_seenDate->secondsSinceReferenceDate;
}

void ManifestUpdatesWindow::setKnownDomains(const QSet<QString>& domains) {
    m_knownDomains = domains;
    fillList();
}

QString ManifestUpdatesWindow::statusString(const UpdateResultsItem& item) const {
    if (item.status == UpdateResultsItem::UpdateStatuses::removed)
        return tr("Removed");
    return m_knownDomains.isEmpty() || m_knownDomains.contains(item.domain) ? tr("Updated") : tr("Added");
}

void ManifestUpdatesWindow::fillList() {
    QList<UpdateResultsItem> shown;
    std::copy_if(m_items.begin(), m_items.end(), std::back_inserter(shown),
                 [this](const UpdateResultsItem& item) { return isUnseen(item); });
    const bool byFile = m_dateDisplayOption == DateDisplayOption::fileChange;
    const auto dateOf = [byFile](const UpdateResultsItem& item) {
        return byFile ? item.fileModificationDate : item.manifestModificationDate;
    };
    // Newest first; undated rows last, by domain.
    std::stable_sort(shown.begin(), shown.end(), [&](const UpdateResultsItem& a, const UpdateResultsItem& b) {
        const auto left = dateOf(a).value_or(plist::Date{-1e18}).secondsSinceReferenceDate;
        const auto right = dateOf(b).value_or(plist::Date{-1e18}).secondsSinceReferenceDate;
        return left != right ? left > right : a.domain < b.domain;
    });
    m_list->clear();
    for (const auto& item : shown)
        new QTreeWidgetItem(m_list, {item.domain, statusString(item), dateString(dateOf(item))});
}

void ManifestUpdatesWindow::rememberNewestDate() {
    std::optional<plist::Date> newest;
    for (const auto& item : m_items) {
        if (item.manifestModificationDate &&
            (!newest ||
             item.manifestModificationDate->secondsSinceReferenceDate > newest->secondsSinceReferenceDate))
            newest = item.manifestModificationDate;
    }
    // Read by the filter of the next report, so only once this one is listed.
    if (newest)
        m_defaults.set(DefaultsKey::lastShownOnlineManifestsUpdateModificationDate, *newest);
}

void ManifestUpdatesWindow::setState(State state) {
    m_state = state;
    m_pages->setCurrentIndex(state == State::checking ? checkingPage : resultsPage);
    switch (state) {
    case State::checking:
        break;
    case State::reportingNoUpdates:
        m_message->setText(tr("No manifest updates."));
        break;
    case State::reportingUpdates:
        m_message->setText(tr("The following preference manifests were updated:"));
        break;
    case State::reportingErrors:
        m_message->setText(m_errors);
        break;
    }
    m_list->setVisible(state == State::reportingUpdates);
    m_dateOption->setVisible(state == State::reportingUpdates);
    m_reloadButton->setEnabled(state == State::reportingUpdates);
}

QString ManifestUpdatesWindow::errorMessage() const {
    return m_errors;
}

QStringList ManifestUpdatesWindow::listedDomains() const {
    QStringList domains;
    for (int row = 0; row < m_list->topLevelItemCount(); ++row)
        domains << m_list->topLevelItem(row)->text(0);
    return domains;
}

QString ManifestUpdatesWindow::listedStatus(const QString& domain) const {
    const auto found = m_list->findItems(domain, Qt::MatchExactly, 0);
    return found.isEmpty() ? QString() : found.first()->text(1);
}

void ManifestUpdatesWindow::cancelCheck() {
    if (m_gitHubRepository)
        m_gitHubRepository->cancelCheck();
}

void ManifestUpdatesWindow::openCommitLog() {
    if (m_gitHubRepository)
        QDesktopServices::openUrl(m_gitHubRepository->commitLogURL());
}

} // namespace quorlin
