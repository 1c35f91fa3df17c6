#include "documents/DocumentError.h"

#include "documents/DocumentErrorWords.h"
#include "documents/EnvelopeWords.h"

namespace quorlin {

DocumentError DocumentError::refusal(int code, const std::optional<QString>& filePath) {
    // Only the refusals of other kinds of profile name the file they refuse.
    const bool namesFile = code == profileParsingFailedProfileServicePayload ||
                           code == profileParsingFailedEnrollmentServicePayload;
    const std::optional<QString> kept = namesFile ? filePath : std::nullopt;
    return {profileDocumentErrorDomain,
            code,
            kept,
            DocumentErrorWords::describe(profileDocumentErrorDomain, code, kept),
            {}};
}

DocumentError DocumentError::noData() {
    return {osStatusErrorDomain,
            noDataCode,
            std::nullopt,
            DocumentErrorWords::describe(osStatusErrorDomain, noDataCode, std::nullopt),
            {}};
}

DocumentError DocumentError::envelopeFailed(ProfileEncryptionServices::Failure failure) {
    return {envelopeErrorDomain, int(failure), std::nullopt, EnvelopeWords::describe(failure), {}};
}

DocumentError DocumentError::fileFailed(int fileError, const QString& reason) {
    return {fileErrorDomain, fileError, std::nullopt, reason, {}};
}

QString DocumentError::wordsWithReason(const QString& separator) const {
    if (reason.isEmpty())
        return words;
    QString sentence = reason;
    sentence[0] = sentence[0].toUpper();
    return words + separator + sentence + u'.';
}

} // namespace quorlin
