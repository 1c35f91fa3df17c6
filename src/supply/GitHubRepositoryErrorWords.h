#pragma once

#include "supply/GitHubRepositoryError.h"

#include <QList>
#include <QString>

namespace quorlin {

// What the update report and the command-line tool say about a failed check.
namespace GitHubRepositoryErrorWords {

// The words for one error, with its suffix.
QString message(GitHubRepositoryError error, const QString& suffix = {});

// The report's message: the first error's words; when the index couldn't be
// parsed, a note that the bundled manifests serve instead, worded for
// whether this repository is the one in force. Empty without errors.
QString reportMessage(const QList<GitHubRepositoryError>& errors, bool isMainRepository);

} // namespace GitHubRepositoryErrorWords

} // namespace quorlin
