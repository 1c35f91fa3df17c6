#include "workspace/PFMSection.h"

#include "plist/Utilities.h"
#include "workspace/PFMSectionViewController.h"

#include <QFileInfo>

#include <algorithm>

namespace quorlin {

namespace {

using Model = PFMSupportedPlatforms::Model;

SupportedPlatforms allPlatforms() {
    std::set<SupportedPlatform> platforms;
    for (const Model model : PFMSupportedPlatforms::allModels)
        platforms.insert(SupportedPlatform{model, std::nullopt});
    return SupportedPlatforms(platforms);
}

// A platform both records name keeps the entry it already had.
SupportedPlatforms merged(const SupportedPlatforms& kept, const SupportedPlatforms& added) {
    std::set<SupportedPlatform> platforms = kept.platforms();
    for (const SupportedPlatform& platform : added.platforms()) {
        if (!kept.contains(platform.model))
            platforms.insert(platform);
    }
    return SupportedPlatforms(platforms);
}

int categoryNumber(PFMDomain::Category category) {
    return int(category);
}

bool fileMatchesSignatures(const QString& filePath, const QList<QByteArray>& signatures) {
    qsizetype longest = 0;
    for (const QByteArray& signature : signatures)
        longest = std::max(longest, signature.size());
    const auto leading = Utilities::readLeadingBytes(filePath, longest);
    if (!leading)
        return false;
    return std::any_of(signatures.begin(), signatures.end(),
                       [&](const QByteArray& signature) { return leading->startsWith(signature); });
}

} // namespace

PFMSection::PFMSection(const DomainPointer& domain) {
    addDomain(domain);
    if (!m_sectionProperties.icon)
        m_sectionProperties.iconName = QStringLiteral("domainIconDefault");
}

PFMSection::PFMSection(const QString& groupTitle, PFMDomain::Category category)
    : m_sortPriority(0)
    , m_sectionKind(Kinds::groupTitle)
    , m_supportedPlatforms(allPlatforms()) {
    m_sectionProperties.title = groupTitle;
    m_sectionProperties.domainCategory = category;
}

std::unique_ptr<PFMSection> PFMSection::makeUnfamiliar(const plist::Dictionary& payload) {
    const auto type = payload.string(QStringLiteral("PayloadType"));
    if (!type || type->isEmpty())
        return nullptr;
    // The payload itself stands in for a manifest: its type and its own name.
    plist::Dictionary manifest{
        {QStringLiteral("pfm_title"), payload.string(QStringLiteral("PayloadDisplayName")).value_or(*type)},
        {QStringLiteral("pfm_description"), QString()},
        {QStringLiteral("pfm_domain"), *type},
        {QStringLiteral("pfm_format_version"), 1},
        {QStringLiteral("pfm_subkeys"), plist::Array()}};
    const auto domain = PFMDomain::make(manifest);
    if (!domain)
        return nullptr;
    std::unique_ptr<PFMSection> section(new PFMSection(QString(), PFMDomain::Category::unknown));
    section->m_sectionKind = Kinds::unfamiliar;
    section->m_supportedPlatforms.reset();
    section->m_domains.insert(*type, domain);
    section->m_domainOrder.append(*type);
    section->m_sectionProperties.title = domain->title();
    section->m_sectionProperties.iconName = QStringLiteral("domainIconUnfamiliar");
    section->m_sortPriority = 999;
    section->m_payloadsConfigured = 1;
    return section;
}

PFMSection::~PFMSection() = default;

void PFMSection::addDomain(const DomainPointer& domain) {
    if (!m_domains.contains(domain->domainString()))
        m_domainOrder.append(domain->domainString());
    m_domains.insert(domain->domainString(), domain);
    PFMSectionProperties& properties = m_sectionProperties;
    properties.title = domain->title();
    properties.descriptionLine = domain->descriptionline();
    m_sortPriority = domain->sortPriority();
    properties.required = domain->required();
    properties.singlePayload = domain->singlePayload();
    properties.fileBasedPayload = properties.fileBasedPayload || domain->fileBasedPayload();
    if (domain->icon()) {
        properties.icon = domain->icon();
        properties.iconName.reset();
    }
    if (properties.domainCategory == PFMDomain::Category::unknown)
        properties.domainCategory = domain->domainCategory();
    if (const auto& url = domain->documentationURL()) {
        if (!properties.documentationURLs)
            properties.documentationURLs.emplace();
        if (!properties.documentationURLs->contains(*url))
            properties.documentationURLs->append(*url);
    }
    if (const auto& platforms = domain->supportedPlatforms())
        m_supportedPlatforms = m_supportedPlatforms ? merged(*m_supportedPlatforms, *platforms) : *platforms;
}

void PFMSection::setPayloadsConfigured(int count) {
    if (count == m_payloadsConfigured)
        return;
    m_payloadsConfigured = count;
    Q_EMIT payloadsConfiguredChanged(count);
}

bool PFMSection::hasPayloadsConfigured() const {
    return m_sectionKind == Kinds::unfamiliar || m_payloadsConfigured > 0;
}

void PFMSection::clearSectionViewController() {
    if (!m_sectionViewController)
        return;
    const bool hadErrors = m_sectionViewController->errorCount() > 0;
    m_sectionViewController.reset();
    setPayloadsConfigured(0);
    Q_EMIT sectionViewControllerChanged();
    if (hadErrors)
        Q_EMIT errorCountChanged(0);
}

int PFMSection::errorCount() const {
    return m_sectionViewController ? m_sectionViewController->errorCount() : 0;
}

QString PFMSection::payloadsConfiguredString() const {
    if (m_sectionProperties.required && m_sectionProperties.singlePayload)
        return QStringLiteral("Mandatory");
    if (m_payloadsConfigured == 1)
        return QStringLiteral("1 Payload Configured");
    if (m_payloadsConfigured == 0)
        return QStringLiteral("Not Configured");
    return QStringLiteral("%1 Payloads Configured").arg(m_payloadsConfigured);
}

QString PFMSection::sortingString() const {
    const int category = categoryNumber(m_sectionProperties.domainCategory);
    const bool configuredGroup = m_sectionKind == Kinds::groupTitle && category == 0;
    const bool inConfiguredBlock =
        configuredGroup || (m_sectionKind != Kinds::groupTitle && m_payloadsConfigured >= 1);
    QString sorting;
    sorting += inConfiguredBlock ? QLatin1Char('0') : QLatin1Char('1');
    sorting += category < 5 ? QString::number(category) : QStringLiteral("9");
    sorting += m_sectionKind == Kinds::groupTitle ? QLatin1Char('0') : QLatin1Char('1');
    sorting += QStringLiteral("%1").arg(std::min<quint64>(m_sortPriority, 999), 3, 10, QLatin1Char('0'));
    return sorting + m_sectionProperties.title;
}

QStringList PFMSection::supportedPlatformStrings() const {
    QStringList strings;
    if (m_supportedPlatforms) {
        for (const SupportedPlatform& platform : m_supportedPlatforms->platforms())
            strings.append(PFMSupportedPlatforms::rawValue(platform.model));
    }
    return strings;
}

QString PFMSection::supportedPlatformsString() const {
    if (m_sectionKind == Kinds::unfamiliar)
        return QStringLiteral("Unfamiliar Domain");
    QStringList names;
    if (m_supportedPlatforms) {
        for (const SupportedPlatform& platform : m_supportedPlatforms->platforms())
            names.append(PFMSupportedPlatforms::displayName(platform.model));
    }
    return Utilities::joinedTermSeries(names, false);
}

QString PFMSection::domainsString() const {
    return Utilities::joinedTermSeries(m_domainOrder, false);
}

const QStringList& PFMSection::searchKeywords() const {
    if (m_searchKeywords)
        return *m_searchKeywords;
    const auto domains = m_domains.values();
    const bool supervised = std::any_of(domains.begin(), domains.end(),
                                        [](const auto& domain) { return domain->requiresSupervision(); }) ||
                            std::any_of(domains.begin(), domains.end(), [](const auto& domain) {
                                return domain->containsSupervisedOnlyKeys();
                            });
    m_searchKeywords = supervised ? QStringList{QStringLiteral("Supervision"), QStringLiteral("Supervised"),
                                                QStringLiteral("Supervised only")}
                                  : QStringList();
    return *m_searchKeywords;
}

namespace {
bool anyDomainSupports(const QMap<QString, PFMSection::DomainPointer>& domains, Model model) {
    return std::any_of(domains.begin(), domains.end(), [&](const auto& domain) {
        return domain->supportedPlatforms() && domain->supportedPlatforms()->contains(model);
    });
}
} // namespace

bool PFMSection::supportsMacOS() const {
    return anyDomainSupports(m_domains, Model::macOS);
}

bool PFMSection::supportsIOS() const {
    return anyDomainSupports(m_domains, Model::iOS);
}

bool PFMSection::supportsTvOS() const {
    return anyDomainSupports(m_domains, Model::tvOS);
}

std::optional<QString> PFMSection::note() const {
    for (const QString& domainString : m_domainOrder) {
        if (const auto& note = m_domains.value(domainString)->note())
            return note;
    }
    return std::nullopt;
}

namespace {
// A domain needs supervision where its extended record says so, and on all
// its platforms when it requires supervision as a whole.
bool domainSupervisedOn(const PFMDomain& domain, Model model) {
    if (domain.requiresSupervision())
        return domain.supportedPlatforms() && domain.supportedPlatforms()->contains(model);
    const PFMXSupportedOS* record =
        domain.supportedOSes() ? domain.supportedOSes()->supportedOS(model) : nullptr;
    return record && record->supervised.value_or(false);
}
} // namespace

std::optional<QString> PFMSection::supervisionRequiredString() const {
    QStringList platforms;
    for (const Model model : PFMSupportedPlatforms::allModels) {
        if (std::any_of(m_domains.begin(), m_domains.end(),
                        [&](const DomainPointer& domain) { return domainSupervisedOn(*domain, model); }))
            platforms.append(PFMSupportedPlatforms::displayName(model));
    }
    const bool required = std::any_of(m_domains.begin(), m_domains.end(), [](const DomainPointer& domain) {
        return domain->requiresSupervision();
    });
    if (platforms.isEmpty())
        return required ? std::optional(QStringLiteral("Supervision required")) : std::nullopt;
    return QStringLiteral("Supervision required on %1").arg(Utilities::joinedTermSeries(platforms, false));
}

QStringList PFMSection::allowedFileExtensions() const {
    QStringList extensions;
    if (!m_sectionProperties.fileBasedPayload)
        return extensions;
    for (const QString& domainString : m_domainOrder) {
        const auto& fileKey = m_domains.value(domainString)->payloadFileDataSubkeyPrototype();
        if (!fileKey || !fileKey->allowedFileExtensions())
            continue;
        for (const QString& extension : *fileKey->allowedFileExtensions()) {
            if (!extensions.contains(extension))
                extensions.append(extension);
        }
    }
    return extensions;
}

void PFMSection::setValidationSettings(const std::weak_ptr<const ValidationSettings>& settings) {
    m_validationSettings = settings;
    if (m_sectionViewController)
        m_sectionViewController->setValidationSettings(settings);
}

void PFMSection::setFieldDisplaySettings(const FieldDisplaySettings& settings) {
    m_fieldDisplaySettings = settings;
    if (m_sectionViewController)
        m_sectionViewController->setFieldDisplaySettings(settings);
}

void PFMSection::setKeyValueWriter(const std::shared_ptr<KeyValueWriter>& writer) {
    m_keyValueWriter = writer;
}

PFMSection::DomainPointer PFMSection::primaryDomain() const {
    return m_domainOrder.isEmpty() ? nullptr : m_domains.value(m_domainOrder.last());
}

void PFMSection::bind(const Profile::Pointer& profile) {
    if (const auto& root = profile->rootPayload()) {
        if (m_domains.contains(root->domainPrototype().domainString()))
            giveFormPayload(profile, root);
    }
    for (const auto& payload : profile->configurationPayloads()) {
        if (m_domains.contains(payload->domainPrototype().domainString()))
            giveFormPayload(profile, payload);
    }
}

void PFMSection::giveFormPayload(const Profile::Pointer& profile, const Payload::Pointer& payload) {
    if (!m_sectionViewController)
        makeForm(profile, payload);
    else
        m_sectionViewController->addPayloadForm(payload);
}

PFMSectionViewController& PFMSection::makeForm(const Profile::Pointer& profile,
                                               const std::optional<Payload::Pointer>& payload) {
    m_sectionViewController = std::make_unique<PFMSectionViewController>(*this, profile);
    connect(m_sectionViewController.get(), &PFMSectionViewController::errorCountChanged, this,
            &PFMSection::errorCountChanged);
    m_sectionViewController->setValidationSettings(m_validationSettings);
    if (m_fieldDisplaySettings)
        m_sectionViewController->setFieldDisplaySettings(*m_fieldDisplaySettings);
    if (payload)
        m_sectionViewController->addPayloadForm(*payload);
    Q_EMIT sectionViewControllerChanged();
    return *m_sectionViewController;
}

PFMSection::AddPayloadResult PFMSection::addPayload(const Profile::Pointer& profile,
                                                    const std::optional<QString>& filePath) {
    if (m_sectionKind != Kinds::domain)
        return AddPayloadResult::refused;
    if (m_sectionProperties.singlePayload && m_payloadsConfigured > 0)
        return AddPayloadResult::refused;
    if (!m_sectionProperties.fileBasedPayload) {
        PFMSectionViewController& form =
            m_sectionViewController ? *m_sectionViewController : makeForm(profile, std::nullopt);
        const bool added = form.addPayload() != nullptr;
        if (form.payloadControllers().empty())
            clearSectionViewController();
        return added ? AddPayloadResult::added : AddPayloadResult::refused;
    }
    if (!filePath)
        return AddPayloadResult::fileNeeded;
    return addPayloadFromFile(profile, *filePath);
}

PFMSection::AddPayloadResult PFMSection::addPayloadFromFile(const Profile::Pointer& profile,
                                                            const QString& filePath) {
    const QFileInfo file(filePath);
    if (file.exists() && file.size() == 0)
        return AddPayloadResult::fileIncompatible;
    for (const QString& domainString : m_domainOrder) {
        const DomainPointer& domain = m_domains.value(domainString);
        if (!domainTakesFile(*domain, filePath))
            continue;
        if (const auto payload = profile->addPayloadFromFile(domain, filePath)) {
            giveFormPayload(profile, payload);
            return AddPayloadResult::added;
        }
    }
    return AddPayloadResult::fileIncompatible;
}

bool PFMSection::domainTakesFile(const PFMDomain& domain, const QString& filePath) const {
    const auto& fileKey = domain.payloadFileDataSubkeyPrototype();
    if (!fileKey || !fileKey->allowedFileExtensions() || fileKey->allowedFileExtensions()->isEmpty())
        return false;
    if (!fileKey->allowedFileExtensions()->contains(QFileInfo(filePath).suffix()))
        return false;
    const auto& signatures = fileKey->allowedDataSignatures();
    return !signatures || signatures->isEmpty() || fileMatchesSignatures(filePath, *signatures);
}

void PFMSection::refresh(const Profile::Pointer& profile) {
    QList<Payload::Pointer> payloads;
    for (const auto& payload : profile->configurationPayloads()) {
        if (m_domains.contains(payload->domainPrototype().domainString()))
            payloads.append(payload);
    }
    if (payloads.isEmpty()) {
        clearSectionViewController();
        setPayloadsConfigured(0);
        return;
    }
    for (const auto& payload : payloads) {
        if (!m_sectionViewController || !m_sectionViewController->hasPayload(payload))
            giveFormPayload(profile, payload);
    }
}

void PFMSection::removePayloads(const QList<int>& indexes) {
    if (!m_sectionViewController)
        return;
    m_sectionViewController->removePayloads(indexes);
    if (m_sectionViewController->payloadControllers().empty())
        clearSectionViewController();
}

void PFMSection::restorePayloadForm(const Profile::Pointer& profile, const Payload::Pointer& payload,
                                    int formIndex) {
    if (!m_sectionViewController)
        makeForm(profile, payload);
    else
        m_sectionViewController->insertPayloadForm(payload, formIndex);
}

} // namespace quorlin
