#include "ui/FieldRowView.h"

#include "ui/ArrayInstrumentWidget.h"
#include "ui/FileInstrumentWidget.h"
#include "ui/HighlightedText.h"
#include "ui/InstrumentWidgetFactory.h"
#include "ui/PropertyInfoPopover.h"
#include "ui/TagLabel.h"
#include "ui/Tint.h"
#include "validation/HeldValueWords.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QEnterEvent>
#include <QEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace quorlin {

namespace {

using MenuAction = FieldViewController::MenuAction;

QString menuTitle(MenuAction action) {
    switch (action) {
    case MenuAction::unsetOnPayload:
        return QStringLiteral("Unset Value");
    case MenuAction::setPropertyToDefaultValue:
        return QStringLiteral("Set to Default Value");
    case MenuAction::forceEmptyValue:
        return QStringLiteral("Force Empty Value");
    case MenuAction::openPropertyInfoPanel:
        return QStringLiteral("Property Info");
    }
    return QString();
}

QLabel* richLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::RichText);
    label->setWordWrap(true);
    return label;
}

// A left click on the write-out dot opens the row's menu, as a right click does.
class ClickMenuFilter : public QObject {
public:
    explicit ClickMenuFilter(FieldRowView& row)
        : QObject(&row)
        , m_row(row) {}

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::MouseButtonPress)
            return QObject::eventFilter(watched, event);
        auto* press = static_cast<QMouseEvent*>(event);
        QMenu* menu = m_row.makeContextMenu(&m_row);
        menu->popup(press->globalPosition().toPoint());
        return true;
    }

private:
    FieldRowView& m_row;
};

// The edit menu Qt gives the text control under a right click, if any: a
// line edit of its own, or one inside a combo box or a date, or the page of
// a text view.
QMenu* standardEditMenu(QWidget* target, const QPoint& position) {
    if (auto* edit = qobject_cast<QLineEdit*>(target))
        return edit->createStandardContextMenu();
    if (auto* text = qobject_cast<QPlainTextEdit*>(target->parentWidget());
        text && text->viewport() == target)
        return text->createStandardContextMenu(position);
    if (auto* text = qobject_cast<QPlainTextEdit*>(target))
        return text->createStandardContextMenu(text->viewport()->mapFrom(text, position));
    if (qobject_cast<QAbstractSpinBox*>(target) || qobject_cast<QComboBox*>(target)) {
        if (auto* edit = target->findChild<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly))
            return edit->createStandardContextMenu();
    }
    return nullptr;
}

// A right click inside a control offers the row's menu: above Qt's edit
// items in a text control, alone in the others.
class ControlMenuFilter : public QObject {
public:
    explicit ControlMenuFilter(FieldRowView& row)
        : QObject(&row)
        , m_row(row) {}

    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* target = qobject_cast<QWidget*>(watched);
        if (event->type() != QEvent::ContextMenu || !target)
            return QObject::eventFilter(watched, event);
        auto* request = static_cast<QContextMenuEvent*>(event);
        QMenu* menu = standardEditMenu(target, request->pos());
        if (menu) {
            menu->setAttribute(Qt::WA_DeleteOnClose);
            menu->setObjectName(QStringLiteral("fieldContextMenu"));
            QAction* first = menu->actions().value(0);
            m_row.addMenuActions(*menu, first);
            menu->insertSeparator(first);
        } else {
            menu = m_row.makeContextMenu(target);
        }
        menu->popup(request->globalPos());
        return true;
    }

private:
    FieldRowView& m_row;
};

// The check box's title is its label: a click on it is a click on the box.
class TitleClickFilter : public QObject {
public:
    TitleClickFilter(QAbstractButton& box, QObject* parent)
        : QObject(parent)
        , m_box(box) {}

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonRelease) {
            auto* release = static_cast<QMouseEvent*>(event);
            auto* label = static_cast<QWidget*>(watched);
            if (release->button() == Qt::LeftButton &&
                label->rect().contains(release->position().toPoint()) && m_box.isEnabled()) {
                m_box.click();
                return true;
            }
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QAbstractButton& m_box;
};

// A click on a folded description unfolds it, and folds it again.
class DescriptionToggle : public QObject {
public:
    DescriptionToggle(QObject* parent, std::function<void()> toggle)
        : QObject(parent)
        , m_toggle(std::move(toggle)) {}

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonRelease &&
            static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
            m_toggle();
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> m_toggle;
};

