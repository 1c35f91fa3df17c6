#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace quorlin {

// Where an online repository's files are read from: GitHub's static file
// host, or the base URL in QUORLIN_RAW_CONTENT_URL, which lets tests and
// offline mirrors stand in for it.
namespace RawContentEndpoint {

QUrl baseUrl();

// The endpoint, then the repository's path, then the branch, as a folder;
// nothing when the address has no usable path.
std::optional<QUrl> userContentRoot(const QUrl& repositoryAddress, const QString& branch);

} // namespace RawContentEndpoint

} // namespace quorlin
