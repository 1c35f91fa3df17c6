#include "ui/FileInstrumentWidget.h"

#include "apptools/iTunesQueryHelper.h"
#include "apptools/iTunesQueryHelperAppObject.h"
#include "fields/AppSelectorInstrumentController.h"
#include "fields/CustomPlistInstrumentController.h"
#include "fields/DataInstrumentController.h"
#include "fields/FieldViewController.h"
#include "fields/FileChoice.h"
#include "fields/ImageInstrumentController.h"
#include "fields/InstrumentController.h"
#include "ui/InstrumentChooser.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QMimeData>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace quorlin {

namespace {

using Types = InstrumentFactory::Types;

// The logical size of an image's preview; the pixmap is made for the screen's pixels.
constexpr int previewSide = 64;
// Bytes shown in a data key's preview.
constexpr int hexPreviewLength = 24;

std::optional<QString> droppedFile(const QMimeData* mime) {
    if (!mime || !mime->hasUrls() || mime->urls().size() != 1 || !mime->urls().first().isLocalFile())
        return std::nullopt;
    return mime->urls().first().toLocalFile();
}

QPushButton* makeButton(const QString& objectName, QWidget* parent) {
    auto* button = new QPushButton(parent);
    button->setObjectName(objectName);
    return button;
}

} // namespace

FileInstrumentWidget::FileInstrumentWidget(FieldViewController& field, InstrumentController& controller,
                                           QWidget* parent)
    : QWidget(parent)
    , m_field(field)
    , m_controller(controller)
    , m_chooser(InstrumentChooser::dialogs())
    , m_relay([this] { refresh(); }) {
    setAcceptDrops(true);
    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("summaryLabel"));
    m_summary->setWordWrap(true);
    m_summary->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_preview = new QLabel(this);
    m_preview->setObjectName(QStringLiteral("previewLabel"));
    if (controller.type() == Types::data)
        m_preview->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_refusal = new QLabel(this);
    m_refusal->setObjectName(QStringLiteral("refusalLabel"));
    m_refusal->setWordWrap(true);
    m_refusal->hide();

    m_chooseButton = makeButton(QStringLiteral("chooseButton"), this);
    m_clearButton = makeButton(QStringLiteral("clearButton"), this);
    m_clearButton->setText(QStringLiteral("Remove"));
    m_clearButton->setAccessibleName(QStringLiteral("Remove"));
    m_exportButton = makeButton(QStringLiteral("exportButton"), this);
    m_exportButton->setText(QStringLiteral("Export…"));
    connect(m_chooseButton, &QPushButton::clicked, this, &FileInstrumentWidget::choose);
    connect(m_clearButton, &QPushButton::clicked, this, &FileInstrumentWidget::clear);
    connect(m_exportButton, &QPushButton::clicked, this, &FileInstrumentWidget::exportValue);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_chooseButton);
    buttons->addWidget(m_clearButton);
    buttons->addWidget(m_exportButton);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_preview);
    layout->addWidget(m_summary);
    layout->addLayout(buttons);
    layout->addWidget(m_refusal);

    m_controller.attachControl(&m_relay);
    refresh();
}

FileInstrumentWidget::~FileInstrumentWidget() {
    unwatchApp();
    m_controller.attachControl(nullptr);
}

void FileInstrumentWidget::watchApp(const std::optional<QString>& bundleId) {
    if (m_appObject && bundleId && m_appObject->bundleId() == *bundleId)
        return;
    unwatchApp();
    if (!bundleId || bundleId->isEmpty())
        return;
    m_appObject = apptools::iTunesQueryHelper::shared().appObject(*bundleId);
    connect(m_appObject, &apptools::iTunesQueryHelperAppObject::infoChanged, this,
            &FileInstrumentWidget::refresh);
    connect(m_appObject, &apptools::iTunesQueryHelperAppObject::iconChanged, this,
            &FileInstrumentWidget::refresh);
    m_appObject->addInfoObserver();
    m_appObject->addIconObserver();
}

void FileInstrumentWidget::unwatchApp() {
    if (!m_appObject)
        return;
    disconnect(m_appObject, nullptr, this, nullptr);
    m_appObject->removeInfoObserver();
    m_appObject->removeIconObserver();
    m_appObject.clear();
}