void setTextIfChanged(QLabel* label, const QString& text) {
    if (label->text() != text)
        label->setText(text);
}

} // namespace

FieldRowView::FieldRowView(std::shared_ptr<FieldViewController> field, QWidget* parent)
    : QWidget(parent)
    , m_field(std::move(field)) {
    setObjectName(QStringLiteral("field:") + m_field->field()->name());
    auto* layout = new QVBoxLayout(this);
    const int indent = m_field->leadingPadding() * fontMetrics().averageCharWidth() / 7;
    const int gap = fontMetrics().height() / 4;
    layout->setContentsMargins(indent + gap * 2, gap * 2, gap * 2, gap * 2);
    layout->setSpacing(gap);
    buildTitleRow();
    buildInstrumentRow();
    buildDetailsRow();
    m_error = richLabel(this);
    m_error->setObjectName(QStringLiteral("fieldError"));
    m_error->setTextFormat(Qt::PlainText);
    Tint::setTextColour(*m_error, Tint::errorColour());
    layout->addWidget(m_error);
    buildHeldValuesRow();
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& position) { makeContextMenu(this)->popup(mapToGlobal(position)); });
    auto* info = new QShortcut(propertyInfoShortcut(), this, this, [this] { openPropertyInfo(); });
    info->setContext(Qt::WidgetWithChildrenShortcut);
    refresh();
}

QKeySequence FieldRowView::propertyInfoShortcut() {
    return QKeySequence(Qt::CTRL | Qt::Key_I);
}

FieldRowView::~FieldRowView() {
    // Its closing brings the info button into line, which must still be there.
    delete m_popover.data();
    // The instruments detach while the field still holds them.
    qDeleteAll(m_instruments);
    m_instruments.clear();
}

void FieldRowView::buildTitleRow() {
    auto* row = new QHBoxLayout;
    row->setSpacing(fontMetrics().averageCharWidth());
    m_title = richLabel(this);
    m_title->setObjectName(QStringLiteral("fieldTitle"));
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    m_writeOut = new QLabel(QStringLiteral("\u25CF"), this);
    m_writeOut->setObjectName(QStringLiteral("writeOutIndicator"));
    m_writeOut->setToolTip(QStringLiteral("Written to the profile"));
    Tint::setTextRole(*m_writeOut, QPalette::Highlight);
    m_writeOut->installEventFilter(new ClickMenuFilter(*this));
    m_infoButton = new QToolButton(this);
    m_infoButton->setObjectName(QStringLiteral("propertyInfoButton"));
    m_infoButton->setText(QStringLiteral("?"));
    m_infoButton->setAutoRaise(true);
    m_infoButton->setFocusPolicy(Qt::NoFocus);
    // The button stays out of the Tab chain, which would double every row's
    // stops; the keyboard reaches it through the row's shortcut instead.
    m_infoButton->setAccessibleName(QStringLiteral("Property Info"));
    m_infoButton->setAccessibleDescription(
        QStringLiteral("Shows the information of this key (%1)")
            .arg(propertyInfoShortcut().toString(QKeySequence::NativeText)));
    m_infoButton->setToolTip(
        QStringLiteral("Property Info (%1)").arg(propertyInfoShortcut().toString(QKeySequence::NativeText)));
    connect(m_infoButton, &QToolButton::clicked, this, [this] { openPropertyInfo(); });
    // It shows while the pointer is over the row; its place stays, so that
    // the title doesn't move under the pointer.
    QSizePolicy keepPlace = m_infoButton->sizePolicy();
    keepPlace.setRetainSizeWhenHidden(true);
    m_infoButton->setSizePolicy(keepPlace);
    m_infoButton->hide();
    row->addWidget(m_title, 1);
    row->addWidget(m_writeOut);
    row->addWidget(m_infoButton);
    static_cast<QVBoxLayout*>(layout())->addLayout(row);
    m_description = richLabel(this);
    m_description->setObjectName(QStringLiteral("fieldDescription"));
    QFont small = m_description->font();
    small.setPointSizeF(small.pointSizeF() - 1);
    m_description->setFont(small);
    m_description->setForegroundRole(QPalette::PlaceholderText);
    m_description->installEventFilter(new DescriptionToggle(m_description, [this] {
        m_descriptionExpanded = !m_descriptionExpanded;
        applyDensity();
    }));
    static_cast<QVBoxLayout*>(layout())->addWidget(m_description);
}

