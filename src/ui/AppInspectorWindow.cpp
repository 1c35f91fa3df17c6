#include "ui/AppInspectorWindow.h"

#include "apptools/AppBundle.h"
#include "apptools/IcnsFile.h"
#include "shell/ApplicationNotice.h"
#include "ui/InfoRowView.h"
#include "ui/NoticePresenter.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QMimeData>
#include <QPixmap>
#include <QScreen>
#include <QThread>
#include <QVBoxLayout>

#include <memory>

namespace quorlin {

namespace {

using apptools::AppInformationViewModel;

constexpr int iconSide = 128;
constexpr int cascadeStep = 24;

QLabel* makeLabel(const QString& text, const QString& objectName, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(objectName);
    label->setAlignment(Qt::AlignHCenter);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

void addRows(QVBoxLayout* stack, const QList<AppInformationViewModel::Row>& rows, QWidget* parent) {
    for (const auto& row : rows) {
        auto* view = new InfoRowView(row.qualifier, row.information, parent);
        view->setObjectName(row.field + QStringLiteral("Row"));
        stack->addWidget(view);
    }
}

// The view of a finished inspection: icon, name, version, the identity rows,
// then under their headline the system characteristics.
QWidget* makeInspectorView(const AppInformationViewModel& model, QWidget* parent) {
    auto* view = new QWidget(parent);
    view->setObjectName(QStringLiteral("mainStackView"));
    auto* stack = new QVBoxLayout(view);
    stack->setContentsMargins(0, 0, 0, 0);
    if (model.icon) {
        const auto encoded = apptools::IcnsFile::iconImage(*model.icon);
        const QImage image = encoded ? QImage::fromData(*encoded) : QImage();
        if (!image.isNull()) {
            auto* icon = new QLabel(view);
            icon->setObjectName(QStringLiteral("iconView"));
            icon->setAlignment(Qt::AlignHCenter);
            icon->setPixmap(QPixmap::fromImage(
                image.scaled(iconSide, iconSide, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
            stack->addWidget(icon);
        }
    }
    QLabel* name = makeLabel(model.name.value_or(AppInformationViewModel::missingName()),
                             QStringLiteral("nameLabel"), view);
    QFont large = name->font();
    large.setPointSizeF(large.pointSizeF() * 1.4);
    large.setBold(true);
    name->setFont(large);
    stack->addWidget(name);
    if (const auto version = model.versionAndBuildNumber())
        stack->addWidget(makeLabel(*version, QStringLiteral("versionLabel"), view));
    addRows(stack, model.identityRows(), view);
    QLabel* headline = makeLabel(AppInformationViewModel::headline(), QStringLiteral("headlineLabel"), view);
    QFont bold = headline->font();
    bold.setBold(true);
    headline->setFont(bold);
    stack->addSpacing(AppInspectorWindow::standardMargin / 2);
    stack->addWidget(headline);
    addRows(stack, model.characteristicsRows(), view);
    stack->addStretch();
    return view;
}

} // namespace

AppInspectorWindow::AppInspectorWindow(QString path, NoticePresenter& notices, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_path(std::move(path))
    , m_notices(notices) {
    setAttribute(Qt::WA_DeleteOnClose);
    setAcceptDrops(true);
    setWindowTitle(QFileInfo(m_path).fileName());
    m_layout = new QVBoxLayout(this);
    m_layout->setContentsMargins(standardMargin, standardMargin, standardMargin, standardMargin);
    replaceContent(
        makeLabel(loadingText(QFileInfo(m_path).fileName()), QStringLiteral("loadingLabel"), this));
    setFixedWidth(inspectorWidth);
    resize(inspectorWidth, 200);
    start();
}

QString AppInspectorWindow::loadingText(const QString& fileName) {
    return QStringLiteral("Loading %1...").arg(fileName);
}

void AppInspectorWindow::inspect(const QStringList& paths, NoticePresenter& notices) {
    QPoint topLeft;
    for (const QString& path : paths) {
        auto* window = new AppInspectorWindow(path, notices);
        if (topLeft.isNull()) {
            if (const QScreen* screen = QGuiApplication::primaryScreen())
                window->move(screen->availableGeometry().center() - window->rect().center());
            topLeft = window->pos();
        } else {
            topLeft += QPoint(cascadeStep, cascadeStep);
            window->move(topLeft);
        }
        window->QWidget::show();
    }
}

// The bundle is read on a worker thread: program files may lie on slow
// disks, and the window must stay responsive meanwhile.
void AppInspectorWindow::start() {
    auto result = std::make_shared<std::optional<AppInformationViewModel>>();
    QThread* worker = QThread::create([path = m_path, result] {
        if (const auto bundle = apptools::AppBundle::create(path))
            result->emplace(*bundle);
    });
    connect(worker, &QThread::finished, worker, &QObject::deleteLater);
    connect(worker, &QThread::finished, this, [this, result] {
        if (*result)
            showModel(**result);
        else
            fail();
    });
    worker->start();
}

void AppInspectorWindow::showModel(const AppInformationViewModel& model) {
    replaceContent(makeInspectorView(model, this));
    // As tall as the rows need, within the screen, the top edge kept.
    const int top = y();
    int height = m_content->sizeHint().height() + 2 * standardMargin;
    if (const QScreen* screen = this->screen())
        height = std::min(height, screen->availableGeometry().height());
    resize(inspectorWidth, height);
    move(x(), top);
    Q_EMIT inspectionFinished(true);
}

void AppInspectorWindow::fail() {
    const QString fileName = QFileInfo(m_path).fileName();
    ApplicationNotice notice;
    notice.style = ApplicationNotice::Style::warning;
    notice.title = QStringLiteral("App Inspection Failed");
    notice.informativeText = QStringLiteral("The app bundle %1 could not be inspected.").arg(fileName);
    notice.buttons = {
        {QStringLiteral("Dismiss"), ApplicationNotice::dismiss, ApplicationNotice::KeyEquivalent::returnKey}};
    Q_EMIT inspectionFinished(false);
    close();
    m_notices.present(nullptr, notice, [](const ApplicationNotice::Reply&) {});
}

void AppInspectorWindow::replaceContent(QWidget* content) {
    if (m_content) {
        m_layout->removeWidget(m_content);
        delete m_content;
    }
    m_content = content;
    m_layout->addWidget(m_content);
    m_content->show();
}

void AppInspectorWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void AppInspectorWindow::dropEvent(QDropEvent* event) {
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile())
            paths << url.toLocalFile();
    }
    if (paths.isEmpty())
        return;
    event->acceptProposedAction();
    inspect(paths, m_notices);
}

} // namespace quorlin
