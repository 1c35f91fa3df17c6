#pragma once

namespace quorlin {

// What went wrong in a check of an online repository, in the order the
// preferences' words for them are kept.
enum class GitHubRepositoryError {
    unknown,
    addressIsInvalid,
    branchIsInvalid,
    noInternetConnection,
    failedObtainingIndexResponse,
    failedRetrievingIndex,
    parsingDownloadedIndexFailed,
    writingNewIndexFailed,
    failedObtainingManifestResponse,
    failedRetrievingManifest,
    failedMovingManifestAfterDownload,
};

} // namespace quorlin