void FieldRowView::buildInstrumentRow() {
    auto* mainLayout = static_cast<QVBoxLayout*>(layout());
    const bool isBoolean = m_field->arrangement() == FieldViewController::Arrangement::boolean;
    for (const auto& instrument : m_field->instruments()) {
        QWidget* widget = InstrumentWidgetFactory::makeWidget(*m_field, *instrument, this);
        m_instruments.append(widget);
        followRightClicks(widget);
        if (isBoolean) {
            // The check box goes before its title, as one line.
            auto* titleRow = static_cast<QHBoxLayout*>(mainLayout->itemAt(0)->layout());
            titleRow->insertWidget(0, widget);
        } else {
            mainLayout->addWidget(widget);
        }
    }
    if (isBoolean && !m_instruments.isEmpty()) {
        if (auto* box = qobject_cast<QAbstractButton*>(m_instruments.first()))
            m_title->installEventFilter(new TitleClickFilter(*box, this));
    }
    if (isBoolean) {
        // The description reads under the check box's line, not between.
        mainLayout->removeWidget(m_description);
        mainLayout->addWidget(m_description);
    }
}

void FieldRowView::followRightClicks(QWidget* instrument) {
    // The tables and file wells have menus of their own.
    if (qobject_cast<ArrayInstrumentWidget*>(instrument) || qobject_cast<FileInstrumentWidget*>(instrument))
        return;
    auto* filter = new ControlMenuFilter(*this);
    instrument->installEventFilter(filter);
    // The text parts are direct children (a combo box's or a date's line
    // edit, a text view's page); a pop-up list is a window of its own.
    for (QWidget* part : instrument->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!part->isWindow())
            part->installEventFilter(filter);
    }
}

void FieldRowView::buildDetailsRow() {
    m_details = new QWidget(this);
    m_details->setObjectName(QStringLiteral("fieldDetails"));
    m_detailsLayout = new QHBoxLayout(m_details);
    m_detailsLayout->setContentsMargins(0, 0, 0, 0);
    m_detailsLayout->setSpacing(fontMetrics().averageCharWidth());
    static_cast<QVBoxLayout*>(layout())->addWidget(m_details);
}

void FieldRowView::buildHeldValuesRow() {
    m_heldRow = new QWidget(this);
    m_heldRow->setObjectName(QStringLiteral("heldValues"));
    auto* row = new QHBoxLayout(m_heldRow);
    row->setContentsMargins(0, 0, 0, 0);
    m_heldValues = new QLabel(m_heldRow);
    m_heldValues->setObjectName(QStringLiteral("heldValuesText"));
    m_heldValues->setTextFormat(Qt::PlainText);
    m_heldValues->setWordWrap(true);
    auto* remove = new QPushButton(QStringLiteral("Remove"), m_heldRow);
    remove->setObjectName(QStringLiteral("removeHeldValuesButton"));
    remove->setToolTip(QStringLiteral("Remove the values the manifest doesn't allow from the profile"));
    connect(remove, &QPushButton::clicked, this,
            [this] { Q_EMIT heldValuesRemoveRequested(keysHoldingValues()); });
    row->addWidget(m_heldValues, 1);
    row->addWidget(remove);
    static_cast<QVBoxLayout*>(layout())->addWidget(m_heldRow);
}

PreferenceKey::KeyList FieldRowView::keysHoldingValues() const {
    PreferenceKey::KeyList holding;
    PreferenceKey::KeyList pending{m_field->field()};
    while (!pending.isEmpty()) {
        const PreferenceKey::Pointer key = pending.takeLast();
        if (!key->heldEntries().isEmpty())
            holding.append(key);
        // A dictionary's subkeys have rows of their own; an array's items don't.
        const bool speaksForChildren =
            key != m_field->field() || key->prototype().kind() == PFMKeyPrototype::Kind::array;
        if (const auto children = key->children(); children && speaksForChildren && !key->excluded())
            pending.append(*children);
    }
    return holding;
}

