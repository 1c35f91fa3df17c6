#include "model/ProfileDifferenceText.h"

#include "model/ProfileValueText.h"

#include <QStringList>

namespace quorlin {

namespace {

using Kind = ProfileDifference::Kind;

bool isOfSignature(Kind kind) {
    return kind == Kind::signatureAdded || kind == Kind::signatureRemoved || kind == Kind::signerChanged;
}

} // namespace

QString ProfileDifferenceText::report(const QList<ProfileDifference>& differences) {
    if (differences.isEmpty())
        return noDifferences() + u'\n';
    QString text;
    for (const ProfileDifference& difference : differences) {
        const bool standsAlone = difference.isOfPayload() || isOfSignature(difference.kind);
        text += standsAlone ? heading(difference) : QStringLiteral("  ") + line(difference);
        text += u'\n';
    }
    return text;
}

QString ProfileDifferenceText::heading(const ProfileDifference& difference) {
    if (isOfSignature(difference.kind))
        return QStringLiteral("Signature: %1 (%2 → %3)")
            .arg(ProfileDifference::kindName(difference.kind), signerWords(difference.oldValue),
                 signerWords(difference.newValue));
    return payloadWords(difference) + QStringLiteral(": ") + ProfileDifference::kindName(difference.kind);
}

QString ProfileDifferenceText::line(const ProfileDifference& difference) {
    return QStringLiteral("%1 %2 (%3): %4")
        .arg(marker(difference.kind), difference.keyTitles.join(QStringLiteral(" › ")), difference.keyPath,
             change(difference));
}

QString ProfileDifferenceText::noDifferences() {
    return QStringLiteral("No differences in effect.");
}

QString ProfileDifferenceText::payloadWords(const ProfileDifference& difference) {
    const QString name =
        difference.payloadName.isEmpty() ? QString() : QStringLiteral(" “%1”").arg(difference.payloadName);
    return QStringLiteral("%1%2 (%3)").arg(difference.payloadTitle, name, difference.payloadType);
}

QString ProfileDifferenceText::signerWords(const std::optional<plist::Value>& signers) {
    if (!signers)
        return QStringLiteral("not signed");
    QStringList names;
    for (const plist::Value& name : signers->array() ? *signers->array() : plist::Array{})
        names << QStringLiteral("“%1”").arg(name.toString().value_or(QString()));
    return QStringLiteral("signed by ") + names.join(QStringLiteral(", "));
}

QString ProfileDifferenceText::marker(Kind kind) {
    switch (kind) {
    case Kind::keyAdded:
    case Kind::itemAdded:
        return QStringLiteral("+");
    case Kind::keyRemoved:
    case Kind::itemRemoved:
        return QStringLiteral("-");
    case Kind::itemMoved:
        return QStringLiteral(">");
    default:
        return QStringLiteral("~");
    }
}

QString ProfileDifferenceText::change(const ProfileDifference& difference) {
    if (difference.kind == Kind::itemMoved)
        return QStringLiteral("moved from item %1 to item %2")
            .arg(*difference.oldIndex + 1)
            .arg(*difference.newIndex + 1);
    const QString oldText =
        difference.oldValue ? ProfileValueText::describe(*difference.oldValue) : QString();
    const QString newText =
        difference.newValue ? ProfileValueText::describe(*difference.newValue) : QString();
    if (!difference.oldValue)
        return newText;
    if (!difference.newValue)
        return oldText;
    return oldText + QStringLiteral(" → ") + newText;
}

} // namespace quorlin
