#pragma once

#include "model/ProfileEncryptionServices.h"

#include <QList>
#include <QString>

namespace quorlin {

// The texts of encrypted payloads, shared by the editor and the command-line tool.
namespace EnvelopeWords {

QString describe(ProfileEncryptionServices::Failure failure);
// "CN=Device,O=Example, serial 1A2B", or the key identifier.
QString describe(const EnvelopeRecipient& recipient);
// One recipient a line.
QString describe(const QList<EnvelopeRecipient>& recipients);

inline const QString encryptedTitle = QStringLiteral("Encrypted Payloads");
// %1: the recipients, one a line.
inline const QString encryptedInfo =
    QStringLiteral("The payloads of this profile are encrypted for:\n%1\n\nThey are kept as they are and "
                   "written back unchanged on save.");
// %1: the recipients; %2: the identities of the user's that can decrypt.
inline const QString decryptableInfo =
    QStringLiteral("The payloads of this profile are encrypted for:\n%1\n\nYour identity “%2” is a "
                   "recipient: decrypt the payloads to edit them. They are encrypted again for the same "
                   "recipients on save.");
inline const QString decryptReply = QStringLiteral("Decrypt…");
inline const QString keepEncryptedReply = QStringLiteral("Keep Encrypted");
inline const QString recipientsMissingTitle = QStringLiteral("Recipient Certificates Missing");
// %1: the recipients whose certificates aren't at hand.
inline const QString recipientsMissingInfo =
    QStringLiteral("The certificates of these recipients are not among your identities, so saving will "
                   "not encrypt the payloads for them:\n%1\n\nUse File > Encrypt for… to choose every "
                   "recipient's certificate.");
inline const QString serialLabel = QStringLiteral("serial");
inline const QString keyIdentifierLabel = QStringLiteral("key identifier");

} // namespace EnvelopeWords

} // namespace quorlin
