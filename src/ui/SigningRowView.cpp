#include "ui/SigningRowView.h"

#include "fields/OptionalStringToPopUpButtonIndexValueTransformer.h"
#include "model/ProfileSigningServices.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "ui/EditorApplication.h"
#include "ui/FieldRowView.h"
#include "ui/Tint.h"

#include <QComboBox>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QShortcut>
#include <QStandardItemModel>
#include <QStyle>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace quorlin {

namespace {

constexpr int noValueIndex = 0;
constexpr int separatorIndex = 1;
// The profile announces no change of its signing name, which the save
// dialog may make while the form shows; a shown row looks this often.
constexpr int followInterval = 150;

} // namespace

QString SigningRowView::noValueLabel() {
    return QStringLiteral("Do not sign");
}

QString SigningRowView::noIdentitiesLabel() {
    return QStringLiteral("No signing identities were found on this Mac");
}

QString SigningRowView::trustedToolTip() {
    return QStringLiteral("Verified certificate - full trust chain has been established");
}

QString SigningRowView::untrustedToolTip() {
    return QStringLiteral("Unverified certificate - trust chain could not be established");
}

QString SigningRowView::title() {
    return QStringLiteral("Signing Identity");
}

QUrl SigningRowView::helpUrl() {
    return QUrl(EditorApplication::helpAddress + QStringLiteral("/signing"));
}

SigningRowView::SigningRowView(const Profile::Pointer& profile, TrustCheck isTrusted, QWidget* parent)
    : QWidget(parent)
    , m_profile(profile)
    , m_isTrusted(std::move(isTrusted)) {
    setObjectName(QStringLiteral("signingRow"));
    auto* layout = new QVBoxLayout(this);
    const int gap = fontMetrics().height() / 4;
    layout->setContentsMargins(gap * 2, gap * 2, gap * 2, gap * 2);
    auto* titleRow = new QHBoxLayout;
    auto* titleLabel = new QLabel(title(), this);
    QFont bold = titleLabel->font();
    bold.setBold(true);
    titleLabel->setFont(bold);
    m_writeOut = new QLabel(QStringLiteral("\u25CF"), this);
    m_writeOut->setObjectName(QStringLiteral("writeOutIndicator"));
    Tint::setTextRole(*m_writeOut, QPalette::Highlight);
    m_writeOut->installEventFilter(this);
    auto* help = new QToolButton(this);
    help->setObjectName(QStringLiteral("signingHelpButton"));
    help->setText(QStringLiteral("?"));
    help->setAutoRaise(true);
    help->setFocusPolicy(Qt::NoFocus);
    const QString shortcut = FieldRowView::propertyInfoShortcut().toString(QKeySequence::NativeText);
    help->setAccessibleName(QStringLiteral("Signing Help"));
    help->setAccessibleDescription(QStringLiteral("Opens the help on signing (%1)").arg(shortcut));
    help->setToolTip(QStringLiteral("Signing Help (%1)").arg(shortcut));
    connect(help, &QToolButton::clicked, this, &SigningRowView::openHelp);
    auto* helpShortcut =
        new QShortcut(FieldRowView::propertyInfoShortcut(), this, this, &SigningRowView::openHelp);
    helpShortcut->setContext(Qt::WidgetWithChildrenShortcut);
    titleRow->addWidget(titleLabel, 1);
    titleRow->addWidget(m_writeOut);
    titleRow->addWidget(help);
    layout->addLayout(titleRow);
    m_popUp = new QComboBox(this);
    m_popUp->setObjectName(QStringLiteral("signingIdentityPopUp"));
    m_popUp->setAccessibleName(title());
    m_popUp->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_popUp->setMinimumContentsLength(32);
    layout->addWidget(m_popUp, 0, Qt::AlignLeft);
    fillItems();
    connect(m_popUp, &QComboBox::activated, this, &SigningRowView::choose);
    // The pop-up has no menu of its own; a right click on it offers the row's.
    m_popUp->installEventFilter(this);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& position) { makeContextMenu(this)->popup(mapToGlobal(position)); });
    m_follow = new QTimer(this);
    m_follow->setInterval(followInterval);
    connect(m_follow, &QTimer::timeout, this, &SigningRowView::followProfile);
    refresh();
}

bool SigningRowView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_popUp && event->type() == QEvent::ContextMenu) {
        makeContextMenu(m_popUp)->popup(static_cast<QContextMenuEvent*>(event)->globalPos());
        return true;
    }
    if (watched == m_writeOut && event->type() == QEvent::MouseButtonPress) {
        makeContextMenu(this)->popup(static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void SigningRowView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    followProfile();
    m_follow->start();
}

void SigningRowView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    m_follow->stop();
}

