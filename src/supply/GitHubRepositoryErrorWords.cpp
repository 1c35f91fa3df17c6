#include "supply/GitHubRepositoryErrorWords.h"

namespace quorlin::GitHubRepositoryErrorWords {

QString message(GitHubRepositoryError error, const QString& suffix) {
    using Error = GitHubRepositoryError;
    const QString cannot =
        QStringLiteral("Preference manifests cannot be downloaded from the online repository because ");
    QString text;
    switch (error) {
    case Error::unknown:
        text = QStringLiteral(
            "Failed to load preference manifests from the repository because of an unknown reason.");
        break;
    case Error::addressIsInvalid:
        text = cannot + QStringLiteral("it has an invalid address.");
        break;
    case Error::branchIsInvalid:
        text = cannot + QStringLiteral("it has an invalid branch name.");
        break;
    case Error::noInternetConnection:
        text = cannot + QStringLiteral("there is no internet connection.");
        break;
    case Error::failedObtainingIndexResponse:
    case Error::failedRetrievingIndex:
        text = cannot + QStringLiteral("the repository index could not be fetched.");
        break;
    case Error::parsingDownloadedIndexFailed:
        text = cannot + QStringLiteral("the repository index could not be parsed.");
        break;
    case Error::writingNewIndexFailed:
        text = cannot + QStringLiteral("the repository index could not be written to the drive.");
        break;
    case Error::failedObtainingManifestResponse:
    case Error::failedRetrievingManifest:
    case Error::failedMovingManifestAfterDownload:
        text = cannot + QStringLiteral("some manifests could not be downloaded.");
        break;
    }
    return text + suffix;
}

QString reportMessage(const QList<GitHubRepositoryError>& errors, bool isMainRepository) {
    if (errors.isEmpty())
        return {};
    QString suffix;
    if (errors.contains(GitHubRepositoryError::parsingDownloadedIndexFailed))
        suffix = isMainRepository ? QStringLiteral(" Bundled manifests will be used instead.")
                                  : QStringLiteral(" Bundled manifests are used instead.");
    return message(errors.first(), suffix);
}

} // namespace quorlin::GitHubRepositoryErrorWords