void FileInstrumentWidget::setChooser(std::shared_ptr<InstrumentChooser> chooser) {
    m_chooser = std::move(chooser);
}

void FileInstrumentWidget::choose() {
    if (auto* app = dynamic_cast<AppSelectorInstrumentController*>(&m_controller)) {
        showRefusal(std::nullopt);
        if (const auto chosen = m_chooser->chooseApp(this))
            app->choose(*chosen);
        refresh();
        return;
    }
    if (const auto path = m_chooser->chooseFileToOpen(this, allowedExtensions()))
        useFile(*path);
}

void FileInstrumentWidget::useFile(const QString& path) {
    std::optional<InstrumentAlert> refusal;
    if (auto* data = dynamic_cast<DataInstrumentController*>(&m_controller))
        refusal = data->chooseFile(path);
    else if (auto* image = dynamic_cast<ImageInstrumentController*>(&m_controller))
        refusal = image->chooseFile(path);
    else if (auto* custom = dynamic_cast<CustomPlistInstrumentController*>(&m_controller))
        refusal = custom->importFile(path);
    else if (auto* app = dynamic_cast<AppSelectorInstrumentController*>(&m_controller))
        refusal = app->chooseFile(path);
    if (!refusal) {
        m_fileName = QFileInfo(path).fileName();
        m_fileBytes = storedData().value_or(QByteArray());
    }
    showRefusal(refusal);
    refresh();
}

void FileInstrumentWidget::clear() {
    if (auto* data = dynamic_cast<DataInstrumentController*>(&m_controller))
        data->remove();
    else if (auto* image = dynamic_cast<ImageInstrumentController*>(&m_controller))
        image->remove();
    else if (auto* custom = dynamic_cast<CustomPlistInstrumentController*>(&m_controller))
        custom->remove();
    else if (auto* app = dynamic_cast<AppSelectorInstrumentController*>(&m_controller))
        app->remove();
    showRefusal(std::nullopt);
    refresh();
}

void FileInstrumentWidget::exportValue() {
    const auto* custom = dynamic_cast<CustomPlistInstrumentController*>(&m_controller);
    const auto& key = m_controller.representedPreferenceKey();
    if (!custom || !key)
        return;
    const auto path = m_chooser->chooseFileToSave(this, key->name() + QStringLiteral(".plist"));
    if (path)
        showRefusal(custom->exportToFile(*path));
}

void FileInstrumentWidget::dragEnterEvent(QDragEnterEvent* event) {
    if (isEnabled() && droppedFile(event->mimeData()))
        event->acceptProposedAction();
}

void FileInstrumentWidget::dropEvent(QDropEvent* event) {
    const auto path = droppedFile(event->mimeData());
    if (!path)
        return;
    event->acceptProposedAction();
    useFile(*path);
}

void FileInstrumentWidget::changeEvent(QEvent* event) {
    // A preview drawn for one screen's pixels is redrawn for another's.
    if (event->type() == QEvent::ScreenChangeInternal)
        refreshPreview();
    QWidget::changeEvent(event);
}

std::optional<QByteArray> FileInstrumentWidget::storedData() const {
    const auto& key = m_controller.representedPreferenceKey();
    const plist::Value* stored = key ? key->value().plistValue() : nullptr;
    return stored ? stored->toData() : std::nullopt;
}

bool FileInstrumentWidget::hasValue() const {
    const auto& key = m_controller.representedPreferenceKey();
    return key && !key->value().isAbsent();
}

bool FileInstrumentWidget::showsButtons() const {
    if (const auto* data = dynamic_cast<const DataInstrumentController*>(&m_controller))
        return data->showingButtons();
    if (const auto* custom = dynamic_cast<const CustomPlistInstrumentController*>(&m_controller))
        return custom->showingButtons();
    if (const auto* app = dynamic_cast<const AppSelectorInstrumentController*>(&m_controller))
        return app->showingButtons();
    return true;
}

QString FileInstrumentWidget::chooseButtonTitle() const {
    if (const auto* data = dynamic_cast<const DataInstrumentController*>(&m_controller))
        return data->chooseButtonTitle();
    if (const auto* image = dynamic_cast<const ImageInstrumentController*>(&m_controller))
        return image->chooseButtonTitle();
    if (dynamic_cast<const CustomPlistInstrumentController*>(&m_controller))
        return CustomPlistInstrumentController::chooseButtonTitle();
    return FileChoice::chooseButtonTitle(hasValue());
}

