#pragma once

#include "model/Profile.h"

#include <QStringList>
#include <QUrl>
#include <QWidget>

#include <functional>
#include <memory>

class QComboBox;
class QLabel;
class QMenu;
class QTimer;

namespace quorlin {

// The general payload's row that chooses the identity a save signs with:
// "Do not sign", a separator, then the identities of this machine sorted by
// name, each with words on whether its chain is trusted. It edits the
// profile's `saveSignedWithCommonName`.
class SigningRowView : public QWidget {
    Q_OBJECT

public:
    // Whether the identity of that name has a trusted chain.
    using TrustCheck = std::function<bool(const QString& name)>;

    SigningRowView(const Profile::Pointer& profile, TrustCheck isTrusted, QWidget* parent = nullptr);

    static QString noValueLabel();
    static QString noIdentitiesLabel();
    static QString trustedToolTip();
    static QString untrustedToolTip();
    static QString title();
    // The help page on signing, below the address of the Help menu's own.
    static QUrl helpUrl();

    QComboBox* popUp() const { return m_popUp; }
    // The identity names in the order of the items after the separator.
    const QStringList& identityNames() const { return m_names; }
    // Selects what the profile holds now; a name not in the list leaves the selection.
    void refresh();
    QMenu* makeContextMenu(QWidget* parent);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

Q_SIGNALS:
    // The user chose another identity; the document counts it as an edit.
    void saveSignedWithCommonNameEdited();

private:
    void fillItems();
    QStringList itemTitles() const;
    void choose(int index);
    void setCommonName(const std::optional<QString>& name);
    std::optional<QString> defaultCommonName() const;
    // Shows the profile's name when it changed without this row.
    void followProfile();
    void openHelp();

    std::weak_ptr<Profile> m_profile;
    TrustCheck m_isTrusted;
    QStringList m_names;
    QComboBox* m_popUp = nullptr;
    QLabel* m_writeOut = nullptr;
    std::optional<QString> m_shownName;
    QTimer* m_follow = nullptr;
};

} // namespace quorlin