void SigningRowView::followProfile() {
    const auto profile = m_profile.lock();
    const auto name = profile ? profile->saveSignedWithCommonName() : std::nullopt;
    if (name != m_shownName)
        refresh();
}

void SigningRowView::openHelp() {
    QDesktopServices::openUrl(helpUrl());
}

void SigningRowView::fillItems() {
    const auto profile = m_profile.lock();
    const auto& services = profile ? profile->environment().signingServices : nullptr;
    m_names = services ? services->identityCommonNames() : QStringList();
    // A plain comparison, stable, so equal names keep the listing's order.
    std::stable_sort(m_names.begin(), m_names.end(),
                     [](const QString& a, const QString& b) { return a < b; });
    m_popUp->addItem(noValueLabel());
    m_popUp->insertSeparator(separatorIndex);
    if (m_names.isEmpty()) {
        m_popUp->addItem(noIdentitiesLabel());
        if (auto* model = qobject_cast<QStandardItemModel*>(m_popUp->model()))
            model->item(m_popUp->count() - 1)->setEnabled(false);
        return;
    }
    for (const QString& name : m_names) {
        const bool trusted = m_isTrusted && m_isTrusted(name);
        if (trusted)
            m_popUp->addItem(style()->standardIcon(QStyle::SP_DialogApplyButton), name);
        else
            m_popUp->addItem(name);
        m_popUp->setItemData(m_popUp->count() - 1, trusted ? trustedToolTip() : untrustedToolTip(),
                             Qt::ToolTipRole);
    }
}

QStringList SigningRowView::itemTitles() const {
    QStringList titles{noValueLabel(), QString()};
    titles.append(m_names);
    return titles;
}

void SigningRowView::refresh() {
    const auto profile = m_profile.lock();
    const auto name = profile ? profile->saveSignedWithCommonName() : std::nullopt;
    m_shownName = name;
    m_writeOut->setVisible(name.has_value());
    const OptionalStringToPopUpButtonIndexValueTransformer transformer(itemTitles(), noValueIndex);
    const plist::Value index =
        transformer.transformedValue(name ? PreferenceKeyValue(plist::Value(*name)) : PreferenceKeyValue());
    if (const auto selected = index.numberAsInteger())
        m_popUp->setCurrentIndex(int(*selected));
}

void SigningRowView::choose(int index) {
    if (m_names.isEmpty() && index > separatorIndex)
        return;
    const OptionalStringToPopUpButtonIndexValueTransformer transformer(itemTitles(), noValueIndex);
    const PreferenceKeyValue chosen = transformer.reverseTransformedValue(plist::Value(qint64(index)));
    const plist::Value* value = chosen.plistValue();
    setCommonName(value ? value->toString() : std::nullopt);
}

void SigningRowView::setCommonName(const std::optional<QString>& name) {
    const auto profile = m_profile.lock();
    if (!profile || profile->saveSignedWithCommonName() == name) {
        refresh();
        return;
    }
    profile->setSaveSignedWithCommonName(name);
    refresh();
    Q_EMIT saveSignedWithCommonNameEdited();
}

std::optional<QString> SigningRowView::defaultCommonName() const {
    return UserDefaults::standard().string(DefaultsKey::preferencesDefaultsSigningIdentity);
}

QMenu* SigningRowView::makeContextMenu(QWidget* parent) {
    auto* menu = new QMenu(parent);
    menu->setObjectName(QStringLiteral("fieldContextMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto profile = m_profile.lock();
    const auto name = profile ? profile->saveSignedWithCommonName() : std::nullopt;
    QAction* unset = menu->addAction(QStringLiteral("Unset Value"));
    unset->setEnabled(name.has_value());
    connect(unset, &QAction::triggered, this, [this] { setCommonName(std::nullopt); });
    QAction* toDefault = menu->addAction(QStringLiteral("Set to Default Value"));
    toDefault->setEnabled(name != defaultCommonName());
    connect(toDefault, &QAction::triggered, this, [this] { setCommonName(defaultCommonName()); });
    QAction* help = menu->addAction(QStringLiteral("Property Info"));
    help->setShortcut(FieldRowView::propertyInfoShortcut());
    connect(help, &QAction::triggered, this, &SigningRowView::openHelp);
    return menu;
}

} // namespace quorlin
