#include "ui/PropertyListEditor.h"

#include "ui/Tint.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace quorlin {

namespace {

constexpr int pathRole = Qt::UserRole;
constexpr int heldRole = Qt::UserRole + 1;

bool isContainer(const plist::Value& value) {
    return value.isArray() || value.isDictionary();
}

} // namespace

PropertyListEditor::PropertyListEditor(const plist::Dictionary& dictionary, QWidget* parent)
    : QWidget(parent)
    , m_dictionary(dictionary)
    , m_tree(new QTreeWidget(this))
    , m_add(new QPushButton(QStringLiteral("Add"), this))
    , m_remove(new QPushButton(QStringLiteral("Remove"), this))
    , m_type(new QComboBox(this)) {
    setObjectName(QStringLiteral("propertyListEditor"));
    m_tree->setObjectName(QStringLiteral("propertyListTree"));
    m_tree->setAccessibleName(QStringLiteral("Property List"));
    m_tree->setHeaderLabels({QStringLiteral("Key"), QStringLiteral("Type"), QStringLiteral("Value")});
    m_tree->header()->setSectionResizeMode(keyColumn, QHeaderView::ResizeToContents);
    m_tree->header()->setSectionResizeMode(typeColumn, QHeaderView::ResizeToContents);
    m_tree->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::SelectedClicked);
    m_add->setAccessibleName(QStringLiteral("Add Key"));
    m_remove->setAccessibleName(QStringLiteral("Remove Key"));
    m_type->setAccessibleName(QStringLiteral("Type"));
    for (const auto type : PropertyListEdit::editableTypes())
        m_type->addItem(PropertyListEdit::typeTitle(type), int(type));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_add);
    buttons->addWidget(m_remove);
    buttons->addStretch(1);
    buttons->addWidget(m_type);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_tree, 1);
    column->addLayout(buttons);
    connect(m_tree, &QTreeWidget::itemChanged, this, &PropertyListEditor::itemEdited);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, &PropertyListEditor::followCurrent);
    connect(m_add, &QPushButton::clicked, this, &PropertyListEditor::addToCurrent);
    connect(m_remove, &QPushButton::clicked, this, &PropertyListEditor::removeCurrent);
    connect(m_type, &QComboBox::activated, this, &PropertyListEditor::changeType);
    fill();
}

void PropertyListEditor::fill() {
    m_filling = true;
    m_tree->clear();
    addChildren(m_tree->invisibleRootItem(), plist::Value(m_dictionary), {});
    markHeld();
    m_tree->expandAll();
    m_filling = false;
    followCurrent();
}

void PropertyListEditor::addChildren(QTreeWidgetItem* parent, const plist::Value& value,
                                     const PropertyListEdit::Path& path) {
    if (const auto* dictionary = value.dictionary()) {
        for (auto entry = dictionary->begin(); entry != dictionary->end(); ++entry)
            parent->addChild(
                makeItem(entry.key(), entry.value(), path + PropertyListEdit::Path{entry.key()}, true));
    } else if (const auto* array = value.array()) {
        for (int index = 0; index < array->size(); ++index)
            parent->addChild(makeItem(QStringLiteral("Item %1").arg(index), array->at(index),
                                      path + PropertyListEdit::Path{index}, false));
    }
}

QTreeWidgetItem* PropertyListEditor::makeItem(const QString& key, const plist::Value& value,
                                              const PropertyListEdit::Path& path, bool keyEditable) {
    auto* item = new QTreeWidgetItem(
        {key, PropertyListEdit::typeTitle(value.type()), PropertyListEdit::valueText(value)});
    item->setData(keyColumn, pathRole, QVariant(path));
    // Only what can be typed is edited in place; containers change by their children.
    const bool editable = (keyEditable || !isContainer(value));
    if (editable)
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    addChildren(item, value, path);
    return item;
}

void PropertyListEditor::setHeldPlaces(const QList<HeldValuePaths::Place>& places) {
    m_held = places;
    fill();
}

bool PropertyListEditor::isMarkedHeld(const QTreeWidgetItem* item) {
    return item && item->data(keyColumn, heldRole).toBool();
}

void PropertyListEditor::markHeld() {
    for (const HeldValuePaths::Place& place : m_held) {
        QTreeWidgetItem* item = itemAt(place.path);
        if (!item)
            continue;
        item->setData(keyColumn, heldRole, true);
        for (int column = keyColumn; column <= valueColumn; ++column) {
            item->setForeground(column, Tint::errorColour());
            item->setToolTip(column, place.reason);
            item->setData(column, Qt::AccessibleDescriptionRole, place.reason);
        }
        QFont font = item->font(keyColumn);
        font.setItalic(true);
        item->setFont(keyColumn, font);
    }
}

PropertyListEdit::Path PropertyListEditor::pathOf(const QTreeWidgetItem* item) {
    return item ? item->data(keyColumn, pathRole).toList() : PropertyListEdit::Path();
}

QTreeWidgetItem* PropertyListEditor::itemAt(const PropertyListEdit::Path& path) const {
    for (QTreeWidgetItemIterator it(m_tree); *it; ++it) {
        if (pathOf(*it) == path)
            return *it;
    }
    return nullptr;
}

void PropertyListEditor::followCurrent() {
    const plist::Value* value = PropertyListEdit::valueAt(m_dictionary, pathOf(m_tree->currentItem()));
    m_remove->setEnabled(value != nullptr);
    m_type->setEnabled(value != nullptr);
    if (value)
        m_type->setCurrentIndex(m_type->findData(int(value->type())));
}

void PropertyListEditor::itemEdited(QTreeWidgetItem* item, int column) {
    if (m_filling)
        return;
    const auto path = pathOf(item);
    const plist::Value* value = PropertyListEdit::valueAt(m_dictionary, path);
    if (!value)
        return;
    if (column == keyColumn) {
        offer(PropertyListEdit::renameKey(m_dictionary, path, item->text(keyColumn)));
    } else if (column == valueColumn && !isContainer(*value)) {
        const auto read = PropertyListEdit::valueFromText(value->type(), item->text(valueColumn));
        offer(read ? PropertyListEdit::setValue(m_dictionary, path, *read) : std::nullopt);
    } else {
        // The type changes through the chooser only.
        offer(std::nullopt);
    }
}

void PropertyListEditor::addToCurrent() {
    auto path = pathOf(m_tree->currentItem());
    const plist::Value* value = PropertyListEdit::valueAt(m_dictionary, path);
    // On a plain value, beside it.
    if (value && !isContainer(*value))
        path.removeLast();
    else if (!value)
        path.clear();
    offer(PropertyListEdit::add(m_dictionary, path));
}

void PropertyListEditor::removeCurrent() {
    offer(PropertyListEdit::remove(m_dictionary, pathOf(m_tree->currentItem())));
}

void PropertyListEditor::changeType(int index) {
    const auto path = pathOf(m_tree->currentItem());
    const plist::Value* value = PropertyListEdit::valueAt(m_dictionary, path);
    if (!value)
        return;
    const auto type = plist::Value::Type(m_type->itemData(index).toInt());
    if (type != value->type())
        offer(PropertyListEdit::setValue(m_dictionary, path, PropertyListEdit::converted(*value, type)));
}

// A refused edit puts back what the tree showed.
void PropertyListEditor::offer(const std::optional<plist::Dictionary>& after) {
    if (after && !(*after == m_dictionary)) {
        Q_EMIT edited(*after);
        return;
    }
    fill();
}

} // namespace quorlin
