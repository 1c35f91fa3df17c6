// The window's command on the values the profile keeps from its file though
// the manifests don't allow them: a list of them, and their removal as one
// step the history can undo.
#include "ui/DocumentWindow.h"

#include "ui/PayloadSelectorDialog.h"
#include "validation/HeldValueWords.h"

#include <QMessageBox>

namespace quorlin {

namespace {

const QString removeHeldTitle = QStringLiteral("Remove");
const QString removeHeldMessage =
    QStringLiteral("The profile keeps these values from its file, though the manifests don't allow them. "
                   "Select the ones to remove.");
const QString noHeldValuesText =
    QStringLiteral("The profile holds no values that the manifests don't allow.");

struct HeldRow {
    PreferenceKey::Pointer key;
    QString title;
};

QList<HeldRow> heldRows(const Profile& profile) {
    QList<Payload::Pointer> payloads{profile.rootPayload()};
    payloads.append(profile.configurationPayloads());
    QList<HeldRow> rows;
    for (const auto& payload : payloads) {
        const QString name = payload->displayName().value_or(payload->domainPrototype().title());
        for (const auto& place : payload->heldValuePlaces()) {
            QStringList texts;
            for (const auto& entry : place.key->heldEntries())
                texts.append(HeldValueWords::reasonText(*place.key, entry) + QStringLiteral(" (") +
                             HeldValueWords::valueText(entry.value) + u')');
            rows.append(
                {place.key,
                 QStringLiteral("%1: %2: %3").arg(name, place.path, texts.join(QStringLiteral("; ")))});
        }
    }
    return rows;
}

} // namespace

void DocumentWindow::removeValuesTheManifestsDontAllow() {
    const Profile::Pointer& profile = m_document->profile();
    const QList<HeldRow> rows = profile ? heldRows(*profile) : QList<HeldRow>();
    if (rows.isEmpty()) {
        QMessageBox::information(this, m_removeHeldValuesAction->text().remove(u'&'), noHeldValuesText);
        return;
    }
    QStringList titles;
    for (const HeldRow& row : rows)
        titles.append(row.title);
    auto* dialog = PayloadSelectorDialog::ask(this, titles, removeHeldTitle, removeHeldMessage,
                                              [this, rows](const QList<int>& chosen) {
                                                  PreferenceKey::KeyList keys;
                                                  for (const int index : chosen)
                                                      keys.append(rows.at(index).key);
                                                  m_history.removeHeldValues(keys);
                                              });
    for (qsizetype index = 0; dialog && index < rows.size(); ++index)
        dialog->setChecked(int(index), true);
}

} // namespace quorlin