void FieldRowView::refreshHeldValues() {
    QStringList values;
    for (const auto& key : keysHoldingValues()) {
        for (const auto& entry : key->heldEntries())
            values.append(HeldValueWords::valueText(entry.value));
    }
    m_heldRow->setVisible(!values.isEmpty());
    if (!values.isEmpty())
        setTextIfChanged(m_heldValues,
                         QStringLiteral("Kept from the file: ") + values.join(QStringLiteral(", ")));
}

void FieldRowView::refresh() {
    const FieldViewController& field = *m_field;
    const auto title = field.displayTitle();
    const auto shown = title.text.isEmpty() ? field.displayName() : title;
    setTextIfChanged(m_title, HighlightedText::html(shown.text, shown.highlights, shown.isDimmed));
    m_description->setVisible(!field.hideDescription());
    if (!field.hideDescription()) {
        const auto description = field.displayDescription();
        setTextIfChanged(m_description, HighlightedText::html(description.text, description.highlights));
    }
    m_writeOut->setVisible(field.showsWriteOutIndicator());
    for (QWidget* widget : m_instruments)
        widget->setEnabled(field.isEnabled());
    const auto error = field.error();
    m_error->setVisible(error.has_value());
    setTextIfChanged(m_error, error.value_or(QString()));
    refreshHeldValues();
    refreshDetails();
    applyDensity();
}

