#pragma once

#include "model/ProfileEncryptionServices.h"

#include <QString>

#include <optional>

namespace quorlin {

// Why a document could not be read or saved, as the front end and the
// command-line tool show it. Never thrown: it travels as the error side of
// an Expected.
struct DocumentError {
    // Refusals of files that are no configuration profile.
    static inline const QString profileDocumentErrorDomain = QStringLiteral("ProfileDocumentErrorDomain");
    // A save that could produce no data.
    static inline const QString osStatusErrorDomain = QStringLiteral("NSOSStatusErrorDomain");
    // The file system refused a read or a write; the code is a QFileDevice::FileError.
    static inline const QString fileErrorDomain = QStringLiteral("QuorlinFileErrorDomain");
    // Encrypted payloads that can't be opened or sealed; the code is the failure.
    static inline const QString envelopeErrorDomain = QStringLiteral("QuorlinEnvelopeErrorDomain");

    enum ProfileDocumentCode {
        profileParsingFailedUnknown = 0,
        profileParsingFailedProfileServicePayload = 1,
        profileParsingFailedEnrollmentServicePayload = 2
    };
    static constexpr int noDataCode = -4;

    QString domain;
    int code = 0;
    // The document's file, kept with the refusals of codes 1 and 2 only.
    std::optional<QString> filePath;
    // What the user reads.
    QString words;
    // Where and why a file was refused, after the words: the parser's reason
    // and line, or what is wrong with the signed message. Empty when there
    // is nothing to add.
    QString reason;

    // The words followed by the reason as a sentence of its own.
    QString wordsWithReason(const QString& separator = QStringLiteral(" ")) const;

    static DocumentError refusal(int code, const std::optional<QString>& filePath);
    static DocumentError noData();
    static DocumentError fileFailed(int fileError, const QString& reason);
    static DocumentError envelopeFailed(ProfileEncryptionServices::Failure failure);

    bool operator==(const DocumentError&) const = default;
};

} // namespace quorlin
