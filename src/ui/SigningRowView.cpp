#include "ui/SigningRowView.h"

#include "fields/OptionalStringToPopUpButtonIndexValueTransformer.h"
#include "model/ProfileSigningServices.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "ui/Tint.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QStandardItemModel>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

namespace quorlin {

namespace {

constexpr int noValueIndex = 0;
constexpr int separatorIndex = 1;

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
    titleRow->addWidget(titleLabel, 1);
    titleRow->addWidget(m_writeOut);
    layout->addLayout(titleRow);
    m_popUp = new QComboBox(this);
    m_popUp->setObjectName(QStringLiteral("signingIdentityPopUp"));
    m_popUp->setAccessibleName(title());
    m_popUp->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_popUp->setMinimumContentsLength(32);
    layout->addWidget(m_popUp, 0, Qt::AlignLeft);
    fillItems();
    connect(m_popUp, &QComboBox::activated, this, &SigningRowView::choose);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& position) { makeContextMenu(this)->popup(mapToGlobal(position)); });
    refresh();
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
    return menu;
}

} // namespace quorlin