// Compact rows stand closer, and fold their description to its first line
// until it is clicked.
void FieldRowView::applyDensity() {
    const auto& settings = m_field->fieldDisplaySettings();
    const bool compact = settings && settings->compactDensity;
    const int gap = fontMetrics().height() / 4;
    const int indent = m_field->leadingPadding() * fontMetrics().averageCharWidth() / 7;
    const int vertical = compact ? gap / 2 : gap * 2;
    layout()->setContentsMargins(indent + gap * 2, vertical, gap * 2, vertical);
    layout()->setSpacing(compact ? gap / 2 : gap);
    // The check-box spacing rules are the comfortable density's.
    if (!compact)
        applySpacing();
    const bool folded = compact && !m_descriptionExpanded;
    m_description->setMaximumHeight(folded ? m_description->fontMetrics().lineSpacing() + 1
                                           : QWIDGETSIZE_MAX);
    m_description->setToolTip(compact ? (folded ? descriptionFoldedTip() : descriptionUnfoldedTip())
                                      : QString());
    m_description->setCursor(compact ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

QString FieldRowView::descriptionFoldedTip() {
    return QStringLiteral("Click to show the whole description");
}

QString FieldRowView::descriptionUnfoldedTip() {
    return QStringLiteral("Click to fold the description");
}

bool FieldRowView::isDescriptionFolded() const {
    return m_description->maximumHeight() != QWIDGETSIZE_MAX;
}

QString FieldRowView::detailsSignature() const {
    const FieldDetailsViewController& details = m_field->details();
    if (details.allDetailsAreHidden())
        return QString();
    QStringList parts;
    if (details.showsPropertyName()) {
        const auto name = m_field->displayName();
        parts << HighlightedText::html(name.text, name.highlights, name.isDimmed);
    }
    parts << QString::number(details.showsRequiredTag()) << QString::number(details.showsSupervisedOnlyTag())
          << QString::number(details.showsDocumentationButton());
    for (TextRange range : details.highlightedTermMatchesSupervision())
        parts << QStringLiteral("%1+%2").arg(range.start).arg(range.length);
    for (const PlatformTag& tag : details.platformTags())
        parts << tag.text() << tag.toolTip().value_or(QString());
    return parts.join(QLatin1Char('\n'));
}

void FieldRowView::refreshDetails() {
    const FieldDetailsViewController& details = m_field->details();
    // Rebuilding the tags of every row at each keystroke would cost more
    // than the edit; only a row whose details changed rebuilds them.
    QString signature = detailsSignature();
    if (m_detailsBuilt && signature == m_detailsSignature)
        return;
    m_detailsBuilt = true;
    m_detailsSignature = std::move(signature);
    while (QLayoutItem* item = m_detailsLayout->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    m_details->setVisible(!details.allDetailsAreHidden());
    if (details.allDetailsAreHidden())
        return;
    if (details.showsPropertyName()) {
        const auto name = m_field->displayName();
        auto* label = new QLabel(m_details);
        label->setObjectName(QStringLiteral("propertyName"));
        label->setTextFormat(Qt::RichText);
        label->setText(HighlightedText::html(name.text, name.highlights, name.isDimmed));
        label->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        m_detailsLayout->addWidget(label);
    }
    if (details.showsRequiredTag())
        m_detailsLayout->addWidget(new TagLabel(FieldDetailsViewController::requiredTagText(), m_details));
    if (details.showsSupervisedOnlyTag())
        m_detailsLayout->addWidget(
            new TagLabel(HighlightedText::html(FieldDetailsViewController::supervisedOnlyTagText(),
                                               details.highlightedTermMatchesSupervision()),
                         m_details));
    if (!details.platformTags().isEmpty())
        m_detailsLayout->addWidget(TagLabel::platformLine(details.platformTags(), m_details));
    if (details.showsDocumentationButton())
        m_detailsLayout->addWidget(makeDocumentationButton());
    m_detailsLayout->addStretch(1);
}

QToolButton* FieldRowView::makeDocumentationButton() {
    auto* button = new QToolButton(m_details);
    button->setObjectName(QStringLiteral("documentationButton"));
    button->setText(QStringLiteral("Documentation"));
    button->setAutoRaise(true);
    button->setAccessibleName(QStringLiteral("Documentation"));
    connect(button, &QToolButton::clicked, this, [this] {
        if (const auto url = m_field->details().documentationURL())
            QDesktopServices::openUrl(*url);
    });
    return button;
}

// A check box row tightens below itself when it has no details and no error.
void FieldRowView::applySpacing() {
    const auto spacing = m_field->spacing();
    if (!spacing)
        return;
    const QMargins margins = layout()->contentsMargins();
    layout()->setContentsMargins(margins.left(), 1, margins.right(), spacing->bottomSpace);
    m_detailsLayout->setContentsMargins(0, spacing->instrumentRowBottomPadding, 0, 0);
}

void FieldRowView::showInfoButtonIfWanted() {
    m_infoButton->setVisible(m_isMouseOver || m_openPopover);
}

void FieldRowView::enterEvent(QEnterEvent* event) {
    QWidget::enterEvent(event);
    m_isMouseOver = true;
    showInfoButtonIfWanted();
}

void FieldRowView::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    m_isMouseOver = false;
    showInfoButtonIfWanted();
}

QMenu* FieldRowView::makeContextMenu(QWidget* parent) {
    auto* menu = new QMenu(parent);
    menu->setObjectName(QStringLiteral("fieldContextMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    addMenuActions(*menu, nullptr);
    return menu;
}

void FieldRowView::addMenuActions(QMenu& menu, QAction* before) {
    for (const MenuAction action : {MenuAction::unsetOnPayload, MenuAction::setPropertyToDefaultValue,
                                    MenuAction::forceEmptyValue, MenuAction::openPropertyInfoPanel}) {
        auto* item = new QAction(menuTitle(action), &menu);
        item->setData(int(action));
        item->setEnabled(m_field->validateMenuItem(action));
        if (action == MenuAction::openPropertyInfoPanel)
            item->setShortcut(propertyInfoShortcut());
        connect(item, &QAction::triggered, this, [this, action] { perform(action); });
        menu.insertAction(before, item);
    }
}

void FieldRowView::perform(MenuAction action) {
    if (action == MenuAction::openPropertyInfoPanel) {
        openPropertyInfo();
        return;
    }
    m_field->perform(action);
    m_field->refresh();
    refresh();
}

PropertyInfoPopover* FieldRowView::openPropertyInfo() {
    if (m_popover)
        m_popover->close();
    m_popover = new PropertyInfoPopover(m_field->propertyInfo(), this);
    m_openPopover = m_popover.data();
    // The button lingers while its popover is open, then follows the pointer again.
    m_infoButton->show();
    // While a widget is destroyed its guarded pointers still hold it, and it
    // is no longer a popover: only its address is compared.
    connect(m_popover.data(), &QObject::destroyed, this, [this](QObject* closing) {
        if (m_openPopover == closing)
            m_openPopover = nullptr;
        m_infoButton->setVisible(m_isMouseOver || m_openPopover);
    });
    m_popover->showBelow(m_infoButton);
    return m_popover;
}

} // namespace quorlin
