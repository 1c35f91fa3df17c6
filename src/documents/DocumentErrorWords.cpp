#include "documents/DocumentErrorWords.h"

#include <QFileInfo>

namespace quorlin {

QString DocumentErrorWords::describe(const QString& domain, int code,
                                     const std::optional<QString>& filePath) {
    if (domain == DocumentError::osStatusErrorDomain && code == DocumentError::noDataCode)
        return cannotProduceData;
    if (domain != DocumentError::profileDocumentErrorDomain)
        return {};
    const QString fileName = filePath ? QFileInfo(*filePath).fileName() : QString();
    switch (code) {
    case DocumentError::profileParsingFailedProfileServicePayload:
        return filePath ? profileServicePayload.arg(fileName) : profileServicePayloadAnonymous;
    case DocumentError::profileParsingFailedEnrollmentServicePayload:
        return filePath ? enrollmentServicePayload.arg(fileName) : enrollmentServicePayloadAnonymous;
    default:
        return cannotRead;
    }
}

} // namespace quorlin
