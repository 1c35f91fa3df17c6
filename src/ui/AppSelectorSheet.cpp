#include "ui/AppSelectorSheet.h"

#include "apptools/iTunesQueryHelper.h"
#include "ui/AppFileDialog.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QNetworkReply>
#include <QPixmap>
#include <QPushButton>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace quorlin {

namespace {

using apptools::AppSearchResult;

constexpr qint64 maximumIconSize = 4 * 1024 * 1024;
enum Column { iconColumn, nameColumn, typeColumn, bundleIdColumn };

} // namespace

AppSelectorSheet::AppSelectorSheet(apptools::iTunesQueryHelper& helper, QWidget* parent)
    : QDialog(parent)
    , m_helper(helper) {
    setWindowTitle(QStringLiteral("Choose App"));
    m_searchField = new QLineEdit(this);
    m_searchField->setObjectName(QStringLiteral("searchField"));
    m_searchField->setPlaceholderText(QStringLiteral("App name or bundle identifier"));
    m_searchField->setClearButtonEnabled(true);
    connect(m_searchField, &QLineEdit::returnPressed, this, &AppSelectorSheet::search);

    m_table = new QTreeWidget(this);
    m_table->setObjectName(QStringLiteral("resultsTable"));
    m_table->setRootIsDecorated(false);
    m_table->setHeaderLabels(
        {QString(), QStringLiteral("Name"), QStringLiteral("Type"), QStringLiteral("Bundle Identifier")});
    m_table->header()->setSectionResizeMode(iconColumn, QHeaderView::ResizeToContents);
    m_table->setIconSize(QSize(32, 32));
    connect(m_table, &QTreeWidget::itemDoubleClicked, this, &AppSelectorSheet::choose);
    connect(m_table, &QTreeWidget::itemSelectionChanged, this,
            [this] { m_chooseButton->setEnabled(!m_table->selectedItems().isEmpty()); });

    m_busy = new QLabel(QStringLiteral("Searching…"), this);
    m_busy->setObjectName(QStringLiteral("busyIndicator"));
    m_busy->hide();
    m_refusal = new QLabel(this);
    m_refusal->setObjectName(QStringLiteral("refusalLabel"));
    m_refusal->setWordWrap(true);
    m_refusal->hide();

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* fromDisk =
        buttons->addButton(QStringLiteral("Choose from Disk…"), QDialogButtonBox::ActionRole);
    fromDisk->setObjectName(QStringLiteral("chooseFromDiskButton"));
    connect(fromDisk, &QPushButton::clicked, this, [this] {
        const QStringList paths = AppFileDialog::choose(this);
        if (!paths.isEmpty())
            chooseFile(paths.first());
    });
    QPushButton* cancel = buttons->addButton(QDialogButtonBox::Cancel);
    cancel->setObjectName(QStringLiteral("cancelButton"));
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    m_chooseButton = buttons->addButton(QStringLiteral("Choose"), QDialogButtonBox::AcceptRole);
    m_chooseButton->setObjectName(QStringLiteral("chooseButton"));
    m_chooseButton->setEnabled(false);
    m_chooseButton->setAutoDefault(false);
    connect(m_chooseButton, &QPushButton::clicked, this, &AppSelectorSheet::choose);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_searchField);
    layout->addWidget(m_table);
    layout->addWidget(m_busy);
    layout->addWidget(m_refusal);
    layout->addWidget(buttons);
    resize(640, 420);
}

AppSelectorSheet::~AppSelectorSheet() {
    if (m_searchTask)
        m_searchTask->abort();
}

void AppSelectorSheet::search() {
    const QString term = m_searchField->text().trimmed();
    if (m_searchTask)
        m_searchTask->abort();
    if (term.isEmpty()) {
        setSearching(false);
        showResults({});
        return;
    }
    // The system rows stay while the store is asked.
    QList<AppSearchResult> systemRows;
    for (const AppSearchResult& row : m_results) {
        if (row.resultType == AppSearchResult::ResultType::systemApp)
            systemRows << row;
    }
    showResults(systemRows);
    setSearching(true);
    m_searchTask = m_helper.search(term, [this, systemRows](auto rows) {
        m_searchTask.clear();
        setSearching(false);
        showResults(rows ? *rows : systemRows);
        Q_EMIT searchFinished();
    });
}

void AppSelectorSheet::setSearching(bool searching) {
    m_busy->setVisible(searching);
}

void AppSelectorSheet::showResults(const QList<AppSearchResult>& results) {
    m_results = results;
    m_table->clear();
    const QIcon placeholder = style()->standardIcon(QStyle::SP_DesktopIcon);
    for (int row = 0; row < m_results.size(); ++row) {
        const AppSearchResult& result = m_results.at(row);
        auto* item = new QTreeWidgetItem(m_table);
        item->setText(nameColumn, result.appName);
        item->setText(typeColumn, AppSearchResult::label(result.resultType));
        item->setText(bundleIdColumn, result.bundleId);
        item->setIcon(iconColumn, placeholder);
        if (result.artworkURL)
            fetchIcon(row, *result.artworkURL);
    }
    m_chooseButton->setEnabled(false);
}

void AppSelectorSheet::fetchIcon(int row, const QUrl& url) {
    if (const auto cached = m_icons.constFind(url); cached != m_icons.constEnd()) {
        m_table->topLevelItem(row)->setIcon(iconColumn, *cached);
        return;
    }
    const QList<AppSearchResult> shown = m_results;
    m_helper.get(url, maximumIconSize, [this, row, url, shown](auto response) {
        if (!response || response->body.isEmpty())
            return;
        const QImage image = QImage::fromData(response->body);
        if (image.isNull())
            return;
        const QIcon icon(QPixmap::fromImage(image));
        m_icons.insert(url, icon);
        // The rows may have changed while the icon came.
        if (m_results == shown && row < m_table->topLevelItemCount())
            m_table->topLevelItem(row)->setIcon(iconColumn, icon);
    });
}

void AppSelectorSheet::choose() {
    const QList<QTreeWidgetItem*> selected = m_table->selectedItems();
    if (selected.isEmpty())
        return;
    const int row = m_table->indexOfTopLevelItem(selected.first());
    if (row < 0 || row >= m_results.size())
        return;
    m_chosenBundleId = m_results.at(row).bundleId;
    m_chosenAppName = m_results.at(row).appName;
    m_chosenIcon = selected.first()->icon(iconColumn);
    m_chosenFile.reset();
    accept();
}

std::optional<apptools::ChosenApp> AppSelectorSheet::chosenApp() const {
    if (m_chosenFile)
        return m_chosenFile;
    if (!m_chosenBundleId)
        return std::nullopt;
    // The field asks the store for a row's name and icon by the identifier.
    return apptools::ChosenApp{*m_chosenBundleId, {}, {}, {}, {}};
}

bool AppSelectorSheet::chooseFile(const QString& path) {
    auto app = apptools::ChosenApp::fromFile(path);
    if (!app) {
        m_refusal->setText(QStringLiteral("App Inspection Failed\nThe app bundle %1 could not be inspected.")
                               .arg(QFileInfo(path).fileName()));
        m_refusal->show();
        return false;
    }
    m_chosenBundleId = app->bundleId;
    m_chosenAppName = app->appName;
    m_chosenFile = std::move(app);
    accept();
    return true;
}

} // namespace quorlin
