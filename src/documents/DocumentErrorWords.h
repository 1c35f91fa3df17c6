#pragma once

#include "documents/DocumentError.h"

#include <QString>

namespace quorlin {

// Every text that the document shows: the words of refused files and of
// failed saves, and the notices. Kept in one place so that the editor and the
// command-line tool say the same.
namespace DocumentErrorWords {

// The words of an error as the user reads them; refusals name the file when
// one is known.
QString describe(const QString& domain, int code, const std::optional<QString>& filePath);

inline const QString profileServicePayload =
    QStringLiteral("The document “%1” is a profile service payload and not a configuration profile.");
inline const QString profileServicePayloadAnonymous =
    QStringLiteral("The document that you are trying to open is a profile service payload and not a "
                   "configuration profile.");
inline const QString enrollmentServicePayload =
    QStringLiteral("The document “%1” is an MDM enrollment profile and not a configuration profile.");
inline const QString enrollmentServicePayloadAnonymous =
    QStringLiteral("The document that you are trying to open is an MDM enrollment profile and not a "
                   "configuration profile.");
inline const QString cannotRead =
    QStringLiteral("The document could not be opened because it is not a readable configuration profile.");
// %1 the file, %2 its size and %3 the largest size read, in MB.
inline const QString tooLargeToRead =
    QStringLiteral("The document “%1” could not be opened because it is %2 MB, larger than the %3 MB that "
                   "a configuration profile may take.");
inline const QString cannotProduceData = QStringLiteral("The document could not be saved.");
inline const QString saveInterrupted =
    QStringLiteral("The save was stopped before it completed; the file was left as it was.");

inline const QString signingIdentityMissingTitle = QStringLiteral("Signing Identity Missing");
inline const QString signingIdentityMissingInfo =
    QStringLiteral("The original identity(ies) used to sign this profile is(are) not available on this "
                   "computer.\n\nTo sign the profile when saving, select an available profile signing "
                   "identity in the General settings section.");
inline const QString malformedPayloadContentRemovedTitle = QStringLiteral("Malformed Payload(s)");
inline const QString malformedPayloadContentRemovedInfo =
    QStringLiteral("The opened profile contains malformed payload(s) which will not be written back to "
                   "file on save.");
inline const QString iOS15SilentInstallIncompatibilityTitle = QStringLiteral("Fix Profile Incompatibility?");
inline const QString iOS15SilentInstallIncompatibilityInfo =
    QStringLiteral("Requirements introduced by Apple in late 2021 make this profile incompatible for silent "
                   "installation.");
inline const QString profileInvalidOnSaveTitle = QStringLiteral("Profile May Fail Installation");
inline const QString profileInvalidOnSaveInfo =
    QStringLiteral("The profile contains one property with an invalid value (affected section is marked "
                   "with a red badge).\n\nInvalid values can cause the profile to fail installation on "
                   "device.");
// %1 is the count of invalid values.
inline const QString profileInvalidPluralInfo =
    QStringLiteral("The profile contains %1 properties with invalid values (affected sections are marked "
                   "with a red badge).\n\nInvalid values can cause the profile to fail installation on "
                   "device.");
// Appended to the notice above; %1 is the count of held values.
inline const QString profileKeepsHeldValues =
    QStringLiteral("\n\nThe file keeps %1 value(s) that the manifests don't allow, as it was opened with "
                   "them; remove them in the form, or with Remove Values the Manifests Don't Allow….");
inline const QString singlePayloadWrappedTitle = QStringLiteral("One Payload, Not a Profile");
inline const QString singlePayloadWrappedInfo =
    QStringLiteral("The file holds one payload rather than a profile, as device management consoles export "
                   "them. It was opened as the payload of a new, untitled profile; saving asks for a new "
                   "place, so the file itself stays as it is.");
inline const QString doNotShowAgain = QStringLiteral("Do not show this notice again");

inline const QString okReply = QStringLiteral("OK");
inline const QString fixAndSaveReply = QStringLiteral("Fix and Save");
inline const QString dismissReply = QStringLiteral("Dismiss");
inline const QString saveReply = QStringLiteral("Continue with Saving");
inline const QString cancelReply = QStringLiteral("Cancel");

} // namespace DocumentErrorWords

} // namespace quorlin
