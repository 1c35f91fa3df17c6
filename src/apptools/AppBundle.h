#pragma once

#include "apptools/CodeSignature.h"
#include "plist/Value.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace quorlin::apptools {

// Answers questions about an application: its names and versions, the
// platform it was built for, its architectures, its size, and what its
// embedded signature says. It knows nothing of profiles. Every query may
// answer nothing; none fails.
class AppBundle {
public:
    enum class OS { iOSOnMac, macOS };
    enum class CPUArchitecture { arm, arm64, x86_64, i386, ppc };

    virtual ~AppBundle() = default;
    AppBundle(const AppBundle&) = delete;
    AppBundle& operator=(const AppBundle&) = delete;

    // An ordinary application, else an iOS application wrapped for the Mac,
    // else, for a file rather than a folder, a bare program file; nothing
    // when none of them can be read there.
    static std::unique_ptr<AppBundle> create(const QString& path);

    const plist::Dictionary& infoPlist() const { return m_infoPlist; }
    const QString& url() const { return m_url; }
    const QString& executableURL() const { return m_executableURL; }

    virtual std::optional<QString> name() const;
    virtual std::optional<QString> copyright() const;
    virtual std::optional<QString> bundleIdentifier() const;
    virtual std::optional<QString> buildVersion() const;
    virtual std::optional<QString> shortVersion() const;
    // The file of the bundle's icon, for the front end to decode.
    virtual std::optional<QString> icon() const;
    virtual std::optional<QList<CPUArchitecture>> architectures() const;
    virtual std::optional<OS> os() const;
    virtual std::optional<QString> minimumOSVersion() const;
    virtual std::optional<qint64> size() const;
    virtual std::optional<QString> developerName() const;
    virtual std::optional<QString> teamIdentifier() const;
    // Reserved: they answer nothing in this version.
    virtual std::optional<bool> isSigned() const { return std::nullopt; }
    virtual std::optional<bool> isSandboxed() const { return std::nullopt; }
    virtual std::optional<bool> isHardened() const { return std::nullopt; }
    virtual std::optional<QString> codeRequirement() const;
    // Keys of the entitlements; the empty list for an empty dictionary.
    virtual std::optional<QStringList> entitlements() const;

    static QString architectureName(CPUArchitecture architecture);

protected:
    AppBundle(QString url, QString executableURL, plist::Dictionary infoPlist);

    // The signature of the executable, read once.
    const CodeSignature* signature() const;

private:
    QString m_url;
    QString m_executableURL;
    plist::Dictionary m_infoPlist;
    mutable bool m_signatureRead = false;
    mutable std::optional<CodeSignature> m_signature;
};

} // namespace quorlin::apptools
