#include "cli/ProfileOpener.h"

#include <QFileInfo>

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
    auto profile = Profile::parseProfile(*bytes, m_context.domains, m_context.environment);
    if (!profile)
        return invalid(refusal(profile.error(), path));
    opened.profile = std::move(profile).value();
    return opened;
}

QString ProfileOpener::refusal(Profile::Errors error, const QString& path) {
    const QString name = QFileInfo(path).fileName();
    switch (error) {
    case Profile::Errors::profileParsingFailedProfileServicePayload:
        return QStringLiteral(
                   "The document “%1” is a profile service payload and not a configuration profile.")
            .arg(name);
    case Profile::Errors::profileParsingFailedEnrollmentServicePayload:
        return QStringLiteral(
                   "The document “%1” is an MDM enrollment profile and not a configuration profile.")
            .arg(name);
    case Profile::Errors::profileParsingFailedUnknown:
        break;
    }
    return QStringLiteral("The document “%1” could not be opened: it is not a configuration profile.")
        .arg(name);
}

} // namespace quorlin::cli
