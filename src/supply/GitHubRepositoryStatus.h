#pragma once

#include <QObject>

namespace quorlin {

// Whether the last check reached the repository and read its index: what
// the preferences wait on before they store new online settings.
class GitHubRepositoryStatus : public QObject {
    Q_OBJECT

public:
    enum class VerificationStatuses { notVerified = 0, verified = 1, failed = 2 };
    Q_ENUM(VerificationStatuses)

    using QObject::QObject;

    VerificationStatuses verificationStatus() const { return m_verificationStatus; }
    void setVerificationStatus(VerificationStatuses status);

Q_SIGNALS:
    void verificationStatusChanged(VerificationStatuses status);

private:
    VerificationStatuses m_verificationStatus = VerificationStatuses::notVerified;
};

} // namespace quorlin
