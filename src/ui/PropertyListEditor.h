#pragma once

#include "plist/Value.h"
#include "workspace/HeldValuePaths.h"
#include "workspace/PropertyListEdit.h"

#include <QWidget>

#include <optional>

class QComboBox;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace quorlin {

// A payload's dictionary as a typed tree (key, type, value) that edits it
// directly: values and keys in place, Add, Remove and a type chooser. It
// changes nothing itself: each edit is offered as the whole new dictionary,
// and the owner shows what it then holds.
class PropertyListEditor : public QWidget {
    Q_OBJECT

public:
    explicit PropertyListEditor(const plist::Dictionary& dictionary, QWidget* parent = nullptr);

    // Values the payload keeps from its file though no manifest key binds
    // them: marked at their place, each telling why.
    void setHeldPlaces(const QList<HeldValuePaths::Place>& places);
    static bool isMarkedHeld(const QTreeWidgetItem* item);

    const plist::Dictionary& dictionary() const { return m_dictionary; }
    QTreeWidget* tree() const { return m_tree; }
    QPushButton* addButton() const { return m_add; }
    QPushButton* removeButton() const { return m_remove; }
    QComboBox* typeChooser() const { return m_type; }
    QTreeWidgetItem* itemAt(const PropertyListEdit::Path& path) const;
    static PropertyListEdit::Path pathOf(const QTreeWidgetItem* item);

    enum Column { keyColumn, typeColumn, valueColumn };

Q_SIGNALS:
    void edited(const plist::Dictionary& after);

private:
    void fill();
    void markHeld();
    void addChildren(QTreeWidgetItem* parent, const plist::Value& value, const PropertyListEdit::Path& path);
    QTreeWidgetItem* makeItem(const QString& key, const plist::Value& value,
                              const PropertyListEdit::Path& path, bool keyEditable);
    void followCurrent();
    void itemEdited(QTreeWidgetItem* item, int column);
    void addToCurrent();
    void removeCurrent();
    void changeType(int index);
    void offer(const std::optional<plist::Dictionary>& after);

    plist::Dictionary m_dictionary;
    QTreeWidget* m_tree;
    QPushButton* m_add;
    QPushButton* m_remove;
    QComboBox* m_type;
    QList<HeldValuePaths::Place> m_held;
    bool m_filling = false;
};

} // namespace quorlin