QStringList FileInstrumentWidget::allowedExtensions() const {
    if (dynamic_cast<const CustomPlistInstrumentController*>(&m_controller))
        return {QStringLiteral("plist")};
    const auto& key = m_controller.representedPreferenceKey();
    return key ? key->prototype().allowedFileExtensions().value_or(QStringList()) : QStringList();
}

QString FileInstrumentWidget::summaryText() const {
    if (const auto* data = dynamic_cast<const DataInstrumentController*>(&m_controller)) {
        QString text = data->sizeText().value_or(QString());
        if (!text.isEmpty() && !m_fileName.isEmpty() && storedData() == m_fileBytes)
            text += QStringLiteral(" (") + m_fileName + QLatin1Char(')');
        return text;
    }
    if (const auto* custom = dynamic_cast<const CustomPlistInstrumentController*>(&m_controller)) {
        const auto& key = m_controller.representedPreferenceKey();
        QStringList keys;
        if (key && key->value().keyMap())
            keys = key->value().keyMap()->keys();
        else if (const plist::Value* plain = key ? key->value().plistValue() : nullptr;
                 plain && plain->dictionary())
            keys = plain->dictionary()->keys();
        return keys.isEmpty()
                   ? custom->explanatoryText()
                   : custom->explanatoryText() + QLatin1Char('\n') + keys.join(QStringLiteral(", "));
    }
    if (const auto* app = dynamic_cast<const AppSelectorInstrumentController*>(&m_controller)) {
        const QString bundleId = app->bundleId().value_or(QString());
        // The app's name beside its identifier, once the store has told it.
        if (m_appObject && m_appObject->bundleId() == bundleId && m_appObject->appName())
            return *m_appObject->appName() + QStringLiteral(" (") + bundleId + QLatin1Char(')');
        return bundleId;
    }
    return {};
}

void FileInstrumentWidget::refresh() {
    if (const auto* app = dynamic_cast<const AppSelectorInstrumentController*>(&m_controller))
        watchApp(app->bundleId());
    const bool buttons = showsButtons();
    const bool present = hasValue();
    m_chooseButton->setText(chooseButtonTitle());
    m_chooseButton->setVisible(buttons);
    m_clearButton->setVisible(buttons && present);
    m_exportButton->setVisible(buttons && present && m_controller.type() == Types::customPlist);
    m_summary->setText(summaryText());
    m_summary->setVisible(!m_summary->text().isEmpty());
    refreshPreview();
    const auto* app = dynamic_cast<const AppSelectorInstrumentController*>(&m_controller);
    const bool enabled = m_relay.enabled() && m_field.isEnabled() && !(app && app->isDisabled());
    m_chooseButton->setEnabled(enabled);
    m_clearButton->setEnabled(enabled);
    setAcceptDrops(enabled);
}

void FileInstrumentWidget::refreshPreview() {
    const auto bytes = storedData();
    if (m_controller.type() == Types::data && bytes && !bytes->isEmpty()) {
        QString hex = QString::fromLatin1(bytes->left(hexPreviewLength).toHex(' '));
        if (bytes->size() > hexPreviewLength)
            hex += QStringLiteral(" …");
        m_preview->setText(hex);
        m_preview->show();
        return;
    }
    const auto appIcon = m_appObject ? m_appObject->iconImage() : std::nullopt;
    if ((m_controller.type() == Types::image && bytes) || appIcon) {
        const QImage image = QImage::fromData(appIcon ? *appIcon : *bytes);
        if (!image.isNull()) {
            const qreal ratio = devicePixelRatioF();
            QPixmap pixmap = QPixmap::fromImage(image.scaled(QSize(previewSide, previewSide) * ratio,
                                                             Qt::KeepAspectRatio, Qt::SmoothTransformation));
            pixmap.setDevicePixelRatio(ratio);
            m_preview->setPixmap(pixmap);
            m_preview->show();
            return;
        }
    }
    m_preview->clear();
    m_preview->hide();
}

void FileInstrumentWidget::showRefusal(const std::optional<InstrumentAlert>& refusal) {
    m_refusal->setVisible(refusal.has_value());
    m_refusal->setText(refusal ? refusal->title + QLatin1Char('\n') + refusal->informativeText : QString());
}

} // namespace quorlin
