#include "documents/DocumentNotice.h"

#include "documents/DocumentErrorWords.h"
#include "plist/DefaultsKey.h"

namespace quorlin {

namespace {

DocumentNotice informational(DocumentNotice::Kind kind, const QString& title, const QString& text,
                             const QString& suppressionKey) {
    return {kind,
            DocumentNotice::Style::informational,
            title,
            text,
            {{DocumentErrorWords::okReply, 1, DocumentNotice::KeyEquivalent::returnKey}},
            suppressionKey,
            DocumentErrorWords::doNotShowAgain};
}

} // namespace

DocumentNotice DocumentNotice::signingIdentityMissing() {
    return informational(Kind::signingIdentityMissing, DocumentErrorWords::signingIdentityMissingTitle,
                         DocumentErrorWords::signingIdentityMissingInfo,
                         DefaultsKey::noticeSuppressSigningIdentityMissing);
}

DocumentNotice DocumentNotice::malformedPayloadContentRemoved() {
    return informational(Kind::malformedPayloadContentRemoved,
                         DocumentErrorWords::malformedPayloadContentRemovedTitle,
                         DocumentErrorWords::malformedPayloadContentRemovedInfo,
                         DefaultsKey::noticeSuppressMalformedPayloadsRemoved);
}

DocumentNotice DocumentNotice::iOS15SilentInstallIncompatibility() {
    DocumentNotice notice = informational(Kind::iOS15SilentInstallIncompatibility,
                                          DocumentErrorWords::iOS15SilentInstallIncompatibilityTitle,
                                          DocumentErrorWords::iOS15SilentInstallIncompatibilityInfo,
                                          DefaultsKey::noticeSuppressIOS15SilentInstallationIncompatibility);
    notice.buttons = {{DocumentErrorWords::fixAndSaveReply, 1, KeyEquivalent::returnKey},
                      {DocumentErrorWords::dismissReply, 0, KeyEquivalent::escapeKey}};
    return notice;
}

DocumentNotice DocumentNotice::singlePayloadWrapped() {
    return informational(Kind::singlePayloadWrapped, DocumentErrorWords::singlePayloadWrappedTitle,
                         DocumentErrorWords::singlePayloadWrappedInfo, QString());
}

DocumentNotice DocumentNotice::profileInvalidOnSave(int invalidValueCount, qsizetype heldValueCount) {
    QString text = invalidValueCount == 1
                       ? DocumentErrorWords::profileInvalidOnSaveInfo
                       : DocumentErrorWords::profileInvalidPluralInfo.arg(invalidValueCount);
    if (heldValueCount > 0)
        text += DocumentErrorWords::profileKeepsHeldValues.arg(heldValueCount);
    return {Kind::profileInvalidOnSave,
            Style::warning,
            DocumentErrorWords::profileInvalidOnSaveTitle,
            text,
            {{DocumentErrorWords::saveReply, 1, KeyEquivalent::returnKey},
             {DocumentErrorWords::cancelReply, 0, KeyEquivalent::escapeKey}},
            DefaultsKey::noticeSuppressProfileInvalid,
            DocumentErrorWords::doNotShowAgain};
}

} // namespace quorlin
