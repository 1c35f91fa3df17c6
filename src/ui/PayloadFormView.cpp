#include "ui/PayloadFormView.h"

#include "fields/KeyPath.h"
#include "model/PreferenceKeyObserver.h"
#include "ui/FieldRowView.h"
#include "ui/Tint.h"
#include "workspace/PayloadViewController.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace quorlin {

// Keys tell their observers in the order they were added, so this one,
// added after the form's own, hears of an edit once the form has followed it.
class PayloadFormView::KeyWatcher : public PreferenceKeyObserver {
public:
    explicit KeyWatcher(PayloadFormView& view)
        : m_view(view) {}
    void preferenceKeyValueDidChange(PreferenceKey&) override { m_view.refresh(); }

private:
    PayloadFormView& m_view;
};

namespace {

QString noFieldsText() {
    return QStringLiteral("No properties match the current filters.");
}

QString removeUnfamiliarTitle(const Payload& payload) {
    const auto& keys = payload.unfamiliarPreferenceKeys();
    return keys && keys->size() > 1 ? QStringLiteral("Remove Properties") : QStringLiteral("Remove Property");
}

} // namespace

PayloadFormView::PayloadFormView(PayloadViewController& form, std::shared_ptr<KeyValueWriter> writer,
                                 SigningRowView::TrustCheck isTrusted, QWidget* parent)
    : QWidget(parent)
    , m_form(form)
    , m_formGuard(&form)
    , m_writer(std::move(writer))
    , m_isTrusted(std::move(isTrusted))
    , m_keyWatcher(std::make_shared<KeyWatcher>(*this))
    , m_rows(form.fieldViewControllers().size(), nullptr) {
    setObjectName(QStringLiteral("payloadForm"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    buildHeader();
    m_fieldsBox = new QWidget(this);
    m_fieldsLayout = new QVBoxLayout(m_fieldsBox);
    m_fieldsLayout->setContentsMargins(0, 0, 0, 0);
    m_fieldsLayout->setSpacing(0);
    layout->addWidget(m_fieldsBox);
    buildGroupSelector();
    buildNotices();
    applyVisibility();
    if (const auto payload = form.payload()) {
        for (const auto& key : payload->preferenceKeys())
            key->addObserver(m_keyWatcher);
    }
    connect(&form, &PayloadViewController::visibilityChanged, this, &PayloadFormView::applyVisibility);
    connect(&form, &PayloadViewController::errorCountChanged, this, &PayloadFormView::refresh);
    setCollapsed(form.isCollapsed());
    refreshHeader();
}

PayloadFormView::~PayloadFormView() {
    if (const auto payload = isFormAlive() ? m_form.payload() : nullptr) {
        for (const auto& key : payload->preferenceKeys())
            key->removeObserver(m_keyWatcher.get());
    }
    // Rows detach their instruments while the fields still hold them.
    for (QWidget*& row : m_rows) {
        delete row;
        row = nullptr;
    }
}

void PayloadFormView::buildHeader() {
    auto* header = new QWidget(this);
    header->setObjectName(QStringLiteral("payloadHeader"));
    auto* row = new QHBoxLayout(header);
    const int gap = fontMetrics().height() / 4;
    row->setContentsMargins(gap * 2, gap, gap * 2, gap);
    m_collapseButton = new QToolButton(header);
    m_collapseButton->setObjectName(QStringLiteral("collapseButton"));
    m_collapseButton->setAutoRaise(true);
    connect(m_collapseButton, &QToolButton::clicked, this, [this] { setCollapsed(!m_form.isCollapsed()); });
    m_title = new QLabel(header);
    m_title->setObjectName(QStringLiteral("payloadTitle"));
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    m_titleEdit = new QLineEdit(header);
    m_titleEdit->setObjectName(QStringLiteral("payloadTitleEdit"));
    m_titleEdit->setFont(bold);
    m_titleEdit->setAccessibleName(QStringLiteral("Payload name"));
    connect(m_titleEdit, &QLineEdit::textEdited, this, &PayloadFormView::writeTitle);
    m_removeButton = new QPushButton(QStringLiteral("Remove"), header);
    m_removeButton->setObjectName(QStringLiteral("removePayloadButton"));
    connect(m_removeButton, &QPushButton::clicked, this, &PayloadFormView::removeRequested);
    row->addWidget(m_collapseButton);
    row->addWidget(m_title, 1);
    row->addWidget(m_titleEdit, 1);
    row->addWidget(m_removeButton);
    static_cast<QVBoxLayout*>(layout())->addWidget(header);
}

void PayloadFormView::buildGroupSelector() {
    if (!m_form.hasGroupSelector())
        return;
    // A domain of many groups would widen the form past its window; the
    // segments scroll sideways instead.
    auto* scroller = new QScrollArea(m_fieldsBox);
    scroller->setObjectName(QStringLiteral("groupSelector"));
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setWidgetResizable(true);
    scroller->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* selector = new QWidget(scroller);
    auto* row = new QHBoxLayout(selector);
    row->setSpacing(0);
    m_groups = new QButtonGroup(this);
    m_groups->setExclusive(true);
    row->addStretch(1);
    const auto& labels = m_form.displayGroupsLabelMap();
    for (auto label = labels.cbegin(); label != labels.cend(); ++label) {
        auto* button = new QToolButton(selector);
        button->setText(label.value());
        button->setCheckable(true);
        button->setAccessibleName(label.value());
        m_groups->addButton(button, label.key());
        row->addWidget(button);
        auto* badge = new QLabel(QStringLiteral("\u25CF"), selector);
        badge->setObjectName(QStringLiteral("groupBadge"));
        badge->setProperty("group", label.key());
        Tint::setTextColour(*badge, Tint::errorColour());
        badge->setToolTip(QStringLiteral("Holds a match of the search"));
        m_groupBadges.append(badge);
        row->addWidget(badge);
    }
    row->addStretch(1);
    connect(m_groups, &QButtonGroup::idClicked, this, [this](int group) { m_form.selectGroup(group); });
    scroller->setWidget(selector);
    scroller->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    scroller->setFixedHeight(selector->sizeHint().height() +
                             scroller->horizontalScrollBar()->sizeHint().height());
    m_fieldsLayout->addWidget(scroller);
    refreshGroups();
}

void PayloadFormView::buildNotices() {
    m_unfamiliarBox = new QWidget(m_fieldsBox);
    auto* row = new QHBoxLayout(m_unfamiliarBox);
    m_unfamiliarNotice = new QLabel(m_unfamiliarBox);
    m_unfamiliarNotice->setObjectName(QStringLiteral("unfamiliarPropertiesNotice"));
    m_unfamiliarNotice->setWordWrap(true);
    m_unfamiliarNotice->setForegroundRole(QPalette::PlaceholderText);
    m_unfamiliarRemove = new QPushButton(m_unfamiliarBox);
    // The window removes them, as an edit it can undo, and refreshes the form.
    connect(m_unfamiliarRemove, &QPushButton::clicked, this, [this] {
        if (const auto payload = m_form.payload())
            Q_EMIT unfamiliarPropertiesRemoveRequested(payload);
    });
    row->addWidget(m_unfamiliarNotice, 1);
    row->addWidget(m_unfamiliarRemove);
    // It heads the stack, above the group selector.
    m_fieldsLayout->insertWidget(0, m_unfamiliarBox);
    buildHeldValuesNotice();
    m_noFields = new QLabel(noFieldsText(), m_fieldsBox);
    m_noFields->setObjectName(QStringLiteral("noFieldsDisplayed"));
    m_noFields->setAlignment(Qt::AlignCenter);
    m_noFields->setForegroundRole(QPalette::PlaceholderText);
    m_fieldsLayout->addWidget(m_noFields);
    refreshNotices();
}

// Values held by keys that have no row of their own (a dictionary shows as
// its subkeys' rows), or whose row a rule hides, are listed above the rows,
// with one "Remove" for them.
void PayloadFormView::buildHeldValuesNotice() {
    m_heldBox = new QWidget(m_fieldsBox);
    auto* row = new QHBoxLayout(m_heldBox);
    m_heldNotice = new QLabel(m_heldBox);
    m_heldNotice->setObjectName(QStringLiteral("heldValuesNotice"));
    m_heldNotice->setWordWrap(true);
    m_heldNotice->setTextFormat(Qt::PlainText);
    Tint::setTextColour(*m_heldNotice, Tint::errorColour());
    auto* remove = new QPushButton(QStringLiteral("Remove"), m_heldBox);
    remove->setObjectName(QStringLiteral("removeHeldValuesButton"));
    connect(remove, &QPushButton::clicked, this, [this] { removeHeldValues(m_form.unshownHeldValueKeys()); });
    row->addWidget(m_heldNotice, 1);
    row->addWidget(remove);
    m_fieldsLayout->addWidget(m_heldBox);
}

QWidget* PayloadFormView::makeRow(size_t index) {
    const FormField& field = m_form.fieldViewControllers().at(index);
    if (field.arrangement == FormField::Arrangement::signing || !field.controller) {
        const auto payload = m_form.payload();
        const auto profile = payload ? payload->profile() : nullptr;
        auto* row = new SigningRowView(profile, m_isTrusted, m_fieldsBox);
        connect(row, &SigningRowView::saveSignedWithCommonNameEdited, this,
                &PayloadFormView::saveSignedWithCommonNameEdited);
        return row;
    }
    auto* row = new FieldRowView(field.controller, m_fieldsBox);
    connect(row, &FieldRowView::heldValuesRemoveRequested, this, &PayloadFormView::removeHeldValues);
    return row;
}

void PayloadFormView::removeHeldValues(const PreferenceKey::KeyList& keys) {
    if (m_writer) {
        m_writer->removeHeldValues(keys);
        return;
    }
    for (const auto& key : keys)
        key->replaceHeldValues({});
}

void PayloadFormView::applyVisibility() {
    const auto& fields = m_form.fieldViewControllers();
    // The notice, the selector and the no-fields label come first, then the built rows in order.
    int layoutIndex = m_fieldsLayout->indexOf(m_noFields) + 1;
    bool built = false;
    for (size_t index = 0; index < fields.size(); ++index) {
        QWidget*& row = m_rows[index];
        if (!row && !fields[index].hidden) {
            row = makeRow(index);
            m_fieldsLayout->insertWidget(layoutIndex, row);
            built = true;
        }
        if (!row)
            continue;
        row->setVisible(!fields[index].hidden);
        ++layoutIndex;
    }
    m_noFields->setVisible(m_form.isNoFieldsDisplayedShown());
    refreshGroups();
    if (built)
        orderTabs();
    // Settings that reach the logic past this view (a search, a filter)
    // change what rows say as well as which show.
    refresh();
}

void PayloadFormView::orderTabs() {
    // A row built late would come last in the focus chain; the chain
    // follows the rows down the form instead.
    QList<QWidget*> chain{m_titleEdit};
    for (QAbstractButton* button : groupButtons())
        chain.append(button);
    for (QWidget* row : m_rows) {
        if (auto* field = qobject_cast<FieldRowView*>(row))
            chain.append(field->instrumentWidgets());
        else if (auto* signing = qobject_cast<SigningRowView*>(row))
            chain.append(signing->popUp());
    }
    for (qsizetype index = 1; index < chain.size(); ++index)
        QWidget::setTabOrder(chain.at(index - 1), chain.at(index));
}

void PayloadFormView::refresh() {
    if (!isFormAlive())
        return;
    for (QWidget* row : m_rows) {
        if (auto* field = qobject_cast<FieldRowView*>(row))
            field->refresh();
        else if (auto* signing = qobject_cast<SigningRowView*>(row))
            signing->refresh();
    }
    refreshHeader();
    refreshNotices();
}

void PayloadFormView::refreshHeader() {
    const bool hidden = m_form.isTitleHidden();
    const bool editable = m_form.isTitleEditable();
    m_title->setVisible(!hidden && !editable);
    m_titleEdit->setVisible(!hidden && editable);
    const QString title = m_form.title();
    if (editable) {
        if (m_titleEdit->text() != title)
            m_titleEdit->setText(title);
    } else {
        m_title->setText(title);
    }
    m_collapseButton->setVisible(m_form.hasCollapseButton());
    const auto payload = m_form.payload();
    m_removeButton->setEnabled(payload && !payload->domainPrototype().required());
}

void PayloadFormView::refreshGroups() {
    if (!m_groups)
        return;
    if (QAbstractButton* selected = m_groups->button(m_form.selectedGroup()))
        selected->setChecked(true);
    for (QLabel* badge : m_groupBadges)
        badge->setVisible(m_form.groupBadges().contains(badge->property("group").toInt()));
}

void PayloadFormView::refreshNotices() {
    const QStringList held = m_form.unshownHeldValues();
    m_heldBox->setVisible(!held.isEmpty());
    m_heldNotice->setText(held.join(u'\n'));
    const auto notice = m_form.unfamiliarPropertiesNotice();
    m_unfamiliarBox->setVisible(notice.has_value());
    if (!notice)
        return;
    m_unfamiliarNotice->setText(*notice);
    if (const auto payload = m_form.payload())
        m_unfamiliarRemove->setText(removeUnfamiliarTitle(*payload));
}

bool PayloadFormView::showsFields() const {
    return !m_fieldsBox->isHidden();
}

void PayloadFormView::followCollapsed() {
    if (isFormAlive())
        setCollapsed(m_form.isCollapsed());
}

void PayloadFormView::setCollapsed(bool collapsed) {
    m_form.setCollapsed(collapsed);
    m_fieldsBox->setVisible(!collapsed);
    m_collapseButton->setArrowType(collapsed ? Qt::RightArrow : Qt::DownArrow);
    m_collapseButton->setAccessibleName(collapsed ? QStringLiteral("Expand payload")
                                                  : QStringLiteral("Collapse payload"));
}

void PayloadFormView::writeTitle(const QString& title) {
    const auto key = m_form.payloadDisplayNameKey();
    if (!key || !m_writer)
        return;
    m_writer->writeValue(key,
                         title.isEmpty() ? PreferenceKeyValue() : PreferenceKeyValue(plist::Value(title)),
                         KeyPath::identity(*key));
}

FieldRowView* PayloadFormView::rowForKey(const QString& keyName) const {
    for (QWidget* row : m_rows) {
        auto* field = qobject_cast<FieldRowView*>(row);
        if (field && field->field().field()->name() == keyName)
            return field;
    }
    return nullptr;
}

SigningRowView* PayloadFormView::signingRow() const {
    for (QWidget* row : m_rows) {
        if (auto* signing = qobject_cast<SigningRowView*>(row))
            return signing;
    }
    return nullptr;
}

QList<QAbstractButton*> PayloadFormView::groupButtons() const {
    return m_groups ? m_groups->buttons() : QList<QAbstractButton*>();
}

QLabel* PayloadFormView::groupBadge(int group) const {
    for (QLabel* badge : m_groupBadges) {
        if (badge->property("group").toInt() == group)
            return badge;
    }
    return nullptr;
}

} // namespace quorlin
