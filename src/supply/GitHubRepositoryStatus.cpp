#include "supply/GitHubRepositoryStatus.h"

namespace quorlin {

void GitHubRepositoryStatus::setVerificationStatus(VerificationStatuses status) {
    // Every check posts its start, even when the last one ended the same way.
    m_verificationStatus = status;
    Q_EMIT verificationStatusChanged(status);
}

} // namespace quorlin
