#include "apptools/AppBundle.h"

#include "apptools/AppBundleIOSOnMac.h"
#include "apptools/AppBundleMacOS.h"
#include "apptools/AppBundleProgramFile.h"
#include "apptools/MachOFile.h"

#include <QDirIterator>
#include <QFileInfo>

namespace quorlin::apptools {

AppBundle::AppBundle(QString url, QString executableURL, plist::Dictionary infoPlist)
    : m_url(std::move(url))
    , m_executableURL(std::move(executableURL))
    , m_infoPlist(std::move(infoPlist)) {}

std::unique_ptr<AppBundle> AppBundle::create(const QString& path) {
    if (auto bundle = AppBundleMacOS::make(path))
        return bundle;
    if (auto bundle = AppBundleIOSOnMac::make(path))
        return bundle;
    return AppBundleProgramFile::make(path);
}

std::optional<QString> AppBundle::name() const {
    if (auto name = m_infoPlist.string(QStringLiteral("CFBundleName")))
        return name;
    return QFileInfo(m_url).completeBaseName();
}

std::optional<QString> AppBundle::copyright() const {
    return m_infoPlist.string(QStringLiteral("NSHumanReadableCopyright"));
}

std::optional<QString> AppBundle::bundleIdentifier() const {
    return m_infoPlist.string(QStringLiteral("CFBundleIdentifier"));
}

std::optional<QString> AppBundle::buildVersion() const {
    return m_infoPlist.string(QStringLiteral("CFBundleVersion"));
}

std::optional<QString> AppBundle::shortVersion() const {
    return m_infoPlist.string(QStringLiteral("CFBundleShortVersionString"));
}

std::optional<QString> AppBundle::icon() const {
    return std::nullopt;
}

std::optional<QList<AppBundle::CPUArchitecture>> AppBundle::architectures() const {
    const auto file = MachOFile::read(m_executableURL);
    if (!file)
        return std::nullopt;
    static const QList<CPUArchitecture> known{CPUArchitecture::arm, CPUArchitecture::arm64,
                                              CPUArchitecture::x86_64, CPUArchitecture::i386,
                                              CPUArchitecture::ppc};
    QList<CPUArchitecture> found;
    for (const QString& name : file->architectures()) {
        for (const CPUArchitecture architecture : known) {
            if (architectureName(architecture) == name)
                found << architecture;
        }
    }
    return found;
}

std::optional<AppBundle::OS> AppBundle::os() const {
    return std::nullopt;
}

std::optional<QString> AppBundle::minimumOSVersion() const {
    return std::nullopt;
}

std::optional<qint64> AppBundle::size() const {
    qint64 total = 0;
    // Links are counted as themselves, never followed: a link may lead out of
    // the bundle or round in a circle.
    QDirIterator items(m_url, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (items.hasNext()) {
        const QFileInfo item(items.next());
        if (item.isFile() && !item.isSymLink())
            total += item.size();
    }
    return total;
}

std::optional<QString> AppBundle::developerName() const {
    const CodeSignature* code = signature();
    return code ? code->developerName() : std::nullopt;
}

std::optional<QString> AppBundle::teamIdentifier() const {
    const CodeSignature* code = signature();
    return code ? code->teamIdentifier() : std::nullopt;
}

std::optional<QString> AppBundle::codeRequirement() const {
    const CodeSignature* code = signature();
    return code ? code->designatedRequirement() : std::nullopt;
}

std::optional<QStringList> AppBundle::entitlements() const {
    const CodeSignature* code = signature();
    if (!code || !code->entitlements())
        return std::nullopt;
    return code->entitlements()->keys();
}

QString AppBundle::architectureName(CPUArchitecture architecture) {
    switch (architecture) {
    case CPUArchitecture::arm:
        return QStringLiteral("arm");
    case CPUArchitecture::arm64:
        return QStringLiteral("arm64");
    case CPUArchitecture::x86_64:
        return QStringLiteral("x86_64");
    case CPUArchitecture::i386:
        return QStringLiteral("i386");
    case CPUArchitecture::ppc:
        return QStringLiteral("ppc");
    }
    return {};
}

const CodeSignature* AppBundle::signature() const {
    if (!m_signatureRead) {
        m_signatureRead = true;
        const auto file = MachOFile::read(m_executableURL);
        const auto slice = file ? file->preferredSlice() : std::nullopt;
        const auto blob = slice ? file->codeSignature(*slice) : std::nullopt;
        if (blob)
            m_signature = CodeSignature::parse(*blob);
    }
    return m_signature ? &*m_signature : nullptr;
}

} // namespace quorlin::apptools
