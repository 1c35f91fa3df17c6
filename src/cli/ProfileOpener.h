#pragma once

#include "cli/InputFile.h"
#include "cli/ProfileContext.h"
#include "documents/SignedMessage.h"
#include "model/Profile.h"
#include "plist/Expected.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorlin::cli {

// A profile file opened as the editor opens it.
struct OpenedProfile {
    QString path;
    // The file as it was read.
    QByteArray fileBytes;
    // The property list: the file itself, or the content of its signed message.
    QByteArray content;
    // Only for a signed file: its signers and what the checks found of them.
    std::optional<SignedMessage> signature;
    Profile::Pointer profile;

    bool isSigned() const { return signature.has_value(); }
};

// The one way the commands open profile files: as the editor's document
// reads them, plain or signed, with its refusals in its own words.
class ProfileOpener {
public:
    explicit ProfileOpener(const ProfileContext& context)
        : m_context(context) {}

    // Errors start with the path. A file that can't be read is `unreadable`;
    // one that isn't a configuration profile is `invalid`.
    Expected<OpenedProfile, InputFile::Error> open(const QString& path) const;

private:
    const ProfileContext& m_context;
};

} // namespace quorlin::cli
