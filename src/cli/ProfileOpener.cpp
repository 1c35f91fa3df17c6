#include "cli/ProfileOpener.h"

#include "documents/ProfileDocument.h"

namespace quorlin::cli {

Expected<OpenedProfile, InputFile::Error> ProfileOpener::open(const QString& path) const {
    const auto bytes = InputFile::read(path);
    if (!bytes)
        return fail(bytes.error());
    const auto invalid = [&](const QString& reason) {
        return fail(InputFile::Error{InputFile::Error::Kind::invalid, path + QStringLiteral(": ") + reason});
    };
    // The editor would show an empty file as a new profile; a script that
    // names a file expects one with something in it.
    if (bytes->isEmpty())
        return invalid(QStringLiteral("the file is empty"));

    OpenedProfile opened{path, *bytes, *bytes, std::nullopt, nullptr};
    // A property list is never a valid CMS message, so asking this first
    // opens the same files as trying the property list first, and keeps the
    // signers' verdicts that the profile model doesn't hold.
    if (auto message = m_context.signing.decodeSignedMessage(*bytes)) {
        opened.content = message->content;
        opened.signature = std::move(message);
    }
    auto profile = ProfileDocument::makeProfile(*bytes, m_context.domains, m_context.environment, path);
    if (!profile)
        return invalid(profile.error().wordsWithReason());
    opened.profile = std::move(profile).value();
    return opened;
}

} // namespace quorlin::cli
